' Scripting.Dictionary as scripts use it: For Each over keys in order, Item's add-on-read,
' Key renaming, CompareMode, and its error numbers.
Dim d, k, keys, items, order
Set d = CreateObject("Scripting.Dictionary")
Check TypeName(d), "Dictionary", "TypeName"
d.Add "b", 2
d.Add "a", 1
d(3) = "three"
Check d.Count, CLng(3), "Count"
Check d("b"), 2, "default member"
Check d.Item("a"), 1, "Item"
Check d.Exists(3), True, "number key"
Check d.Exists(CDbl(3)), True, "number key of another type"
Check d.Exists("3"), False, "text is not a number"
Check d.Exists("B"), False, "binary compare"
order = ""
For Each k In d
  order = order & k & ";"
Next
Check order, "b;a;3;", "For Each over keys in order"
keys = d.Keys
items = d.Items
Check Join(keys, ","), "b,a,3", "Keys"
Check Join(items, ","), "2,1,three", "Items"
Check IsEmpty(d("missing")), True, "reading a missing key"
Check d.Count, CLng(4), "reading a missing key adds it"
d.Key("a") = "z"
Check Join(d.Keys, ","), "b,z,3,missing", "Key renames in place"
d.Remove "b"
Check Join(d.Keys, ","), "z,3,missing", "Remove"
d.RemoveAll
Check d.Count, CLng(0), "RemoveAll"
d.CompareMode = vbTextCompare
d.Add "Key", 1
Check d.Exists("KEY"), True, "text compare"
Set d("obj") = d
Check TypeName(d("obj")), "Dictionary", "objects as items"
d.Remove "obj"  ' a dictionary holding itself is a cycle that reference counts never free

Set d2 = CreateObject("Scripting.Dictionary")
d2.Add "k", 1
CheckError "d2.Add ""k"", 2", 457, "duplicate key"
CheckError "d2.Remove ""none""", 32811, "Remove of a missing key"
CheckError "d2.CompareMode = 1", 5, "CompareMode of a filled dictionary"
CheckError "d2.Add Array(1), 1", 13, "array as key"
CheckError "d2.Nothing", 438, "unknown member"
CheckError "Set x = CreateObject(""No.Such.Class"")", 429, "unknown class"
