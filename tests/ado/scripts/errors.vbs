' The errors a page gets: syntax errors with the server's words, closed objects, reading past
' EOF, bad arguments; and the Errors collection of the connection.
Dim cn, rs, t, x
t = TBL & "errs"
Set cn = CreateObject("ADODB.Connection")
On Error Resume Next
cn.Execute "SELECT 1"
CheckErr 3704, "Execute on a closed connection"
cn.Close
CheckErr 3704, "Close of a closed connection"
cn.Open CONN
CheckErr 0, "open"
cn.Open CONN
CheckErr 3705, "Open of an open connection"
cn.Execute "SELEC * FROM nowhere"
CheckTrue Err.Number < 0, "a syntax error has the provider's number"
CheckTrue Len(Err.Description) > 0, "and the server's words"
Err.Clear
CheckTrue cn.Errors.Count >= 1, "Errors filled"
CheckTrue Len(cn.Errors(0).Description) > 0, "Errors(0).Description"
CheckTrue cn.Errors(0).Number < 0, "Errors(0).Number"
x = cn.Errors(5).Number
CheckErr 3265, "Errors out of range"
cn.Errors.Clear
Check cn.Errors.Count, 0, "Errors.Clear"

cn.Execute "DROP TABLE " & t
Err.Clear
cn.Execute "CREATE TABLE " & t & " (n INTEGER NOT NULL, s VARCHAR(10))"
cn.Execute "INSERT INTO " & t & " VALUES (1, 'a')"
CheckErr 0, "setup"
cn.Execute "INSERT INTO " & t & " (n, s) VALUES (NULL, 'b')"
CheckErr -2147217873, "a constraint violation"
Set rs = cn.Execute("SELECT n, s FROM " & t)
rs.MoveNext
x = rs("n")
CheckErr 3021, "reading past EOF"
rs.MoveNext
CheckErr 3021, "MoveNext past EOF"
rs.MovePrevious
CheckTrue Err.Number <> 0, "MovePrevious on a forward-only cursor"
Err.Clear
rs("n") = 5
CheckErr 3251, "writing a read-only recordset"
rs.Close
x = rs.EOF
CheckErr 3704, "EOF of a closed recordset"
rs.Close
CheckErr 3704, "Close of a closed recordset"

Set rs = CreateObject("ADODB.Recordset")
rs.Open "SELECT * FROM " & t, cn, 3, 3
rs.Filter = "nope = 1"
CheckErr 3265, "Filter on an unknown field"
rs.Filter = "n = "
CheckErr 3001, "Filter that is no criteria"
rs.AbsolutePage = 9
CheckErr 3001, "a page that is not there"
rs.PageSize = 0
CheckErr 3001, "PageSize 0"
rs.Close

Set rs = cn.Execute("SELECT COUNT(*) FROM " & t & " WHERE s = 'a'")
Check CLng(rs(0)), 1, "the table is as it was"
rs.Close

' Closing the connection closes what still streams from it.
Set rs = cn.Execute("SELECT n FROM " & t)
cn.Close
x = rs.EOF
CheckErr 3704, "a streamed recordset after its connection closed"
Check rs.State, 0, "closed with its connection"
cn.Open CONN

' A provider that has no counterpart here names itself.
Set c2 = CreateObject("ADODB.Connection")
c2.Open "Provider=MSDAIPP.DSO;Data Source=http://example"
CheckErr 3706, "unknown provider"
c2.Open "Provider=SQLite;Data Source=" & SCRATCH & "/no/such/folder/x.db"
CheckTrue Err.Number <> 0, "a file that cannot be opened"
Err.Clear
' A statement still running when its timeout runs out is stopped: the connection's timeout,
' and a command's own, which leaves the connection's as it was.
Dim slow, cmd
slow = ""
If DBKIND = "sqlite" Then slow = "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c LIMIT 300000000) SELECT COUNT(*) FROM c"
If DBKIND = "pg" Then slow = "SELECT pg_sleep(3)"
If slow <> "" Then
  cn.CommandTimeout = 1
  cn.Execute slow
  CheckErr -2147217871, "a statement over the connection's CommandTimeout"
  cn.CommandTimeout = 30
  Set cmd = CreateObject("ADODB.Command")
  Set cmd.ActiveConnection = cn
  cmd.CommandText = slow
  cmd.CommandTimeout = 1
  cmd.Execute
  CheckErr -2147217871, "a statement over the command's CommandTimeout"
  Check cn.CommandTimeout, 30, "the connection's timeout kept"
End If
cn.Execute "DROP TABLE " & t
cn.Close
Set cn = Nothing
x = rs.EOF
CheckErr 3704, "recordset of a released connection"
