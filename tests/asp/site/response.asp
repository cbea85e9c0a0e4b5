<%
Select Case Request.QueryString("case")
Case "status"
  Response.Status = "404 Not Here"
  Response.Write "gone"
Case "headers"
  Response.ContentType = "application/json"
  Response.Charset = "utf-8"
  Response.AddHeader "X-Thing", "one"
  Response.CacheControl = "no-cache"
  Response.Expires = -1
  Response.Write "{""ok"":true}"
Case "cookies"
  Response.Cookies("plain") = "a b&c"
  Response.Cookies("keyed")("k1") = "v1"
  Response.Cookies("keyed")("k2") = "v2"
  Response.Cookies("keyed").Path = "/"
  Response.Cookies("keyed").Expires = #2030-01-02 03:04:05#
  Response.Cookies("secure") = "s"
  Response.Cookies("secure").Secure = True
  Response.Cookies("secure").HttpOnly = True
  Response.Cookies("secure").Domain = "example.com"
  Response.Write "cookies"
Case "redirect"
  Response.Write "never seen"
  Response.Redirect "hello.asp?name=moved"
  Response.Write "not reached"
Case "end"
  Response.Write "before"
  On Error Resume Next
  Response.End
  Response.Write "after"
Case "clear"
  Response.Write "dropped"
  Response.Clear
  Response.Write "kept"
Case "flush"
  Response.Write "x"
  Response.Flush
  On Error Resume Next
  Response.AddHeader "X-Late", "1"
  Response.Write "|" & Err.Number & "|" & Err.Source
Case "binary"
  Response.ContentType = "application/octet-stream"
  Response.BinaryWrite ChrB(0) & ChrB(255)
Case "props"
  Response.Write Response.Buffer & "|" & Response.ContentType & "|" & Response.Status & "|" & Response.IsClientConnected & "|" & Response.CodePage
End Select
%>