' The page-body form: the counter and the sum are module variables.
Dim i, s
s = 0
For i = 1 To 50000000
  s = s + i * 2 - 1
Next
WScript.Echo s
