<%
' Session("n") plus one from a page that sends its output as it goes, and so runs on a thread
' of its own.
Response.ContentType = "text/plain"
Session("n") = Session("n") + 1
Response.Flush
Response.Write Session("n")
%>
