<%
' Application(name) three times from a page that opens its session; ?set=V writes it first.
Response.ContentType = "text/plain"
Dim name : name = Request.QueryString("name")
If Request.QueryString("set") <> "" Then Application(name) = Request.QueryString("set")
Session("seen") = True
Response.Write Application(name) & Application(name) & Application(name)
%>