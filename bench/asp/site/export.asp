<%@ ENABLESESSIONSTATE=False %>
<%
' 100,000 rows as CSV, written unbuffered: the server's memory must not grow with the export.
Dim conn, rs
Response.Buffer = False
Response.ContentType = "text/csv"
Set conn = Server.CreateObject("ADODB.Connection")
conn.Open "Provider=SQLite;Data Source=" & Server.MapPath("products.db")
Set rs = conn.Execute("SELECT a.id * 1000 + b.id, b.name, b.price, b.note FROM product a, product b WHERE a.id <= 100 ORDER BY 1")
Do While Not rs.EOF
  Response.Write rs(0) & ",""" & rs(1) & """," & rs(2) & ",""" & Replace(rs(3), """", """""") & """" & vbCrLf
  rs.MoveNext
Loop
rs.Close
conn.Close
%>
