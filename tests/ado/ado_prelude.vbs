' What the ADO scripts share beside the assertions: each script that works on a table of its
' own starts with an open connection and the table made anew (a run that stopped early may have
' left it behind).
Function OpenWithFreshTable(t, columns)
  Dim cn
  Set cn = CreateObject("ADODB.Connection")
  cn.Open CONN
  On Error Resume Next
  cn.Execute "DROP TABLE " & t
  On Error GoTo 0
  cn.Execute "CREATE TABLE " & t & " (" & columns & ")" & TABLEOPTS
  Set OpenWithFreshTable = cn
End Function
