' Generation-time helpers of the JSON API extension. A template tag <!--##=name##--> reaches a
' function USER_name here, since the system library has no function of that name.

' A text as a JSON string.
Function qvApiQuote(s)
  Dim i, c, out
  out = ""
  For i = 1 To Len(s)
    c = Mid(s, i, 1)
    If c = """" Or c = "\" Then
      out = out & "\" & c
    ElseIf AscW(c) < 32 Or c = "<" Then
      out = out & "\u" & Right("000" & Hex(AscW(c)), 4)
    Else
      out = out & c
    End If
  Next
  qvApiQuote = """" & out & """"
End Function

' The index of the API: every table with a list, its caption and the address of its page.
Function USER_qvApiIndex(text)
  Dim i, t, s
  s = ""
  For i = 1 To DB.Tables.Count
    Set t = DB.Tables.Seq(i)
    If Not t Is Nothing Then
      If t.TblGen And t.TblList And t.TblType <> "REPORT" Then
        If s <> "" Then s = s & "," & vbCrLf
        s = s & "  {""name"": " & qvApiQuote(t.TblName) & ", ""caption"": " & qvApiQuote(t.TblCaption) & _
            ", ""kind"": " & qvApiQuote(LCase(t.TblType)) & ", ""url"": " & qvApiQuote(qvPageName(t, "api")) & "}"
      End If
    End If
  Next
  USER_qvApiIndex = "{""tables"": [" & vbCrLf & s & vbCrLf & "]}"
End Function

' The page name of the current table's JSON page, for the list's link.
Function USER_qvApiPage(text)
  USER_qvApiPage = qvPageName(TABLE, "api")
End Function
