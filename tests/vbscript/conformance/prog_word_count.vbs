' Word frequencies with a RegExp tokenizer and a case-blind Dictionary, sorted by count
' then by word.
Dim text, re, d, m, w, keys, i, j, t, top
text = "The quick brown fox jumps over the lazy dog. The dog sleeps; the FOX runs!" & vbCrLf & "A fox, a dog."
Set re = New RegExp
re.Pattern = "[a-z]+"
re.Global = True
re.IgnoreCase = True
Set d = CreateObject("Scripting.Dictionary")
d.CompareMode = vbTextCompare
For Each m In re.Execute(text)
  w = m.Value
  If d.Exists(w) Then d(w) = d(w) + 1 Else d.Add w, 1
Next
CheckEach Array("d.Count", CLng(11), "d(""the"") & d(""FOX"") & d.Item(""Dog"")", "433")

keys = d.Keys
For i = 0 To UBound(keys) - 1
  For j = i + 1 To UBound(keys)
    If d(keys(j)) > d(keys(i)) Or (d(keys(j)) = d(keys(i)) And LCase(keys(j)) < LCase(keys(i))) Then
      t = keys(i) : keys(i) = keys(j) : keys(j) = t
    End If
  Next
Next
top = ""
For i = 0 To 4
  top = top & keys(i) & "=" & d(keys(i)) & " "
Next
Check top, "The=4 dog=3 fox=3 A=2 brown=1 ", "keys keep the spelling they were first added with"

' Splitting on what the pattern does not match.
Dim cleaned, words
re.Pattern = "[^a-z]+"
cleaned = Trim(re.Replace(text, " "))
words = Split(LCase(cleaned), " ")
CheckEach Array("UBound(words)", CLng(18), "words(18)", "dog")
re.Pattern = "\b(\w)(\w*)\b"
Check re.Replace("hello big world", "$2$1ay"), "ellohay igbay orldway", "groups in the replacement"
