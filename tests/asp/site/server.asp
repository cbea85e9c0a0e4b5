<%
Response.ContentType = "text/plain"
Select Case Request.QueryString("case")
Case "encode"
  Response.Write Server.HTMLEncode("<a href=""x"">&amp;</a>") & vbCrLf
  Response.Write Server.URLEncode("a b/c?d=é") & vbCrLf
  Response.Write Server.URLPathEncode("/a b/c d.asp?x=y z") & vbCrLf
  Response.Write "[" & Server.HTMLEncode(Null) & "]"
Case "mappath"
  Response.Write Server.MapPath("hello.asp") & vbCrLf
  Response.Write Server.MapPath("/inc/header.inc") & vbCrLf
  On Error Resume Next
  Response.Write Server.MapPath("../../etc/passwd")
  Response.Write "|" & Err.Number
Case "create"
  Dim d
  Set d = Server.CreateObject("Scripting.Dictionary")
  d.Add "k", "v"
  Response.Write TypeName(d) & d("k")
  On Error Resume Next
  Set d = Server.CreateObject("No.Such.Thing")
  Response.Write "|" & Hex(Err.Number)
Case "execute"
  Dim local : local = "parent"
  Response.Write "before|"
  Server.Execute "child.asp"
  Response.Write "|after|" & local
Case "transfer"
  Response.Write "before|"
  Server.Transfer "child.asp"
  Response.Write "not reached"
Case "timeout"
  Response.Write Server.ScriptTimeout
  Server.ScriptTimeout = 120
  Response.Write "|" & Server.ScriptTimeout
Case "lasterror"
  Dim e : Set e = Server.GetLastError()
  Response.Write TypeName(e) & "|" & e.Number
End Select
%>