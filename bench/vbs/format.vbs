' 100,000 FormatNumber calls.
Dim i, s
For i = 1 To 100000
  s = FormatNumber(i * 1.2345, 2)
Next
WScript.Echo s
