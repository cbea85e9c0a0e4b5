' 300,000 Dictionary insertions, then 300,000 look-ups.
Dim d, i, total
Set d = CreateObject("Scripting.Dictionary")
For i = 0 To 299999
  d.Add "key" & i, i
Next
total = 0
For i = 0 To 299999
  total = total + d("key" & i)
Next
WScript.Echo total
