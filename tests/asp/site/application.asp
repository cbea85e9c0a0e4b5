<%
Response.ContentType = "text/plain"
Application.Lock
Application("hits") = Application("hits") + 1
Application.Unlock
On Error Resume Next
Set Application("dict") = CreateObject("Scripting.Dictionary")
Dim refused : refused = Err.Number <> 0
On Error GoTo 0
Response.Write Application("started") & "|" & (Application.Contents.Count > 0) & "|" & refused & "|" & Application("hits")
%>