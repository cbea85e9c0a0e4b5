' A wrong password fails with the login error; a server that is down fails too. Neither leaves
' the connection open.
Dim cn
Set cn = CreateObject("ADODB.Connection")
On Error Resume Next
cn.Open CONN
Check Err.Number, -2147217843, "login failure number"
CheckTrue Len(Err.Description) > 0, "the server's words"
Err.Clear
Check cn.State, 0, "not open after a failed login"
CheckTrue cn.Errors.Count >= 1, "Errors filled"
cn.ConnectionTimeout = 3
cn.Open "DSN=qv_down"
CheckTrue Err.Number <> 0, "a server that is down"
Err.Clear
Check cn.State, 0, "still closed"
