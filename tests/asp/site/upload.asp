<%@ LANGUAGE="VBScript" CODEPAGE=65001 %>
<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>Uploaded</title></head>
<body>
<p id="title"><%= Server.HTMLEncode(Request.Form("title")) %></p>
<p id="filename"><%= Server.HTMLEncode(Request.Form("file")) %></p>
<p id="bytes"><%= Request.TotalBytes %></p>
</body></html>