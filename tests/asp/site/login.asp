<%@ LANGUAGE="VBScript" CODEPAGE=65001 %>
<%
' Sign-in form: a right password keeps the user in the session and goes on to welcome.asp.
Dim message, user
user = Request.Cookies("lastuser")
If Request.ServerVariables("REQUEST_METHOD") = "POST" Then
  If Request.Form("user") <> "" And Request.Form("password") = "secret" Then
    Session("user") = Request.Form("user")
    Response.Cookies("lastuser") = Request.Form("user")
    Response.Cookies("lastuser").Expires = Date + 30
    Response.Redirect "welcome.asp"
  End If
  message = "Wrong user name or password."
  user = Request.Form("user")
End If
%>
<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>Sign in</title><link rel="stylesheet" href="style.css"></head>
<body>
<h1>Sign in</h1>
<p id="message"><%= Server.HTMLEncode(message) %></p>
<form method="post" action="login.asp">
  <label>User <input name="user" id="user" value="<%= Server.HTMLEncode(user) %>"></label>
  <label>Password <input name="password" id="password" type="password"></label>
  <button type="submit" id="signin">Sign in</button>
</form>
</body></html>