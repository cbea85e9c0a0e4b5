' Scripting.Dictionary and RegExp details that scripts depend on.
Set d = CreateObject("Scripting.Dictionary")
Check TypeName(d), "Dictionary", "TypeName"
d.Add "a", 1
d.Add "B", 2
Check d.Count, CLng(2), "Count"
Check d.Exists("A"), False, "binary compare by default"
x = d("missing")
Check d.Count, CLng(3), "reading a missing key adds it"
Check TypeName(d("missing")), "Empty", "with an Empty item"
d("c") = 3
Check d("c"), 3, "assigning a new key adds it"
d.Remove "missing"
CheckError "d.Remove ""nothere""", 32811, "removing a missing key"
CheckError "d.Add ""a"", 9", 457, "adding an existing key"
k = d.Keys
Check UBound(k), CLng(2), "Keys"
Check k(0) & k(1) & k(2), "aBc", "Keys keep insertion order"
it = d.Items
Check it(2), 3, "Items"
t = ""
For Each key In d
  t = t & key
Next
Check t, "aBc", "For Each walks keys"
d.Key("B") = "b"
Check d.Exists("b") And Not d.Exists("B"), True, "Key renames"
Check d("b"), 2, "the item moves with the key"
CheckError "d.Key(""zz"") = ""y""", 32811, "renaming a missing key"
d.Add 1, "one"
Check d.Exists("1"), False, "a number key differs from its text"
Check d(1), "one", "number key"
d.RemoveAll
Check d.Count, CLng(0), "RemoveAll"
Check UBound(d.Keys), CLng(-1), "Keys of an empty dictionary"
Set ci = CreateObject("Scripting.Dictionary")
ci.CompareMode = vbTextCompare
ci.Add "Key", 1
Check ci.Exists("KEY"), True, "text compare"
CheckError "ci.Add ""KEY"", 2", 457, "text compare duplicates"
CheckError "ci.CompareMode = vbBinaryCompare", 5, "CompareMode cannot change once items exist"
Set o = CreateObject("Scripting.Dictionary")
Set o("obj") = d
Check o("obj") Is d, True, "objects as items"
o.Add d, "by object"
Check o(d), "by object", "objects as keys"
Check o.Item("obj").Count, CLng(0), "Item explicitly"
' RegExp.
Set re = New RegExp
Check TypeName(re), "IRegExp2", "RegExp TypeName"
Check re.Global, False, "Global starts False"
Check re.IgnoreCase, False, "IgnoreCase starts False"
re.Pattern = "(\d+)-(\d+)"
Set ms = re.Execute("x 12-34 and 56-78")
Check ms.Count, CLng(1), "one match without Global"
Set m = ms(0)
Check m.Value, "12-34", "Value"
Check m.FirstIndex, CLng(2), "FirstIndex counts from 0"
Check m.Length, CLng(5), "Length"
Check m.SubMatches(1), "34", "SubMatches"
Check m.SubMatches.Count, CLng(2), "SubMatches count"
Check m & "", "12-34", "a match's default member is Value"
Check TypeName(ms), "IMatchCollection2", "match collection TypeName"
Check TypeName(m), "IMatch2", "match TypeName"
re.Global = True
Set ms = re.Execute("x 12-34 and 56-78")
Check ms.Count, CLng(2), "Global finds all"
t = ""
For Each m In ms
  t = t & m.FirstIndex & ","
Next
Check t, "2,12,", "For Each over matches"
Check re.Replace("1-2 3-4", "$2-$1"), "2-1 4-3", "Replace with groups"
re.Global = False
Check re.Replace("1-2 3-4", "x"), "x 3-4", "Replace without Global changes the first"
re.Pattern = "abc"
Check re.Test("xABCx"), False, "case counts"
re.IgnoreCase = True
Check re.Test("xABCx"), True, "IgnoreCase"
re.Pattern = "^b"
Check re.Test("a" & vbLf & "b"), False, "^ anchors at the start"
re.Multiline = True
Check re.Test("a" & vbLf & "b"), True, "Multiline"
re.Pattern = "a.c"
Check re.Test("a" & vbLf & "c"), False, ". does not match a line feed"
re.Pattern = "\bis\b"
re.Global = True
Check re.Execute("this is it").Count, CLng(1), "word boundaries"
re.Pattern = "x*"
Check re.Replace("abc", "-"), "-a-b-c-", "empty matches"
re.Pattern = ""
Check re.Test("anything"), True, "empty pattern matches"
