<%
Response.ContentType = "text/plain"
Application.Lock
Application("hits") = Application("hits") + 1
Shared("hits") = Shared("hits") + 1
Application.Unlock
On Error Resume Next
Set Application("dict") = CreateObject("Scripting.Dictionary")
Dim refused : refused = Err.Number <> 0
Err.Clear
Shared.Add "page's own", CreateObject("Scripting.Dictionary")
refused = refused And Err.Number <> 0 And Not Shared.Exists("page's own")
On Error GoTo 0
Response.Write Application("started") & "|" & (Application.Contents.Count > 0) & "|" & refused & "|" & Application("hits") & "|" & Shared("hits") & "|" & TypeName(Application.StaticObjects("shared")) & Application.StaticObjects.Count
%>