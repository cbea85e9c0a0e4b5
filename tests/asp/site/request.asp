<%@ LANGUAGE="VBScript" %>
<%
' One line per fact, "name=value", for the tests to read.
Response.ContentType = "text/plain"
Sub Show(name, value)
  Response.Write name & "=" & value & vbCrLf
End Sub
Show "q.a", Request.QueryString("a")
Show "q.a.count", Request.QueryString("a").Count
If Request.QueryString("a").Count > 1 Then Show "q.a.2", Request.QueryString("a")(2)
Show "q.raw", Request.QueryString
Show "q.missing.empty", IsEmpty(Request.QueryString("missing"))
Dim k, keys
For Each k In Request.QueryString
  keys = keys & k & ";"
Next
Show "q.keys", keys
Show "f.name", Request.Form("name")
Show "f.count", Request.Form.Count
keys = ""
For Each k In Request.Form
  keys = keys & k & ";"
Next
Show "f.keys", keys
Show "default.a", Request("a")
Show "default.name", Request("name")
Show "c.plain", Request.Cookies("plain")
Show "c.keyed.k1", Request.Cookies("keyed")("k1")
Show "c.keyed.haskeys", Request.Cookies("keyed").HasKeys
Show "sv.method", Request.ServerVariables("REQUEST_METHOD")
Show "sv.script", Request.ServerVariables("SCRIPT_NAME")
Show "sv.query", Request.ServerVariables("QUERY_STRING")
Show "sv.agent", Request.ServerVariables("HTTP_USER_AGENT")
Show "sv.x", Request.ServerVariables("HTTP_X_CUSTOM_THING")
Show "sv.remote", Request.ServerVariables("REMOTE_ADDR")
Show "sv.port", Request.ServerVariables("SERVER_PORT")
Show "total", Request.TotalBytes
Show "len.name", Len(Request.Form("name"))
%>