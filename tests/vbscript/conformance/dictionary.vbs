' Scripting.Dictionary: keys, items, order, compare modes and its errors.

' --- Scripting.Dictionary as Windows keeps it: which keys are one key, the error numbers and texts,
' CompareMode, the hash values HashVal reports, and changing the dictionary inside For Each.
Dim d, k, t, o
Set d = CreateObject("Scripting.Dictionary")

' Numbers compare by value whatever their subtype; text never equals a number.
d.Add 1, "one"
Check d.Exists(CInt(1)), True, "Integer 1 is Long 1"
Check d.Exists(1.0), True, "1.0 is 1"
Check d.Exists(CByte(1)), True, "Byte 1 is 1"
Check d.Exists("1"), False, "text 1 is another key"
CheckError "d.Add 1.0, ""x""", 457, "adding 1.0 after 1"
d.Add #1/1/2000#, "date"
Check d.Exists(36526), True, "a date is its serial number"
d.Add "", "empty text"
Check d(""), "empty text", "the empty text is a key"
Check d.Count, CLng(3), "Count"

On Error Resume Next
d.Add 1, "again"
Check Err.Description, "This key is already associated with an element of this collection", "457 text"
Err.Clear
d.Remove "nothere"
Check Err.Number, 32811, "Remove of a missing key"
Check Err.Description, "Element not found", "32811 text"
Err.Clear
On Error GoTo 0

' Key renames an entry in place; its old and new names follow the same rules.
d.Key(1) = "uno"
Check d("uno"), "one", "renamed"
Check d.Exists(1), False, "the old key is gone"
Check d.Keys()(0), "uno", "renaming keeps the order"
CheckError "d.Key(""uno"") = """"", 457, "renaming onto an existing key"
CheckError "d.Key(""nothere"") = ""x""", 32811, "renaming a missing key"

' Reading a missing key adds it with an Empty item; so does Set through the default member.
t = d("new")
Check IsEmpty(t), True, "read of a missing key"
Check d.Exists("new"), True, "the read added the key"
Set o = New RegExp
Set d("obj") = o
Check d("obj") Is o, True, "Set d(key) = object"
d.Add o, "object key"
Check d(o), "object key", "an object as key"

' For Each walks the keys; removing each as it goes empties the dictionary.
For Each k In d
  d.Remove k
Next
Check d.Count, CLng(0), "removed inside For Each"
Check UBound(d.Items), CLng(-1), "Items of an empty dictionary"

' The walk is live: keys added on the way come up, keys removed ahead are passed over.
d.Add "a", 1
d.Add "b", 2
d.Add "c", 3
t = ""
For Each k In d
  t = t & k
  If k = "a" Then d.Remove "b"
  If k = "c" Then d.Add "d", 4
Next
Check t, "acd", "For Each over a changing dictionary"
t = ""
For Each k In d.Keys
  t = t & k
  If k = "a" Then d.Add "e", 5
Next
Check t, "acd", "Keys is a copy"
d.RemoveAll

' CompareMode: text compare for 1 and above, and only while empty.
d.CompareMode = 2
d.Add "Straße", 1
Check d.Exists("straße"), True, "database compare ignores case"
CheckError "d.CompareMode = 0", 5, "CompareMode with items"
d.RemoveAll
d.CompareMode = vbTextCompare
d.Add ChrW(201) & "t" & ChrW(201), 1
Check d.Exists(ChrW(233) & "T" & ChrW(233)), True, "text compare folds letters beyond ASCII"
Check d.CompareMode, CLng(1), "CompareMode reads back"

' HashVal, as Windows computes it.
Set d = CreateObject("Scripting.Dictionary")
Check d.HashVal("abcd"), CLng(1045), "HashVal of text"
Check d.HashVal("aBCd1"), CLng(274), "HashVal is case-sensitive under binary compare"
Check d.HashVal(""), CLng(0), "HashVal of the empty text"
Check d.HashVal(1), CLng(161), "HashVal of 1"
Check d.HashVal(1.0), CLng(161), "HashVal of 1.0"
Check d.HashVal(-1), CLng(930), "HashVal of -1"
Check d.HashVal(1.234), CLng(661), "HashVal through single precision"
Check d.HashVal(#1/1/2000#), CLng(558), "HashVal of a date"
d.CompareMode = vbTextCompare
Check d.HashVal("aBCd1"), CLng(1000), "HashVal folds case under text compare"

' --- Scripting.Dictionary as scripts use it: For Each over keys in order, Item's add-on-read,
' Key renaming, CompareMode, and its error numbers.
Dim d_2, k_2, keys, items, order
Set d_2 = CreateObject("Scripting.Dictionary")
Check TypeName(d_2), "Dictionary", "TypeName"
d_2.Add "b", 2
d_2.Add "a", 1
d_2(3) = "three"
Check d_2.Count, CLng(3), "Count"
Check d_2("b"), 2, "default member"
Check d_2.Item("a"), 1, "Item"
Check d_2.Exists(3), True, "number key"
Check d_2.Exists(CDbl(3)), True, "number key of another type"
Check d_2.Exists("3"), False, "text is not a number"
Check d_2.Exists("B"), False, "binary compare"
order = ""
For Each k_2 In d_2
  order = order & k_2 & ";"
Next
Check order, "b;a;3;", "For Each over keys in order"
keys = d_2.Keys
items = d_2.Items
Check Join(keys, ","), "b,a,3", "Keys"
Check Join(items, ","), "2,1,three", "Items"
Check IsEmpty(d_2("missing")), True, "reading a missing key"
Check d_2.Count, CLng(4), "reading a missing key adds it"
d_2.Key("a") = "z"
Check Join(d_2.Keys, ","), "b,z,3,missing", "Key renames in place"
d_2.Remove "b"
Check Join(d_2.Keys, ","), "z,3,missing", "Remove"
d_2.RemoveAll
Check d_2.Count, CLng(0), "RemoveAll"
d_2.CompareMode = vbTextCompare
d_2.Add "Key", 1
Check d_2.Exists("KEY"), True, "text compare"
Set d_2("obj") = d_2
Check TypeName(d_2("obj")), "Dictionary", "objects as items"
d_2.Remove "obj"  ' a dictionary holding itself is a cycle that reference counts never free

Set d2 = CreateObject("Scripting.Dictionary")
d2.Add "k", 1
CheckError "d2.Add ""k"", 2", 457, "duplicate key"
CheckError "d2.Remove ""none""", 32811, "Remove of a missing key"
CheckError "d2.CompareMode = 1", 5, "CompareMode of a filled dictionary"
CheckError "d2.Add Array(1), 1", 13, "array as key"
CheckError "d2.Nothing", 438, "unknown member"
CheckError "Set x = CreateObject(""No.Such.Class"")", 429, "unknown class"

' --- Scripting.Dictionary details that scripts depend on.
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
