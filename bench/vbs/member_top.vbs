' The page-body form: the object, counter and sum are module variables.
Dim c, i, s
Set c = CreateObject("QuorvexVbs.Counter")
c.Value = 3
s = 0
For i = 1 To 9000000
  s = s + c.Value
Next
WScript.Echo s
