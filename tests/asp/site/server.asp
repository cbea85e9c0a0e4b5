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
Case "password"
  Dim pw, h1, h2
  Set pw = Server.CreateObject("Quorvex.Password")
  h1 = pw.Hash("s3cret é") : h2 = pw.Hash("s3cret é")
  Response.Write Left(h1, 10) & "|" & (h1 <> h2) & "|" & pw.Verify("s3cret é", h1) & "|"
  Response.Write pw.Verify("s3cret e", h1) & "|" & pw.Verify("s3cret é", "plain") & "|"
  Response.Write pw.Verify("", h1) & "|" & pw.NeedsRehash(h1) & "|" & pw.NeedsRehash("plain")
  On Error Resume Next
  pw.Hash ""
  Response.Write "|" & Err.Number
Case "journal"
  Dim jr, n
  Set jr = Server.CreateObject("Quorvex.Journal")
  For n = 1 To 25
    jr.Append Request.QueryString("file"), Request.QueryString("who") & String(300, "x") & n
  Next
  On Error Resume Next
  jr.Append Request.QueryString("file"), "two" & vbLf & "lines"
  Response.Write Err.Number
  Err.Clear
  jr.Append "relative.log", "x"
  Response.Write "|" & Err.Number
Case "lasterror"
  Dim e : Set e = Server.GetLastError()
  Response.Write TypeName(e) & "|" & e.Number
End Select
%>