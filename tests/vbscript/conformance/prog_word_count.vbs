' Word frequencies with a RegExp tokenizer and a case-blind Dictionary, sorted by count
' then by word; then a Dictionary keyed by numbers and strings of the same value.
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

' Keys of different types.
Dim d2
Set d2 = CreateObject("Scripting.Dictionary")
d2.Add 1, "int one"
d2.Add "1", "string one"
d2.Add 1.5, "one and a half"
CheckEach Array("d2.Count", CLng(3), "d2(1) & ""|"" & d2(""1"")", "int one|string one", _
  "d2.Exists(CLng(1)) And d2.Exists(CDbl(1))", True)
d2.Key(1) = "uno"
CheckEach Array("Not d2.Exists(1)", True, "d2(""uno"")", "int one", _
  "Join(d2.Items, "","")", "int one,string one,one and a half")
d2.Remove "1"
Check TypeName(d2.Keys()(0)), "String", "the first key is now the string"
On Error Resume Next
d2.Add "uno", 5
Check Err.Number, CLng(457), "a duplicate key"
Check Err.Description, "This key is already associated with an element of this collection", "its text"
Err.Clear
On Error GoTo 0
Dim probe
probe = d2("auto")
CheckEach Array("d2.Count", CLng(3), "IsEmpty(d2(""auto""))", True)
d2.RemoveAll
Check UBound(d2.Keys), CLng(-1), "no keys after RemoveAll"

' Matches, their positions and sub-matches.
Dim re2, ms
Set re2 = New RegExp
re2.Pattern = "(\w+)@(\w+)\.com"
re2.Global = True
Set ms = re2.Execute("mail bob@example.com and ann@test.com now")
CheckEach Array("ms.Count", CLng(2), _
  "ms(0).Value & "" "" & ms(0).FirstIndex & "" "" & ms(0).Length", "bob@example.com 5 15", _
  "ms(1).SubMatches(0) & ""/"" & ms(1).SubMatches(1)", "ann/test", _
  "re2.Replace(""bob@example.com"", ""$2:$1"")", "example:bob")
re2.Global = False
re2.Pattern = "o"
Check re2.Replace("foo boo", "0"), "f0o boo", "without Global only the first is replaced"
