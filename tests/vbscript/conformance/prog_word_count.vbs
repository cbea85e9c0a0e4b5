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
Check d.Count, CLng(11), "distinct words, ignoring case"
Check d("the") & d("FOX") & d.Item("Dog"), "433", "counts looked up in any case"

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
Check UBound(words), CLng(18), "nineteen words"
Check words(18), "dog", "the last word"
re.Pattern = "\b(\w)(\w*)\b"
Check re.Replace("hello big world", "$2$1ay"), "ellohay igbay orldway", "groups in the replacement"

' Keys of different types.
Dim d2
Set d2 = CreateObject("Scripting.Dictionary")
d2.Add 1, "int one"
d2.Add "1", "string one"
d2.Add 1.5, "one and a half"
Check d2.Count, CLng(3), "1 and ""1"" are different keys"
Check d2(1) & "|" & d2("1"), "int one|string one", "looked up by type"
CheckTrue d2.Exists(CLng(1)) And d2.Exists(CDbl(1)), "numbers of any type find a numeric key"
d2.Key(1) = "uno"
CheckTrue Not d2.Exists(1), "a key can be renamed"
Check d2("uno"), "int one", "the renamed key keeps its item"
Check Join(d2.Items, ","), "int one,string one,one and a half", "items stay in insertion order"
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
Check d2.Count, CLng(3), "reading a missing key adds it"
CheckTrue IsEmpty(d2("auto")), "with an Empty item"
d2.RemoveAll
Check UBound(d2.Keys), CLng(-1), "no keys after RemoveAll"

' Matches, their positions and sub-matches.
Dim re2, ms
Set re2 = New RegExp
re2.Pattern = "(\w+)@(\w+)\.com"
re2.Global = True
Set ms = re2.Execute("mail bob@example.com and ann@test.com now")
Check ms.Count, CLng(2), "two addresses"
Check ms(0).Value & " " & ms(0).FirstIndex & " " & ms(0).Length, "bob@example.com 5 15", "the first match"
Check ms(1).SubMatches(0) & "/" & ms(1).SubMatches(1), "ann/test", "sub-matches of the second"
Check re2.Replace("bob@example.com", "$2:$1"), "example:bob", "groups swapped"
re2.Global = False
re2.Pattern = "o"
Check re2.Replace("foo boo", "0"), "f0o boo", "without Global only the first is replaced"
