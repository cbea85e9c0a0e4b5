' Batch updates: changes wait in the recordset until UpdateBatch writes them (or CancelBatch
' takes them back), also after the recordset was cut off from its connection and given it
' again; Clone shares the records with its own position; Resync and Seek; Save and Open.
Dim cn, rs, rs2, t, n
t = TBL & "batch"
Set cn = OpenWithFreshTable(t, KEYCOL & ", name VARCHAR(40) NOT NULL, qty INTEGER")
cn.Execute "INSERT INTO " & t & " (name, qty) VALUES ('alpha', 1)"
cn.Execute "INSERT INTO " & t & " (name, qty) VALUES ('beta', 2)"
cn.Execute "INSERT INTO " & t & " (name, qty) VALUES ('gamma', 3)"

Function Names()
  Dim r
  Set r = cn.Execute("SELECT name, qty FROM " & t & " ORDER BY name")
  Names = ""
  Do Until r.EOF
    Names = Names & r("name") & "=" & r("qty") & " "
    r.MoveNext
  Loop
End Function

Set rs = CreateObject("ADODB.Recordset")
rs.CursorLocation = 3
rs.Open "SELECT id, name, qty FROM " & t & " ORDER BY id", cn, 3, 4
CheckTrue rs.Supports(&H10000), "Supports(adUpdateBatch)"
rs("qty") = 10
rs.Update
Check rs.Status, 2, "Status of a changed record"
Check rs("qty").OriginalValue, 1, "OriginalValue keeps the source's value"
rs.MoveNext
rs.Delete
rs.AddNew Array("name", "qty"), Array("delta", 4)
Check rs.Status, 1, "Status of an added record"
rs.AddNew Array("name", "qty"), Array("omega", 9)
rs.Delete
Check Names(), "alpha=1 beta=2 gamma=3 ", "nothing written before UpdateBatch"
rs.Filter = 1
Check rs.RecordCount, 2, "adFilterPendingRecords: the changed and the added record"
rs.Filter = 0
rs.UpdateBatch
Check Names(), "alpha=10 delta=4 gamma=3 ", "UpdateBatch writes the batch"
rs.Filter = 1
Check rs.RecordCount, 0, "nothing pending after UpdateBatch"
rs.Filter = 0

rs.MoveFirst
rs("name") = "first"
rs.Update
rs.MoveLast
rs.Delete
rs.CancelBatch
rs.MoveFirst
Check rs("name").Value, "alpha", "CancelBatch restores a change"
Check rs.RecordCount, 3, "CancelBatch restores a deletion"
rs.UpdateBatch
Check Names(), "alpha=10 delta=4 gamma=3 ", "a cancelled batch writes nothing"

' Disconnected, changed, reconnected, written.
Set rs.ActiveConnection = Nothing
rs.Find "name = 'gamma'"
rs("qty") = 30
rs.Update
On Error Resume Next
rs.UpdateBatch
CheckErr 3709, "UpdateBatch without a connection"
On Error GoTo 0
Set rs.ActiveConnection = cn
rs.UpdateBatch
Check Names(), "alpha=10 delta=4 gamma=30 ", "a disconnected batch written after reconnecting"

' A row changed by someone else meanwhile: the batch raises, and the other rows are written.
rs.MoveFirst
rs("qty") = 11
rs.Update
rs.MoveLast
rs("qty") = 31
rs.Update
cn.Execute "DELETE FROM " & t & " WHERE name = 'alpha'"
On Error Resume Next
rs.UpdateBatch
CheckErr -2147217864, "a row that has gone"
On Error GoTo 0
Check Names(), "delta=31 gamma=30 ", "the other rows of the batch written"

' Clone: the same records, positions of its own.
Set rs2 = rs.Clone
rs2.MoveFirst
rs.MoveLast
Check rs2("name").Value, "alpha", "a clone moves by itself"
Check rs.Clone(1).LockType, 1, "Clone(adLockReadOnly)"
rs2.Bookmark = rs.Bookmark
Check rs2("name").Value, rs("name").Value, "bookmarks are shared by clones"
rs2("qty") = 32
rs2.Update
Check rs("qty").Value, 32, "a change through a clone is seen by the original"
On Error Resume Next
Set rs2 = cn.Execute("SELECT name FROM " & t).Clone
CheckErr 3251, "a forward-only recordset cannot be cloned"
On Error GoTo 0

rs.Close

' Resync reads the records again from the source; Seek finds one by its primary key.
Set rs = CreateObject("ADODB.Recordset")
rs.CursorLocation = 3
rs.Open "SELECT id, name, qty FROM " & t & " ORDER BY id", cn, 3, 4
cn.Execute "UPDATE " & t & " SET qty = 99"
rs.Resync
Check rs("qty").Value, 99, "Resync reads what the source holds now"
CheckTrue rs.Supports(&H400000), "Supports(adSeek)"
rs.Index = "PrimaryKey"
rs.MoveFirst
n = rs("id").Value
rs.MoveLast
rs.Seek n
Check rs("id").Value, n, "Seek finds the key"
rs.Seek n, 8
CheckTrue rs("id").Value > n, "adSeekAfter: the next key"
rs.Seek -1
CheckTrue rs.EOF, "a key that is not there leaves EOF"
' Saved to a file in ADO's XML form and opened again without a connection: the values in
' their types, Null, a name that is no XML name; reconnected, its batch writes back.
Dim fso, saved, r1, r2
Set fso = CreateObject("Scripting.FileSystemObject")
saved = SCRATCH & "/" & TBL & DBKIND & "-saved.xml"
If fso.FileExists(saved) Then fso.DeleteFile saved
cn.Execute "UPDATE " & t & " SET name = 'a & <b> ''c''' WHERE name = 'delta'"
Set r1 = CreateObject("ADODB.Recordset")
r1.CursorLocation = 3
r1.Open "SELECT id, name AS ""the name"", qty FROM " & t & " ORDER BY id", cn, 3, 4
r1.MoveLast
r1("qty") = Null
r1.Update
r1.UpdateBatch
r1.Save saved, 1
On Error Resume Next
r1.Save saved, 1
CheckErr -2147286960, "Save over a file that exists"
On Error GoTo 0
Set r2 = CreateObject("ADODB.Recordset")
r2.Open saved
Check r2.RecordCount, r1.RecordCount, "every record saved"
Check r2.Fields(1).Name, "the name", "a column name that is no XML name"
r2.Find "[the name] = 'a & <b> ''c'''"
CheckTrue Not r2.EOF, "text with markup characters"
r1.MoveFirst
r2.MoveFirst
Check r2("id").Value, r1("id").Value, "a key in its type"
r2.MoveLast
Check r2("qty").Value, Null, "Null"
r2.MoveFirst
r2("qty") = 7
r2("the name") = "renamed"
r2.Update
Set r2.ActiveConnection = cn
r2.UpdateBatch
Check CLng(cn.Execute("SELECT qty FROM " & t & " WHERE id = " & r1("id").Value)(0)), 7, _
  "a reopened file writes its batch back"
Check cn.Execute("SELECT name FROM " & t & " WHERE id = " & r1("id").Value)(0).Value, "renamed", _
  "to the column a name given by AS stands for"
fso.DeleteFile saved

cn.Execute "DELETE FROM " & t
On Error Resume Next
rs.Resync
CheckErr -2147217864, "Resync of rows that have gone"
On Error GoTo 0
rs.Close
cn.Execute "DROP TABLE " & t
cn.Close
