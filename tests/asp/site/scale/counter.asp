<%@ EnableSessionState=False %><%
' One more in Application(name) under Lock; ?read=1 shows the count. Answers with the port of
' the server that ran it, to see the balancing.
Response.ContentType = "text/plain"
Dim name : name = Request.QueryString("name")
If Request.QueryString("read") = "1" Then
  Response.Write Application(name)
Else
  Application.Lock
  Dim n : n = Application(name)
  Application(name) = n + 1
  Application.Unlock
  Response.Write Request.ServerVariables("SERVER_PORT")
End If
%>