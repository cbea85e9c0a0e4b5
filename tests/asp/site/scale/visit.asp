<%
' Session("n") plus one with some work between the read and the write, and no lock: only the
' session's one-request-at-a-time hold keeps concurrent requests from losing counts. ?hold=S
' makes the work last S seconds.
Response.ContentType = "text/plain"
Dim n, i, t, start
n = Session("n")
For i = 1 To 3000 : t = t + i : Next
start = Timer
If Request.QueryString("hold") <> "" Then
  Do While Timer < start + CDbl(Request.QueryString("hold")) And Timer >= start : Loop
End If
Session("n") = n + 1
Response.Write Session("n")
%>