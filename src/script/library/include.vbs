' Functions that "include" sessions of a control file call. A session of that type becomes the
' one-line template <!--##=Include_File("value","parm")##-->, run when the page is made.

' The server-side include directive of a generated page for the file `session` (the session's
' value). `parm` "virtual" makes it a virtual include, a path from the application's root;
' anything else a file include, a path from the page's folder.
Function Include_File(session, parm)
  Dim kind
  If LCase(Trim(CStr(parm))) = "virtual" Then kind = "virtual" Else kind = "file"
  Include_File = "<!--#include " & kind & "=""" & CStr(session) & """-->" & vbCrLf
End Function
