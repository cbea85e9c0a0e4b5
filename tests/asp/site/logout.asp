<%
Session.Abandon
Response.Redirect "login.asp"
%>