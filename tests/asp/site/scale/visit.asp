<%
' Session("n") plus one with some work between the read and the write, and no lock: only the
' session's one-request-at-a-time hold keeps concurrent requests from losing counts.
Response.ContentType = "text/plain"
Dim n, i, t
n = Session("n")
For i = 1 To 3000 : t = t + i : Next
Session("n") = n + 1
Response.Write Session("n")
%>