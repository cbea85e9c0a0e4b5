<%@ LANGUAGE="VBScript" CODEPAGE=65001 %>
<%
If Session("user") = "" Then Response.Redirect "login.asp"
Session("visits") = Session("visits") + 1
If Request.Form("note") <> "" Then Session("note") = Request.Form("note")
%>
<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>Welcome</title><link rel="stylesheet" href="style.css"></head>
<body>
<h1 id="greeting">Welcome, <%= Server.HTMLEncode(Session("user")) %></h1>
<p id="visits"><%= Session("visits") %></p>
<p id="note"><%= Server.HTMLEncode(Session("note")) %></p>
<p id="notelength"><%= Len(Session("note")) %></p>
<form method="post" action="welcome.asp">
  <input name="note" id="notefield"><button type="submit" id="save">Save note</button>
</form>
<form method="post" action="upload.asp" enctype="multipart/form-data">
  <input name="title" id="title"><input type="file" name="file" id="file"><button type="submit" id="send">Upload</button>
</form>
<p><a id="logout" href="logout.asp">Sign out</a></p>
</body></html>