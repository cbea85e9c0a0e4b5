' 100,000 Dictionary insertions, then 100,000 look-ups.
Dim d, i, total
Set d = CreateObject("Scripting.Dictionary")
For i = 0 To 99999
  d.Add "key" & i, i
Next
total = 0
For i = 0 To 99999
  total = total + d("key" & i)
Next
WScript.Echo total
