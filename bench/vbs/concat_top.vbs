' The page-body form: the string grows in a module variable.
Dim s, i
s = ""
For i = 1 To 1000000
  s = s & "0123456789"
Next
WScript.Echo Len(s)
