<%
' The raw body back, read in two pieces.
Dim n, first, rest
n = 3
first = Request.BinaryRead(n)
Response.Write "read=" & n & ";"
n = Request.TotalBytes
rest = Request.BinaryRead(n)
Response.Write "rest=" & n & ";"
Response.BinaryWrite first
Response.BinaryWrite rest
On Error Resume Next
Dim x : x = Request.Form("a")
Response.Write ";form=" & Err.Number
%>