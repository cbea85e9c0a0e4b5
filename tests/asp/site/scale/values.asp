<%
' Every kind of value a shared session keeps, written with ?set=1 and listed on any server.
Response.ContentType = "text/plain"
If Request.QueryString("set") = "1" Then
  Session("int") = CInt(-7)
  Session("long") = 123456789
  Session("dbl") = 1.5E+300
  Session("sng") = CSng(0.25)
  Session("cur") = CCur("12.3456")
  Session("date") = DateSerial(2026, 11, 25) + TimeSerial(13, 45, 0)
  Session("text") = "Grüße " & ChrW(&HD834) & ChrW(&HDD1E)
  Session("none") = ""
  Session("empty") = Empty
  Session("null") = Null
  Session("bool") = True
  Session("byte") = CByte(200)
  Dim m(1, 2)
  m(1, 2) = "x"
  m(0, 1) = Array(False, Null)
  Session("matrix") = m
  Session.Timeout = 7
  On Error Resume Next
  Set Session("dict") = CreateObject("Scripting.Dictionary")
  Response.Write "refused=" & Hex(Err.Number) & "|" & Err.Source & "|" & Err.Description & vbCrLf
  On Error GoTo 0
End If
Dim k, v
For Each k In Session.Contents
  v = Session(k)
  If IsArray(v) Then
    v = UBound(v, 1) & "x" & UBound(v, 2) & ":" & v(1, 2) & ":" & TypeName(v(0, 0)) & ":" & _
        TypeName(v(0, 1)) & ":" & v(0, 1)(0) & ":" & IsNull(v(0, 1)(1))
  ElseIf IsNull(v) Then
    v = "(null)"
  End If
  Response.Write k & "=" & TypeName(Session(k)) & " " & v & vbCrLf
Next
Response.Write "timeout=" & Session.Timeout & vbCrLf
Response.Write "bag=" & TypeName(Bag) & vbCrLf
%>