' Reads the rows a query generates forward-only and counts them: memory must not grow with
' the count. The first argument is the number of rows.
Dim cn, rs, n
Set cn = CreateObject("ADODB.Connection")
cn.Open "Provider=SQLite;Data Source=" & WScript.Arguments(0)
Set rs = cn.Execute("WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c LIMIT " & _
  WScript.Arguments(1) & ") SELECT x, 'row ' || x AS label FROM c")
n = 0
Do Until rs.EOF
  n = n + 1
  rs.MoveNext
Loop
WScript.Echo n
