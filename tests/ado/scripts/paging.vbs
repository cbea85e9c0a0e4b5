' 1,000 rows inserted through a prepared Command in one transaction, then read in pages.
Dim cn, cmd, rs, i, t, page, seen, rows
t = TBL & "paging"
Set cn = OpenWithFreshTable(t, "n INTEGER PRIMARY KEY, label VARCHAR(20)")

Set cmd = CreateObject("ADODB.Command")
Set cmd.ActiveConnection = cn
cmd.CommandText = "INSERT INTO " & t & " (n, label) VALUES (?, ?)"
cmd.Prepared = True
cmd.Parameters.Append cmd.CreateParameter("n", 3, 1)
cmd.Parameters.Append cmd.CreateParameter("label", 200, 1, 20)
cn.BeginTrans
For i = 1 To 1000
  cmd(0) = i
  cmd("label") = "row " & i
  cmd.Execute , , 128
Next
cn.CommitTrans

Set rs = CreateObject("ADODB.Recordset")
rs.CursorLocation = 3
rs.PageSize = 25
rs.Open "SELECT n, label FROM " & t & " ORDER BY n", cn, 3, 1
Check rs.RecordCount, 1000, "RecordCount of a client cursor"
Check rs.PageCount, 40, "PageCount"
rs.AbsolutePage = 7
Check CLng(rs("n")), 151, "first row of page 7"
Check rs.AbsolutePosition, 151, "AbsolutePosition"
seen = 0
Do While Not rs.EOF And rs.AbsolutePage = 7
  seen = seen + 1
  rs.MoveNext
Loop
Check seen, 25, "rows on a page"
rs.AbsolutePage = 40
rows = rs.GetRows()
Check UBound(rows, 2), 24, "GetRows of the last page"
Check CLng(rows(0, 24)), 1000, "last value"
CheckTrue rs.EOF, "EOF after GetRows"
rs.MovePrevious
Check CLng(rs("n")), 1000, "MovePrevious from EOF"
rs.MoveFirst
rs.Move 499
Check CLng(rs("n")), 500, "Move"
rs.Close

rs.MaxRecords = 10
rs.Open "SELECT n FROM " & t, cn, 3, 1
Check rs.RecordCount, 10, "MaxRecords"
rs.Close

' A forward-only read counts every row once.
Set rs = cn.Execute("SELECT n FROM " & t)
seen = 0
Do Until rs.EOF
  seen = seen + rs(0)
  rs.MoveNext
Loop
Check CLng(seen), 500500, "sum over a forward-only read"
cn.Execute "DROP TABLE " & t
cn.Close
