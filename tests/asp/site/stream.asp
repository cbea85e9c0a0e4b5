<%@ Language="VBScript" %>
<% Option Explicit
' Output that leaves before the page ends, and the rules of a response whose head went out.
Dim fso, started
Select Case Request.QueryString("case")
Case "wait"
  Response.Buffer = False
  Response.ContentType = "text/plain"
  Response.Write "first|"
  Set fso = CreateObject("Scripting.FileSystemObject")
  started = Timer
  Do While Not fso.FileExists(Request.QueryString("go")) And Timer - started < 5 : Loop
  Response.Write "second" & String(200000, "x")
Case "rules"
  Response.Write "a"
  Response.Flush
  On Error Resume Next
  Response.Redirect "hello.asp" : Response.Write "|" & Err.Source : Err.Clear
  Response.Buffer = False
  Response.Flush : Response.Write "|" & Err.Source : Err.Clear
  Response.Clear : Response.Write "|" & Err.Source : Err.Clear
  Response.Buffer = True : Response.Write "|" & Err.Source : Err.Clear
  On Error GoTo 0
  Response.End
  Response.Write "never"
Case "late"
  Response.Write "sent"
  Response.Flush
  Err.Raise 5
Case "buffered"
  Response.Buffer = False
  Response.Status = "201 Made"
  Response.AddHeader "X-Before", "1"
  Response.Write "row"
End Select
%>
