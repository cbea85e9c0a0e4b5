' Scripting.Dictionary as Windows keeps it: which keys are one key, the error numbers and texts,
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
