' Stream: text in a charset, bytes, positions, and files, as downloads and uploads use them.
Dim s, b, path, text
path = SCRATCH & "/ado-stream-" & DBKIND & ".txt"
Set s = CreateObject("ADODB.Stream")
s.Type = 2
s.Charset = "utf-8"
s.Open
s.WriteText "h" & ChrW(233) & "llo", 1
s.WriteText "second"
Check s.Size, 3 + 6 + 2 + 6, "UTF-8 with its mark and a line end"
s.SaveToFile path, 2
s.Close
s.Open
s.LoadFromFile path
Check s.ReadText(-2), "h" & ChrW(233) & "llo", "first line"
Check s.ReadText(), "second", "rest"
CheckTrue s.EOS, "EOS"
s.Position = 0
s.Type = 1
b = s.Read(3)
Check UBound(b), 2, "three bytes"
Check b(0), CByte(&HEF), "the mark"
s.Position = 3
s.SetEOS
Check s.Size, 3, "SetEOS"
s.Close

Set s = CreateObject("ADODB.Stream")
s.Open
s.WriteText "ab"
Check s.Size, 6, "Unicode is the default, with its mark"
s.Position = 0
Check s.ReadText(1), "a", "one character"
s.Close

Set s = CreateObject("ADODB.Stream")
s.Charset = "iso-8859-1"
s.Open
s.WriteText "caf" & ChrW(233) & ChrW(8364)
Check s.Size, 5, "one byte a character, no mark"
s.Position = 0
Check s.ReadText, "caf" & ChrW(233) & "?", "a character the charset lacks"
s.Close

Set s = CreateObject("ADODB.Stream")
s.Type = 1
s.Open
s.LoadFromFile path
b = s.Read
Set s2 = CreateObject("ADODB.Stream")
s2.Type = 1
s2.Open
s2.Write b
Check s2.Size, s.Size, "bytes copied"
On Error Resume Next
s2.WriteText "x"
CheckErr 3219, "WriteText on a binary stream"
s2.SaveToFile path
CheckErr 3004, "SaveToFile will not overwrite without adSaveCreateOverWrite"
s2.LoadFromFile SCRATCH & "/no/such/file"
CheckErr 3002, "LoadFromFile of a missing file"
s2.Close
x = s2.Size
CheckErr 3704, "Size of a closed stream"
