ok
<%
If True Then
  x = (1 +
End If
%>