<%
Server.ScriptTimeout = 1
Do
Loop
%>