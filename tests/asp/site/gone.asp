<%@ ENABLESESSIONSTATE=False %><%
' Works until the client goes away, as a long report does, and leaves what it saw.
Select Case Request.QueryString("case")
Case "wait"
  Dim started : started = Timer
  Do While Response.IsClientConnected And Timer - started < 3 : Loop
  Application("gone") = Not Response.IsClientConnected
Case "seen"
  Response.Write Application("gone") & "|" & Response.IsClientConnected
End Select
%>