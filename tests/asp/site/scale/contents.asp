<%@ EnableSessionState=False %><%
' Application.Contents on a server other than the one that wrote it: ?write=1 writes.
Response.ContentType = "text/plain"
If Request.QueryString("write") = "1" Then
  Application.Contents.RemoveAll
  Application("Zeta") = 1
  Application("alpha") = "two"
  Application("ZETA") = 3
  Application("list") = Array(1, Array("x"))
  Application.Contents.Remove "alpha"
  Application("alpha") = "again"
Else
  Dim k
  For Each k In Application.Contents
    Response.Write k & "=" & TypeName(Application(k)) & ";"
  Next
  Response.Write Application.Contents.Count & ";" & Application.Contents.Key(1) & ";" & _
                 Application(1) & ";" & Application("list")(1)(0)
End If
%>