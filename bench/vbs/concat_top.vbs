' The page-body form: the string grows in a module variable.
Dim s, i, round, n
n = 0
For round = 1 To 8
  s = ""
  For i = 1 To 1000000
    s = s & "0123456789"
  Next
  n = n + Len(s)
Next
WScript.Echo n
