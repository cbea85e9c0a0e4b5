' Transactions: a rolled-back insert leaves nothing, a committed one stays; the transaction
' calls fail as ADO's do outside a transaction.
Dim cn, rs, t, level
t = TBL & "trans"
Set cn = OpenWithFreshTable(t, "n INTEGER")
level = cn.BeginTrans
Check level, 1, "BeginTrans gives the level"
cn.Execute "INSERT INTO " & t & " VALUES (1)"
cn.Execute "INSERT INTO " & t & " VALUES (2)"
cn.RollbackTrans
Set rs = cn.Execute("SELECT COUNT(*) FROM " & t)
Check CLng(rs(0)), 0, "rolled back"
rs.Close
cn.BeginTrans
cn.Execute "INSERT INTO " & t & " VALUES (3)"
cn.CommitTrans
Set rs = cn.Execute("SELECT n FROM " & t)
Check CLng(rs("n")), 3, "committed"
rs.Close
On Error Resume Next
cn.CommitTrans
CheckTrue Err.Number <> 0, "CommitTrans without a transaction fails"
Err.Clear
On Error GoTo 0
' Closing the connection in a transaction rolls it back.
cn.BeginTrans
cn.Execute "INSERT INTO " & t & " VALUES (4)"
cn.Close
cn.Open CONN
Set rs = cn.Execute("SELECT COUNT(*) FROM " & t)
Check CLng(rs(0)), 1, "a transaction left open is rolled back at Close"
rs.Close
cn.Execute "DROP TABLE " & t
cn.Close
