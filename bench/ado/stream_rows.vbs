' Reads the rows of a query forward-only and counts them: memory must not grow with the count.
' Arguments: the connection string and the query.
Dim cn, rs, n
Set cn = CreateObject("ADODB.Connection")
cn.Open WScript.Arguments(0)
Set rs = cn.Execute(WScript.Arguments(1))
n = 0
Do Until rs.EOF
  n = n + 1
  rs.MoveNext
Loop
WScript.Echo n
