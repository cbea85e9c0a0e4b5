' A recordset in memory, as pages use one for a table of their own: Fields.Append, AddNew,
' assignment, Update, Sort, Filter, Find, bookmarks, Delete, GetRows and For Each over Fields.
Dim rs, f, i, names, bm, rows
Set rs = CreateObject("ADODB.Recordset")
rs.Fields.Append "id", 3
rs.Fields.Append "name", 202, 20, &H20
rs.Fields.Append "price", 6, , &H20
rs.Fields.Append "born", 7, , &H20
rs.Fields.Append "note", 203, -1, &H20
rs.Fields.Append "ratio", 131, , &H20
rs.Fields("ratio").Precision = 10
rs.Fields("ratio").NumericScale = 2
Check rs.Fields.Count, 6, "fields appended"
Check rs.Fields("ratio").NumericScale, CByte(2), "NumericScale"
Check rs.State, 0, "closed before Open"
rs.Open
Check rs.State, 1, "open on no source"
Check rs.CursorType, 3, "static"
CheckTrue rs.EOF And rs.BOF, "empty"
names = Array("pear", "apple", "fig", "kiwi")
For i = 0 To 3
  rs.AddNew
  rs("id") = i + 1
  rs("name") = names(i)
  rs("price") = (i + 1) * 1.5
  rs("born") = DateSerial(2020, i + 1, 1)
  rs("ratio") = 1 / (i + 3)
  rs.Update
Next
Check rs.RecordCount, 4, "four records"
Check rs("id").Value, 4, "current record after the last AddNew"
Check TypeName(rs("price").Value), "Currency", "Currency field"
Check rs("note").Value, Null, "an unset field is Null"
Check rs("ratio").Value, 0.17, "a numeric value kept to its scale"
rs.Sort = "name ASC"
Check rs("name").Value, "apple", "sorted first"
rs.MoveLast
Check rs("name").Value, "pear", "sorted last"
rs.Sort = "price DESC"
Check rs("name").Value, "kiwi", "sorted by price"
rs.Sort = ""
rs.Filter = "price > 2 AND name <> 'fig'"
Check rs.RecordCount, 2, "filtered"
rs.Filter = "name LIKE 'p*' OR born >= #3/1/2020#"
Check rs.RecordCount, 3, "LIKE and a date"
rs.Filter = 0
Check rs.RecordCount, 4, "filter removed"
rs.MoveFirst
rs.Find "name = 'fig'"
Check rs("id").Value, 3, "Find"
bm = rs.Bookmark
rs.MoveFirst
rs.Bookmark = bm
Check rs("name").Value, "fig", "Bookmark"
rs.Find "name = 'nothing'"
CheckTrue rs.EOF, "Find without a match ends at EOF"
rs.MoveFirst
rs.Delete
rs.MoveNext
Check rs("name").Value, "apple", "after Delete"
Check rs.RecordCount, 3, "count after Delete"
rs.MoveFirst
rows = rs.GetRows(2, , Array("name", "id"))
Check UBound(rows, 1), 1, "GetRows fields"
Check rows(0, 1), "fig", "GetRows values"
i = 0
For Each f In rs.Fields
  i = i + 1
Next
Check i, 6, "For Each"
rs.MoveFirst
rs("name") = "changed"
rs.CancelUpdate
Check rs("name").Value, "apple", "CancelUpdate"
On Error Resume Next
rs("id") = "abc"
CheckErr -2147217887, "text into a Long field"
rs.CancelUpdate
rs("name") = String(21, "x")
CheckErr -2147217887, "text longer than the field"
rs.CancelUpdate
rs("id") = Null
CheckErr -2147217887, "Null into a field that is not nullable"
rs.CancelUpdate
rs.Fields.Append "late", 3
CheckErr 3219, "Append to an open recordset with rows"
rs.Fields.Append "name", 3
CheckTrue Err.Number <> 0, "a name twice"
Err.Clear
On Error GoTo 0
Check rs.Supports(&H1000400), True, "Supports adAddNew"
Check rs.GetString(2, 1, "|", ";"), "2|apple|3|2/1/2020||0.25;", "GetString"
rs.Close
Check rs.State, 0, "closed"
