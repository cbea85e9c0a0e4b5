<%@ LANGUAGE="VBScript" CODEPAGE=65001 %>
<html><body>Hello <%= Server.HTMLEncode(Request.QueryString("name")) %></body></html>
