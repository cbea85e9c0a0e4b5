' A create, read, update and delete cycle through Recordset and Connection.Execute, with
' RecordsAffected, generated keys, Requery and two recordsets open at once on one connection.
Dim cn, rs, rs2, n, t, newId
t = TBL & "crud"
Set cn = OpenWithFreshTable(t, KEYCOL & ", name VARCHAR(40) NOT NULL, qty INTEGER")
Check cn.State, 1, "open state"

cn.Execute "INSERT INTO " & t & " (name, qty) VALUES ('alpha', 1)", n
Check n, 1, "RecordsAffected of an insert"
cn.Execute "INSERT INTO " & t & " (name, qty) VALUES ('beta', 2)"

Set rs = CreateObject("ADODB.Recordset")
rs.Open "SELECT id, name, qty FROM " & t & " ORDER BY id", cn, 1, 3   ' keyset, optimistic
Check rs.RecordCount, 2, "count before AddNew"
rs.AddNew
rs("name") = "gamma"
rs("qty") = 3
rs.Update
newId = rs("id")
Check VarType(newId), vbLong, "generated key is a Long"
CheckTrue newId > 0, "generated key read back after Update"
rs.MoveFirst
Check rs("name").Value, "alpha", "first row"
rs("qty") = 10
rs.Update
rs("qty") = 10
rs.Update   ' the same value again: the row is still found
Check rs("qty").OriginalValue, 10, "OriginalValue after Update"
rs.MoveNext
rs.Delete
rs.MoveNext
Check rs("name").Value, "gamma", "the row after the deleted one"
rs.Close

' A value read straight off a recordset that nothing holds, the way pages count rows.
Check CLng(cn.Execute("SELECT COUNT(*) FROM " & t)(0)), 2, "Execute(sql)(0)"
Set f = cn.Execute("SELECT name FROM " & t & " ORDER BY id").Fields("name")
Check f.Value, "alpha", "a field kept after its recordset is let go"
Set f = Nothing

cn.Execute "UPDATE " & t & " SET qty = qty + 1", n
Check n, 2, "RecordsAffected of an update"

' A Command as the source of a recordset.
Set cmd = CreateObject("ADODB.Command")
Set cmd.ActiveConnection = cn
cmd.CommandText = "SELECT name FROM " & t & " WHERE qty > ? ORDER BY id"
cmd.Parameters.Append cmd.CreateParameter("q", 3, 1, , 5)
Set rs = CreateObject("ADODB.Recordset")
rs.Open cmd, , 3, 1
Check rs.RecordCount, 1, "a Command as the source"
Check rs.Collect("name"), "alpha", "Collect"
CheckTrue rs.NextRecordset Is Nothing, "no second result"
Check rs.State, 0, "NextRecordset closes the first"

' Two recordsets at once on one connection, one forward-only (streamed).
Set rs = cn.Execute("SELECT name, qty FROM " & t & " ORDER BY id")
Set rs2 = CreateObject("ADODB.Recordset")
rs2.Open "SELECT COUNT(*) AS c FROM " & t, cn, 3, 1
Check CLng(rs2("c")), 2, "count through the second recordset"
Check rs("name").Value, "alpha", "first recordset still reads"
Check CLng(rs("qty")), 11, "update seen"
rs.MoveNext
Check rs("name").Value, "gamma", "second row"
Check rs.RecordCount, -1, "forward-only RecordCount"
rs.MoveNext
CheckTrue rs.EOF, "EOF after the last row"

' Requery sees rows written meanwhile.
rs2.Close
rs2.Open "SELECT name FROM " & t, cn, 3, 1
cn.Execute "DELETE FROM " & t & " WHERE name = 'gamma'", n
Check n, 1, "RecordsAffected of a delete"
rs2.Requery
Check rs2.RecordCount, 1, "count after Requery"

' The table by name, and Update with field lists.
Set rs = CreateObject("ADODB.Recordset")
rs.Open t, cn, 3, 3, 2
rs.AddNew Array("name", "qty"), Array("delta", 4)
rs.Filter = "name = 'delta'"
Check rs.RecordCount, 1, "AddNew with lists"
rs.Update "qty", 5
rs.Close
Set rs = cn.Execute("SELECT qty FROM " & t & " WHERE name = 'delta'")
Check CLng(rs("qty")), 5, "Update with a name and a value"
rs.Close

cn.Execute "DROP TABLE " & t
cn.Close
Check cn.State, 0, "closed state"
