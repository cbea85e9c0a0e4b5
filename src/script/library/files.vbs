' Helpers of the default package for file fields (FldHtmlTag "FILE"): uploads kept in a folder
' of the application, whose name the column holds, and BLOB columns that hold the bytes.

' The upload folder of a field as a path from the application's root, with "/" between parts
' and at the end: its own FldUploadPath, else the project's UploadPath; "" for a BLOB column.
' A leading "~/" (the application's root) and any "." or ".." parts are dropped, so that the
' folder always lies inside the application.
Function qvUploadDir(f)
  Dim path, parts, i, out
  qvUploadDir = ""
  If qvIsBinaryType(f.FldType) Then Exit Function
  path = Trim(f.FldUploadPath)
  If path = "" Then path = Trim(PROJ.UploadPath)
  If path = "" Then path = "upload/"
  parts = Split(Replace(path, "\", "/"), "/")
  out = ""
  For i = 0 To UBound(parts)
    If parts(i) <> "" And parts(i) <> "~" And parts(i) <> "." And parts(i) <> ".." Then out = out & parts(i) & "/"
  Next
  If out = "" Then out = "upload/"
  qvUploadDir = out
End Function

' The name of a field's own page (the control of type "field"), by the same naming rule as
' the generator's: the table's variable, "_", the field's variable without its "x_".
Function qvFieldPageName(tbl, f)
  Dim name, sep
  name = tbl.TblVar & "_" & Mid(f.FldVar, 3)
  sep = PROJ.OutputNameExt
  Select Case LCase(PROJ.OutputNameType)
    Case "prefix": name = sep & name
    Case "infix": name = name & sep
    Case "suffix": name = name & sep
  End Select
  name = name & ".asp"
  If PROJ.OutputNameLCase Then name = LCase(name)
  qvFieldPageName = name
End Function

' The lines of the table definition that a file field adds: where its files live and which
' page hands them out. Only tables with a key get the page.
Function qvFileDef(f)
  Dim s
  qvFileDef = ""
  If UCase(Trim(f.FldHtmlTag)) <> "FILE" Then Exit Function
  s = qvDefLine("qvFld", "UploadDir", qvUploadDir(f), "")
  If TABLE.TblKey <> "" And TABLE.TblType <> "REPORT" And TABLE.TblType <> "CUSTOMVIEW" Then
    s = s & qvDefLine("qvFld", "FilePage", qvFieldPageName(TABLE, f), "")
  End If
  qvFileDef = s
End Function

' UploadAllowedFileExt as the pages compare it: lower case, without dots or blanks, joined by
' ",". Empty allows every type the server does not run.
Function qvUploadExtList()
  Dim parts, i, e, out
  parts = Split(Replace(Replace(PROJ.UploadAllowedFileExt, ";", ","), " ", ""), ",")
  out = ""
  For i = 0 To UBound(parts)
    e = LCase(parts(i))
    Do While Left(e, 1) = "." Or Left(e, 1) = "*"
      e = Mid(e, 2)
    Loop
    If e <> "" Then
      If out <> "" Then out = out & ","
      out = out & e
    End If
  Next
  qvUploadExtList = out
End Function
