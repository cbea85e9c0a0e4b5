' Output, input-output and return-value parameters of a Command: a function's value and a
' routine's output values come back in the Parameters; SQLite, which has no routines, says so.
Dim cn, cmd, f, p
f = TBL & "twice"
p = TBL & "proc"
Set cn = CreateObject("ADODB.Connection")
cn.Open CONN
On Error Resume Next
cn.Execute "DROP FUNCTION " & f
cn.Execute "DROP FUNCTION " & p
cn.Execute "DROP PROCEDURE " & p
Err.Clear
On Error GoTo 0
If DBKIND = "pg" Then
  cn.Execute "CREATE FUNCTION " & f & "(x integer) RETURNS integer AS 'SELECT x * 2' LANGUAGE sql"
  cn.Execute "CREATE FUNCTION " & p & "(a integer, OUT b integer, INOUT c varchar) LANGUAGE plpgsql AS $$ BEGIN b := a * 2; c := c || '!'; END $$"
ElseIf DBKIND = "maria" Then
  cn.Execute "CREATE FUNCTION " & f & "(x INT) RETURNS INT RETURN x * 2"
  cn.Execute "CREATE PROCEDURE " & p & "(IN a INT, OUT b INT, INOUT c VARCHAR(20) CHARACTER SET utf8mb4) BEGIN SET b = a * 2; SET c = CONCAT(c, '!'); END"
End If

Set cmd = CreateObject("ADODB.Command")
Set cmd.ActiveConnection = cn
cmd.CommandType = 4
cmd.CommandText = p
cmd.Parameters.Append cmd.CreateParameter("a", 3, 1, , 5)
cmd.Parameters.Append cmd.CreateParameter("b", 3, 2)
cmd.Parameters.Append cmd.CreateParameter("c", 202, 3, 20, "Gr" & ChrW(252) & "ße")
If DBKIND = "sqlite" Then
  On Error Resume Next
  cmd.Execute
  CheckErr 3251, "an output parameter where there are no routines"
  On Error GoTo 0
Else
  cmd.Execute
  Check cmd("b").Value, 10, "an output parameter"
  CheckType cmd("b").Value, "Long", "in the subtype of its Type"
  Check cmd("c").Value, "Gr" & ChrW(252) & "ße!", "an input-output parameter, Unicode both ways"
  Check cmd("a").Value, 5, "an input parameter keeps its value"

  Set cmd = CreateObject("ADODB.Command")
  Set cmd.ActiveConnection = cn
  cmd.CommandType = 4
  cmd.CommandText = f
  cmd.Parameters.Append cmd.CreateParameter("x", 3, 1, , 21)
  cmd.Parameters.Append cmd.CreateParameter("ret", 3, 4)
  cmd.Execute
  Check cmd("ret").Value, 42, "a return value, wherever it is in the collection"
  cn.Execute "DROP FUNCTION " & f
  If DBKIND = "pg" Then cn.Execute "DROP FUNCTION " & p Else cn.Execute "DROP PROCEDURE " & p
End If
cn.Close
