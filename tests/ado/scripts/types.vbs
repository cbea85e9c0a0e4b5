' Every kind of value bound as a parameter and read back in the subtype Windows gives it:
' Unicode text, NULLs, dates, money, Booleans and bytes; and text that looks like SQL stays text.
Dim cn, cmd, rs, t, bytes, i, hostile, when
t = TBL & "types"
Set cn = OpenWithFreshTable(t, KEYCOL & ", txt VARCHAR(100), num INTEGER, " & _
  "big BIGINT, dbl DOUBLE PRECISION, amount " & MONEYTYPE & ", flag " & BOOLTYPE & ", " & _
  "stamp " & DATETYPE & ", data " & BLOBTYPE)

Set cmd = CreateObject("ADODB.Command")
Set cmd.ActiveConnection = cn
cmd.CommandText = "INSERT INTO " & t & " (txt, num, big, dbl, amount, flag, stamp, data) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"
cmd.Parameters.Append cmd.CreateParameter("txt", 202, 1, 100)
cmd.Parameters.Append cmd.CreateParameter("num", 3, 1)
cmd.Parameters.Append cmd.CreateParameter("big", 20, 1)
cmd.Parameters.Append cmd.CreateParameter("dbl", 5, 1)
cmd.Parameters.Append cmd.CreateParameter("amount", 6, 1)
cmd.Parameters.Append cmd.CreateParameter("flag", 11, 1)
cmd.Parameters.Append cmd.CreateParameter("stamp", 135, 1)
cmd.Parameters.Append cmd.CreateParameter("data", 205, 1, 16)
Check cmd.Parameters.Count, 8, "Parameters.Count"

Set s = CreateObject("ADODB.Stream")
s.Type = 2
s.Charset = "us-ascii"
s.Open
s.WriteText "AB" & Chr(0) & "C"
s.Position = 0
s.Type = 1
bin = s.Read
when = DateSerial(2024, 2, 29) + TimeSerial(13, 45, 30)
cmd.Execute , Array(ChrW(&H41F) & ChrW(&H440) & "ivet " & ChrW(&H20AC) & " 'x'", 42, 3000000000, 1.25, CCur("1234.5678"), True, when, bin)
cmd.Execute , Array(Null, Null, Null, Null, Null, Null, Null, Null)

hostile = "x'); DROP TABLE " & t & "; --"
cmd("txt") = hostile
cmd("num") = "7"
cmd("big") = 1
cmd("dbl") = 0
cmd("amount") = 0
cmd("flag") = False
cmd("stamp") = "2001-01-01"
cmd("data") = Null
cmd.Execute

Set rs = CreateObject("ADODB.Recordset")
rs.Open "SELECT txt, num, big, dbl, amount, flag, stamp, data FROM " & t & " ORDER BY id", cn, 3, 1
Check rs.RecordCount, 3, "three rows, the table still there"
Check rs("txt").Value, ChrW(&H41F) & ChrW(&H440) & "ivet " & ChrW(&H20AC) & " 'x'", "Unicode text"
Check rs("num").Value, 42, "integer"
CheckType rs("num").Value, "Long", "an INTEGER column gives Long"
Check CDbl(rs("big").Value), 3000000000, "BIGINT beyond Long"
Check rs("dbl").Value, 1.25, "Double"
CheckType rs("amount").Value, "Currency", "a money column gives Currency"
Check rs("amount").Value, CCur("1234.5678"), "money amount"
Check rs("flag").Value, True, "Boolean"
Check rs("stamp").Value, when, "Date"
bytes = rs("data").Value
Check UBound(bytes), 3, "bytes"
Check bytes(2), CByte(0), "a zero byte kept"
Check bytes(3), CByte(67), "the byte after it"
Check rs("data").ActualSize, 4, "ActualSize of bytes"
rs.MoveNext
For i = 0 To rs.Fields.Count - 1
  Check rs(i).Value, Null, "NULL in " & rs(i).Name
Next
rs.MoveNext
Check rs("txt").Value, hostile, "quotes, semicolons and comment marks stay data"
Check rs("num").Value, 7, "text converted by the parameter type"
Check rs("flag").Value, False, "False"
Check rs("stamp").Value, DateSerial(2001, 1, 1), "date from text"

' A parameter of the wrong type fails at Execute, before anything reaches the table.
On Error Resume Next
cmd("num") = "seven"
cmd.Execute
CheckErr 3421, "text in a numeric parameter"
On Error GoTo 0
Set rs = cn.Execute("SELECT COUNT(*) FROM " & t)
Check CLng(rs(0)), 3, "nothing inserted by the failed Execute"

' Money keeps every digit on its way in and out, where a Double would round the last one
' (SQLite itself stores such numbers as doubles).
Set rs = CreateObject("ADODB.Recordset")
rs.Open "SELECT id, amount FROM " & t & " WHERE num = 42", cn, 3, 3
rs("amount") = "922337203685.4477"
rs.Update
Set rs = cn.Execute("SELECT amount FROM " & t & " WHERE num = 42")
If DBKIND <> "sqlite" Then Check rs("amount").Value, CCur("922337203685.4477"), "money read back whole"

' Field metadata.
Set rs = CreateObject("ADODB.Recordset")
rs.Open "SELECT id, txt, num FROM " & t, cn, 3, 3
Check rs.Fields("num").Type, 3, "adInteger"
CheckTrue rs.Fields("txt").Type = 200 Or rs.Fields("txt").Type = 202, "a text type"
Check rs.Fields("txt").DefinedSize, 100, "DefinedSize"
Check rs.Fields("num").Name, "num", "Name"
i = 0
For Each f In rs.Fields
  i = i + 1
Next
Check i, 3, "For Each over Fields"
On Error Resume Next
rs("num") = "many"
CheckErr -2147217887, "text into a numeric field"
rs.CancelUpdate
x = rs.Fields("nope")
CheckErr 3265, "unknown field"
On Error GoTo 0
rs.Close
cn.Execute "DROP TABLE " & t
cn.Close
