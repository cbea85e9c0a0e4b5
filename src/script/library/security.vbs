' Helpers of the default template package for the login and user levels of the generated
' application: they turn the project's security settings into the constants and the table of
' rules that the application's security include checks on every request.

' The kind of login the project asks for: "fixed" (one login name and password in the
' project), "table" (the users of a table), "both", or "" when the application is open.
' SecType is a free text: "Hard Code"/"Fixed", "Use Table"/"Table" and "Both" are understood.
Function qvSecMode()
  Dim t
  t = LCase(Trim(PROJ.SecType & ""))
  qvSecMode = ""
  If t = "" Or t = "none" Then Exit Function
  If InStr(t, "both") > 0 Then
    qvSecMode = "both"
  ElseIf InStr(t, "table") > 0 Or InStr(t, "user") > 0 Then
    qvSecMode = "table"
  Else
    ' Any other word still closes the application: a typing slip must not open it.
    qvSecMode = "fixed"
  End If
End Function

' A database setting of the user table, "" when there is no database.
Function qvSecDbSetting(name)
  qvSecDbSetting = ""
  If IsObject(DB) Then
    If Not DB Is Nothing Then qvSecDbSetting = Trim(DB.Properties(name).Value & "")
  End If
End Function

' The constants of the security include, one per line.
Function qvSecConstants()
  Dim s
  s = "Const qvSecMode = " & qvQuoteVBS(qvSecMode()) & vbCrLf
  s = s & "Const qvSecFixedLogin = " & qvQuoteVBS(Trim(PROJ.SecLoginID & "")) & vbCrLf
  s = s & "Const qvSecFixedPasswd = " & qvQuoteVBS(qvSecFixedHash()) & vbCrLf
  s = s & "Const qvSecUserTbl = " & qvQuoteVBS(Trim(PROJ.SecTbl & "")) & vbCrLf
  s = s & "Const qvSecLoginFld = " & qvQuoteVBS(Trim(PROJ.SecLoginIDFld & "")) & vbCrLf
  s = s & "Const qvSecPasswdFld = " & qvQuoteVBS(Trim(PROJ.SecPasswdFld & "")) & vbCrLf
  s = s & "Const qvSecEmailFld = " & qvQuoteVBS(Trim(PROJ.SecEmailFld & "")) & vbCrLf
  s = s & "Const qvSecLevelFld = " & qvQuoteVBS(qvSecDbSetting("SecUserLevelFld")) & vbCrLf
  s = s & "Const qvSecUserIdFld = " & qvQuoteVBS(qvSecDbSetting("SecuUserIDFld")) & vbCrLf
  s = s & "Const qvSecRegister = " & CStr(qvSecFlag(PROJ.SecRegisterPage)) & vbCrLf
  s = s & "Const qvSecChangePwd = " & CStr(qvSecFlag(PROJ.SecChangePwdPage)) & vbCrLf
  s = s & "Const qvSecForgotPwd = " & CStr(qvSecFlag(PROJ.SecForgetPwdPage)) & vbCrLf
  s = s & "Const qvAuditPath = " & qvQuoteVBS(qvSecAuditFolder()) & vbCrLf
  ' Rights kept in a table of the database, per table and level, instead of TblSecurity.
  s = s & "Const qvSecDynamic = " & CStr(qvSecFlag(qvSecDbSetting("UseDynamicUserLevel")) And _
      qvSecDbSetting("UserLevelPrivTbl") <> "" And qvSecDbSetting("UserLevelPrivTblNameFld") <> "" And _
      qvSecDbSetting("UserLevelPrivUserLevelFld") <> "" And qvSecDbSetting("UserLevelPrivPrivFld") <> "") & vbCrLf
  s = s & "Const qvSecPrivTbl = " & qvQuoteVBS(qvSecDbSetting("UserLevelPrivTbl")) & vbCrLf
  s = s & "Const qvSecPrivTblNameFld = " & qvQuoteVBS(qvSecDbSetting("UserLevelPrivTblNameFld")) & vbCrLf
  s = s & "Const qvSecPrivLevelFld = " & qvQuoteVBS(qvSecDbSetting("UserLevelPrivUserLevelFld")) & vbCrLf
  s = s & "Const qvSecPrivFld = " & qvQuoteVBS(qvSecDbSetting("UserLevelPrivPrivFld")) & vbCrLf
  qvSecConstants = qvIndentLines(s)
End Function

' The project's fixed password as the application keeps it: a salted slow hash, so that the
' pages (and whoever reads them) never hold the password itself. A SecPasswd that is a hash
' already stays as it is; none gives "", which no password matches. The hash is made once per
' run: every page that includes the constants gets the same one.
Dim qvSecHashOf, qvSecHashMade

Function qvSecFixedHash()
  Dim pw
  pw = PROJ.SecPasswd & ""
  qvSecFixedHash = ""
  If pw = "" Then Exit Function
  If Left(pw, 10) = "$argon2id$" Then qvSecFixedHash = pw : Exit Function
  If qvSecHashOf <> pw Or qvSecHashMade = "" Then
    qvSecHashMade = CreateObject("Quorvex.Password").Hash(pw)
    qvSecHashOf = pw
  End If
  qvSecFixedHash = qvSecHashMade
End Function

' A Boolean setting that may be empty: only True is True.
Function qvSecFlag(v)
  qvSecFlag = False
  If VarType(v) = vbBoolean Then qvSecFlag = v : Exit Function
  If LCase(Trim(v & "")) = "true" Or Trim(v & "") = "1" Or Trim(v & "") = "-1" Then qvSecFlag = True
End Function

' The audit trail's folder from the application's root, "/" at the end, without "~".
Function qvSecAuditFolder()
  Dim p
  p = Replace(Trim(PROJ.AuditTrailPath & ""), "\", "/")
  If Left(p, 1) = "~" Then p = Mid(p, 2)
  Do While Left(p, 1) = "/"
    p = Mid(p, 2)
  Loop
  If p = "" Then p = "audit/"
  If Right(p, 1) <> "/" Then p = p & "/"
  qvSecAuditFolder = p
End Function

' The rules of every table that has any: Case lines of the include's qvSecRules, giving the
' owner field (TblUserIDFld), the rights per level (TblSecurity) and the audit switch
' (TblAuditTrail). A table without any has no line and takes the defaults.
Function qvSecRuleCases()
  Dim i, t, s, owner, rights, audit
  s = ""
  For i = 1 To DB.Tables.Count
    Set t = DB.Tables.Seq(i)
    If Not t Is Nothing Then
      owner = Trim(t.TblUserIDFld & "")
      rights = Trim(t.TblSecurity & "")
      audit = qvSecFlag(t.TblAuditTrail)
      If owner <> "" Or rights <> "" Or audit Then
        s = s & "Case " & qvQuoteVBS(LCase(t.TblName)) & ": qvSecRules = Array(" & qvQuoteVBS(owner) & _
            ", " & qvQuoteVBS(rights) & ", " & CStr(audit) & ")" & vbCrLf
      End If
    End If
  Next
  qvSecRuleCases = qvIndentLines(s)
End Function
