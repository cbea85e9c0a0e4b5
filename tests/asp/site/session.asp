<%
Response.ContentType = "text/plain"
Select Case Request.QueryString("case")
Case "count"
  Session("count") = Session("count") + 1
  Response.Write Session("count") & "|" & Session("greeting") & "|" & Session.SessionID & "|" & Application("sessions")
Case "props"
  Session.Timeout = 5
  Session.LCID = 2057
  Response.Write Session.Timeout & "|" & Session.LCID & "|" & Session.CodePage & "|" & TypeName(Session.StaticObjects("Bag")) & "|" & GetLocale()
Case "locale"
  Response.Write GetLocale()
Case "contents"
  Session("b") = Array(1, "two", 3)
  Session.Contents("a") = "x"
  Dim k, s
  For Each k In Session.Contents
    s = s & k & ";"
  Next
  Session.Contents.Remove "a"
  Response.Write s & "|" & Session.Contents.Count & "|" & Session("b")(1)
Case "store-class"
  Class Thing : End Class
  On Error Resume Next
  Set Session("thing") = New Thing
  Response.Write Err.Number <> 0
Case "renew"
  Session("count") = Session("count") + 1
  Session.Renew
  Response.Write Session("count") & "|" & Session.SessionID
Case "abandon"
  Session.Abandon
  Response.Write "abandoned"
End Select
%>