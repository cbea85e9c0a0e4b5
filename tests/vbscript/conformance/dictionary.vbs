' Scripting.Dictionary: keys, items, order, compare modes and its errors.

' --- Scripting.Dictionary as Windows keeps it: which keys are one key, the error numbers and texts,
' CompareMode, the hash values HashVal reports, and changing the dictionary inside For Each.
Dim d, k, t, o
Set d = CreateObject("Scripting.Dictionary")

' Numbers compare by value whatever their subtype; text never equals a number.
d.Add 1, "one"
CheckEach Array("d.Exists(CInt(1))", True, "d.Exists(1.0)", True, "d.Exists(CByte(1))", True, _
  "d.Exists(""1"")", False)
CheckError "d.Add 1.0, ""x""", 457, "adding 1.0 after 1"
d.Add #1/1/2000#, "date"
Check d.Exists(36526), True, "a date is its serial number"
d.Add "", "empty text"
CheckEach Array("d("""")", "empty text", "d.Count", CLng(3))

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
CheckEach Array("d(""uno"")", "one", "d.Exists(1)", False, "d.Keys()(0)", "uno")
CheckErrors Array("d.Key(""uno"") = """"", 457, "d.Key(""nothere"") = ""x""", 32811)

' Reading a missing key adds it with an Empty item; so does Set through the default member.
t = d("new")
CheckEach Array("IsEmpty(t)", True, "d.Exists(""new"")", True)
Set o = New RegExp
Set d("obj") = o
Check d("obj") Is o, True, "Set d(key) = object"
d.Add o, "object key"
Check d(o), "object key", "an object as key"

' For Each walks the keys; removing each as it goes empties the dictionary.
For Each k In d
  d.Remove k
Next
CheckEach Array("d.Count", CLng(0), "UBound(d.Items)", CLng(-1))

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
CheckEach Array("d.Exists(ChrW(233) & ""T"" & ChrW(233))", True, "d.CompareMode", CLng(1))
d(ChrW(233) & "T" & ChrW(233)) = d(ChrW(233) & "t" & ChrW(233)) + 1
CheckEach Array("d.Keys()(0) = ChrW(201) & ""t"" & ChrW(201)", True, "d.Items()(0)", 2)

' HashVal, as Windows computes it.
Set d = CreateObject("Scripting.Dictionary")
CheckEach Array("d.HashVal(""abcd"")", CLng(1045), "d.HashVal(""aBCd1"")", CLng(274), _
  "d.HashVal("""")", CLng(0), "d.HashVal(1)", CLng(161), "d.HashVal(1.0)", CLng(161), _
  "d.HashVal(-1)", CLng(930), "d.HashVal(1.234)", CLng(661), "d.HashVal(#1/1/2000#)", CLng(558))
d.CompareMode = vbTextCompare
Check d.HashVal("aBCd1"), CLng(1000), "HashVal folds case under text compare"

' --- Scripting.Dictionary as scripts use it: keys in the order added, Keys, Items and Remove.
Dim d_2, k_2, order
Set d_2 = CreateObject("Scripting.Dictionary")
d_2.Add "b", 2
d_2.Add "a", 1
d_2(3) = "three"
CheckEach Array("TypeName(d_2)", "Dictionary", "d_2.Count", CLng(3), "d_2(""b"")", 2, _
  "d_2.Item(""a"")", 1, "d_2.Exists(""B"")", False)
order = ""
For Each k_2 In d_2
  order = order & k_2 & ";"
Next
Check order, "b;a;3;", "For Each over keys in order"
CheckEach Array("Join(d_2.Keys, "","")", "b,a,3", "Join(d_2.Items, "","")", "2,1,three")
d_2.Remove "b"
Check Join(d_2.Keys, ","), "a,3", "Remove"
CheckErrors Array("d_2.Add Array(1), 1", 13, "d_2.Nothing", 438)
