' The system script library: module-level state that generated page functions share.
'
' Everything in this library lands in the "System" module after the common code, so it must
' leave LoadCurrent and the variables TABLE, FIELD and CTRL alone. Names carry the prefix "qv"
' (system functions that templates call by a plain name are the exception).

' The indent of the "~" tag at hand. A page function sets it just before the tag's expression
' runs; a system function that returns several lines puts it behind each line end (see
' qvIndentLines), so that its output keeps the tag's column. Page functions don't declare it:
' without this declaration each would get a local of its own and the indent would be lost.
Dim qvIndentWrk
qvIndentWrk = ""

' The kind of the project's database. The generator sets them at the start of every run from
' the database's DBMS name; at most one is True, and all stay False for any other database.
'   qvDbAccess      Microsoft Access (Jet, ACE)
'   qvDbSqlServer   Microsoft SQL Server
'   qvDbMySql       MySQL and MariaDB
'   qvDbOracle      Oracle
Dim qvDbAccess, qvDbSqlServer, qvDbMySql, qvDbOracle
qvDbAccess = False
qvDbSqlServer = False
qvDbMySql = False
qvDbOracle = False

' Text with qvIndentWrk behind every line end, for output of several lines that a "~" tag
' places: the first line takes the tag's own column, the later ones get it here.
Function qvIndentLines(text)
  If IsNull(text) Then
    qvIndentLines = ""
  Else
    qvIndentLines = Replace(CStr(text), vbCrLf, vbCrLf & qvIndentWrk)
  End If
End Function
