' 10,000 parameterised inserts in one transaction through ADODB.Command.
Dim cn, cmd, i
Set cn = CreateObject("ADODB.Connection")
cn.Open "Provider=SQLite;Data Source=" & WScript.Arguments(0)
cn.Execute "DELETE FROM log"
Set cmd = CreateObject("ADODB.Command")
Set cmd.ActiveConnection = cn
cmd.CommandText = "INSERT INTO log (who, amount, at) VALUES (?, ?, ?)"
cmd.Prepared = True
cmd.Parameters.Append cmd.CreateParameter("who", 202, 1, 40)
cmd.Parameters.Append cmd.CreateParameter("amount", 5, 1)
cmd.Parameters.Append cmd.CreateParameter("at", 135, 1)
cn.BeginTrans
For i = 1 To 10000
  cmd(0) = "user " & i
  cmd(1) = i * 1.5
  cmd(2) = Now
  cmd.Execute , , 128
Next
cn.CommitTrans
WScript.Echo cn.Execute("SELECT COUNT(*) FROM log")(0)
