' An Access file read through the Jet provider string a Windows page carries.
Dim cn, rs, tables, name, n
Set cn = CreateObject("ADODB.Connection")
cn.Open CONN
Set tables = cn.OpenSchema(20)
Do Until tables.EOF
  If tables("TABLE_TYPE") = "TABLE" And name = "" Then name = tables("TABLE_NAME")
  tables.MoveNext
Loop
CheckTrue name <> "", "a table listed"
Set rs = CreateObject("ADODB.Recordset")
rs.Open "[" & name & "]", cn, 3, 1
CheckTrue rs.RecordCount > 0, "rows in " & name
CheckTrue rs.Fields.Count > 0, "columns in " & name
n = 0
Do Until rs.EOF
  n = n + 1
  rs.MoveNext
Loop
Check n, rs.RecordCount, "every row read"
On Error Resume Next
cn.Execute "DELETE FROM [" & name & "]"
CheckTrue Err.Number <> 0, "Access files are read-only"
Err.Clear
rs.Close
cn.Close
