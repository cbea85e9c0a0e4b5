<%
' A page with state enabled that never names it: a shared store leaves the visitor's state
' closed, unless ?run=1 runs a page that uses it.
Response.ContentType = "text/plain"
If Request.QueryString("run") = "1" Then Server.Execute "visit.asp"
%>
