<%@ ENABLESESSIONSTATE=False %><%
' An upload page written for Windows: it cuts the file out of the raw multipart body with the
' byte functions and shows its bytes in hex.
Function Bytes(s)
  Dim i : For i = 1 To Len(s) : Bytes = Bytes & ChrB(Asc(Mid(s, i, 1))) : Next
End Function
Dim data, crlf, boundary, headEnd, fileEnd, content, i, hexText
data = Request.BinaryRead(Request.TotalBytes)
crlf = ChrB(13) & ChrB(10)
boundary = MidB(data, 1, InStrB(1, data, crlf) - 1)
headEnd = InStrB(InStrB(1, data, Bytes("filename=")), data, crlf & crlf) + 4
fileEnd = InStrB(headEnd, data, crlf & boundary)
content = MidB(data, headEnd, fileEnd - headEnd)
For i = 1 To LenB(content)
  hexText = hexText & Right("0" & Hex(AscB(MidB(content, i, 1))), 2)
Next
Response.Write LenB(content) & "|" & hexText
%>