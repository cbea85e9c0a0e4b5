' Quoting a value for the languages that generated pages are written in. Null counts as an
' empty text everywhere except in SQL, where it stays NULL.

' A value as a VBScript string literal, quotes doubled and line ends joined in with vbCrLf:
' qvQuoteVBS("say ""hi""") gives "say ""hi""" with its outer quotes.
Function qvQuoteVBS(value)
  Dim s
  If IsNull(value) Then s = "" Else s = CStr(value)
  s = Replace(s, """", """""")
  s = Replace(s, vbCrLf, """ & vbCrLf & """)
  s = Replace(s, vbCr, """ & vbCr & """)
  s = Replace(s, vbLf, """ & vbLf & """)
  qvQuoteVBS = """" & s & """"
End Function

' A value as HTML text or as the value of an attribute in double quotes.
Function qvHtmlEncode(value)
  Dim s
  If IsNull(value) Then s = "" Else s = CStr(value)
  s = Replace(s, "&", "&amp;")
  s = Replace(s, "<", "&lt;")
  s = Replace(s, ">", "&gt;")
  s = Replace(s, """", "&quot;")
  qvHtmlEncode = s
End Function

' A value as a JavaScript string literal in double quotes, safe inside a <script> element.
Function qvQuoteJS(value)
  Dim s
  If IsNull(value) Then s = "" Else s = CStr(value)
  s = Replace(s, "\", "\\")
  s = Replace(s, """", "\""")
  s = Replace(s, vbCr, "\r")
  s = Replace(s, vbLf, "\n")
  s = Replace(s, vbTab, "\t")
  s = Replace(s, "</", "<\/")
  qvQuoteJS = """" & s & """"
End Function

' A value as a SQL string literal: 'O''Brien'. Null gives the keyword NULL.
Function qvQuoteSQL(value)
  If IsNull(value) Then
    qvQuoteSQL = "NULL"
  Else
    qvQuoteSQL = "'" & Replace(CStr(value), "'", "''") & "'"
  End If
End Function

' A table or column name quoted for the project's database: [Order Details] for Access and
' SQL Server, `Order Details` for MySQL, "Order Details" for the others. The closing mark
' inside the name is doubled.
Function qvQuoteSQLName(name)
  Dim s
  s = CStr(name)
  If qvDbAccess Or qvDbSqlServer Then
    qvQuoteSQLName = "[" & Replace(s, "]", "]]") & "]"
  ElseIf qvDbMySql Then
    qvQuoteSQLName = "`" & Replace(s, "`", "``") & "`"
  Else
    qvQuoteSQLName = """" & Replace(s, """", """""") & """"
  End If
End Function
