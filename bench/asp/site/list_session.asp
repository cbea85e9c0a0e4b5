<!-- METADATA TYPE="TypeLib" NAME="Microsoft ActiveX Data Objects 2.8 Library" -->
<%
' The list page of list.asp with its session read and written on every request.
Dim conn, rs, first, i
Session("views") = Session("views") + 1
Session("page") = Request.QueryString("page")
first = 1 + (CLng("0" & Request.QueryString("page")) Mod 50) * 20
Set conn = Server.CreateObject("ADODB.Connection")
conn.Open "Provider=SQLite;Data Source=" & Server.MapPath("products.db")
Set rs = conn.Execute("SELECT id, name, price, note FROM product WHERE id >= " & first & " ORDER BY id LIMIT 20")
%>
<p>Views in this session: <%= Session("views") %></p>
<table>
<tr><th>Id</th><th>Name</th><th>Price</th><th>Note</th></tr>
<% Do While Not rs.EOF %>
<tr><td><%= Server.HTMLEncode(rs("id")) %></td><td><%= Server.HTMLEncode(rs("name")) %></td><td><%= Server.HTMLEncode(rs("price")) %></td><td><%= Server.HTMLEncode(rs("note")) %></td></tr>
<%   rs.MoveNext
   Loop
   rs.Close
   conn.Close %>
</table>
