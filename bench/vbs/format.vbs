' 400,000 FormatNumber calls.
Dim i, s
For i = 1 To 400000
  s = FormatNumber(i * 1.2345, 2)
Next
WScript.Echo s
