' 100,000 Replace calls on a 1 KB text.
Dim text, i, r
text = ""
Do While Len(text) < 1024
  text = text & "The quick brown fox jumps over the lazy dog. "
Loop
For i = 1 To 100000
  r = Replace(text, "fox", "cat")
Next
WScript.Echo Len(r)
