Sub Main()
  Dim s, i
  s = ""
  For i = 1 To 1000000
    s = s & "0123456789"
  Next
  WScript.Echo Len(s)
End Sub
Main
