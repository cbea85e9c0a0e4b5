<%@ ENABLESESSIONSTATE=False %><!-- METADATA TYPE="TypeLib" NAME="Microsoft ActiveX Data Objects 2.8 Library" -->
<%
' Twenty rows of a thousand, every value HTML-encoded: the everyday list page.
Dim conn, rs, first, i
first = 1 + (CLng("0" & Request.QueryString("page")) Mod 50) * 20
Set conn = Server.CreateObject("ADODB.Connection")
conn.Open "Provider=SQLite;Data Source=" & Server.MapPath("products.db")
Set rs = conn.Execute("SELECT id, name, price, note FROM product WHERE id >= " & first & " ORDER BY id LIMIT 20")
%>
<table>
<tr><th>Id</th><th>Name</th><th>Price</th><th>Note</th></tr>
<% Do While Not rs.EOF %>
<tr><td><%= Server.HTMLEncode(rs("id")) %></td><td><%= Server.HTMLEncode(rs("name")) %></td><td><%= Server.HTMLEncode(rs("price")) %></td><td><%= Server.HTMLEncode(rs("note")) %></td></tr>
<%   rs.MoveNext
   Loop
   rs.Close
   conn.Close %>
</table>
