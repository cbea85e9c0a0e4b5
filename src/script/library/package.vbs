' Helpers of the default template package, run while pages are generated. They turn the
' project's settings into the small pieces of VBScript and HTML that the templates place; what
' the generated application does when it runs lives in the package's own include files.

' Texts of the layout that a user's code file may replace: a function USER_qvBrand(text) or
' USER_qvFooter(text) there gets the package's HTML and returns its own. They are variables,
' not functions, because a tag is handed to a USER_ function only when the system has no
' function of that name.
Dim qvBrand, qvFooter

' The phrase id of the current table's kind, for the "$" tags that look it up as the page is
' made: "Tables", "Views", "CustomViews" or "Reports".
Function qvKindPhrase()
  Select Case TABLE.TblType
    Case "VIEW": qvKindPhrase = "Views"
    Case "CUSTOMVIEW": qvKindPhrase = "CustomViews"
    Case "REPORT": qvKindPhrase = "Reports"
    Case Else: qvKindPhrase = "Tables"
  End Select
End Function

' A language phrase as a VBScript string literal, for phrases that land inside page code.
Function qvL(id)
  qvL = qvQuoteVBS(LANG.Phrase(id))
End Function

' The kind of the project's database as the connection include knows it: "access",
' "sqlserver", "mysql", "oracle", "sqlite", "postgresql" or "other".
Function qvDbKind()
  Dim name
  name = LCase(DB.DBDBMSName)
  If DB.DBType = "ACCESS" Or name = "ms jet" Or name = "access" Then
    qvDbKind = "access"
  ElseIf InStr(name, "microsoft") > 0 And InStr(name, "sql") > 0 Then
    qvDbKind = "sqlserver"
  ElseIf InStr(name, "mysql") > 0 Or InStr(name, "mariadb") > 0 Then
    qvDbKind = "mysql"
  ElseIf InStr(name, "sqlite") > 0 Then
    qvDbKind = "sqlite"
  ElseIf InStr(name, "postgres") > 0 Then
    qvDbKind = "postgresql"
  ElseIf InStr(name, "ora") > 0 Then
    qvDbKind = "oracle"
  Else
    qvDbKind = "other"
  End If
End Function

' The file name of one of a table's pages, by the project's naming rule, as the generator
' names the file it writes.
Function qvPageName(tbl, page)
  Dim name, sep
  sep = PROJ.OutputNameExt
  Select Case LCase(PROJ.OutputNameType)
    Case "prefix": name = sep & tbl.TblVar & page
    Case "infix": name = tbl.TblVar & sep & page
    Case "suffix": name = tbl.TblVar & page & sep
    Case Else: name = tbl.TblVar & page
  End Select
  name = name & ".asp"
  If PROJ.OutputNameLCase Then name = LCase(name)
  qvPageName = name
End Function

' Whether a page of a table is generated: the same test as the conditions of control.xml.
Function qvHasPage(tbl, page)
  Dim editable
  qvHasPage = False
  If Not tbl.TblGen Then Exit Function
  If tbl.TblType = "REPORT" Then qvHasPage = (page = "report") : Exit Function
  editable = tbl.TblUpdatable And DB.DBType <> "ACCESS" And tbl.TblKey <> ""
  Select Case page
    Case "list": qvHasPage = tbl.TblList
    Case "view": qvHasPage = tbl.TblView And tbl.TblKey <> ""
    Case "add": qvHasPage = tbl.TblAdd And editable
    Case "copy": qvHasPage = tbl.TblAdd And tbl.TblCopy And editable
    Case "edit": qvHasPage = tbl.TblEdit And editable
    Case "delete": qvHasPage = tbl.TblDelete And editable
    Case "export": qvHasPage = tbl.TblList
    Case "search": qvHasPage = tbl.TblList And (UCase(tbl.TblSrchType) = "ADVANCED" Or UCase(tbl.TblSrchType) = "BOTH")
  End Select
End Function

' The page name, or "" when the table has no such page.
' A copy is made on the add page.
Function qvPageIf(tbl, page)
  Dim file
  file = page
  If page = "copy" Then file = "add"
  If qvHasPage(tbl, page) Then qvPageIf = qvPageName(tbl, file) Else qvPageIf = ""
End Function

' The menu of the home page and of the layout: one entry per generated table, view, custom
' view and report, in the project's order, each pointing at its list page (a report at its
' only page). Every page of a run shows the same menu, and with hundreds of tables making it
' was most of a page's work, so a run makes it once: the script engine is new for each run.
Dim qvMenuText, qvMenuTables
qvMenuTables = -1

Function qvMenuItems()
  Dim i, t, s, kind, page
  If qvMenuTables <> DB.Tables.Count Then
    s = ""
    For i = 1 To DB.Tables.Count
      Set t = DB.Tables.Seq(i)
      If Not t Is Nothing Then
        page = "list"
        If t.TblType = "REPORT" Then page = "report"
        If qvHasPage(t, page) Then
          kind = LCase(t.TblType)
          ' With a login, each user sees the lists that the user's level may open.
          If qvSecMode() <> "" Then s = s & "<% If qvSecCan(" & qvQuoteVBS(t.TblName) & ", ""L"") Then %>"
          s = s & "<li><a class=""qvMenu-" & qvHtmlEncode(kind) & """ href=""" & _
              qvHtmlEncode(qvPageName(t, page)) & """>" & qvHtmlEncode(qvCaptionOf(t.TblCaption)) & "</a></li>"
          If qvSecMode() <> "" Then s = s & "<% End If %>"
          s = s & vbCrLf
        End If
      End If
    Next
    qvMenuText = s
    qvMenuTables = DB.Tables.Count
  End If
  qvMenuItems = qvIndentLines(qvMenuText)
End Function

' One assignment of the table definition, left out when the value is the run-time default.
Function qvDefLine(target, prop, value, dflt)
  If CStr(value) = CStr(dflt) Then
    qvDefLine = ""
  ElseIf VarType(value) = vbBoolean Then
    qvDefLine = target & "." & prop & " = " & CStr(value) & vbCrLf
  Else
    qvDefLine = target & "." & prop & " = " & qvQuoteVBS(value) & vbCrLf
  End If
End Function

'' A caption as the pages show it. Captions made from lower-case names ("genre_id" becomes
' "genre id") would start the application's headings and labels in lower case: one that has
' no capital at all gets one at its start. The project keeps the caption as it is, and a
' caption with any capital letter is the user's choice and stays.
Function qvCaptionOf(text)
  qvCaptionOf = text
  If text = LCase(text) Then qvCaptionOf = UCase(Left(text, 1)) & Mid(text, 2)
End Function

' A setting that is a whole number, 0 when it holds none.
Function qvNum(value)
  If IsNumeric(value) And Trim(CStr(value)) <> "" Then qvNum = CLng(value) Else qvNum = 0
End Function

' The definition of the current table that every page of it starts from: its names, pages,
' options and fields, as statements of the run-time library's qvTableDef.
Function qvTableDef()
  Dim s, t, i, f, sortable
  Set t = TABLE
  s = "Set qvTbl = New qvTableDef" & vbCrLf
  s = s & "qvTbl.Init " & qvQuoteVBS(t.TblName) & ", " & qvQuoteVBS(qvCaptionOf(t.TblCaption)) & ", " & _
      qvQuoteVBS(t.TblType) & vbCrLf
  s = s & "qvTbl.SetPages " & qvQuoteVBS(qvPageIf(t, "list")) & ", " & qvQuoteVBS(qvPageIf(t, "view")) & _
      ", " & qvQuoteVBS(qvPageIf(t, "add")) & ", " & qvQuoteVBS(qvPageIf(t, "copy")) & ", " & _
      qvQuoteVBS(qvPageIf(t, "edit")) & ", " & qvQuoteVBS(qvPageIf(t, "delete")) & vbCrLf
  s = s & qvDefLine("qvTbl", "RecPerPage", qvNum(t.TblRecPerPage), 20)
  s = s & qvDefLine("qvTbl", "RecPerPageList", t.TblRecPerPageList, "10,20,50,100,ALL")
  s = s & qvDefLine("qvTbl", "PagerStyle", qvNum(t.TblPagerStyle), 2)
  s = s & qvDefLine("qvTbl", "SortType", qvNum(t.TblSortType), 1)
  s = s & qvDefLine("qvTbl", "ShowBlank", t.TblShowBlankListPage, False)
  s = s & qvDefLine("qvTbl", "MultiDelete", t.TblMultiDelete And qvHasPage(t, "delete"), False)
  s = s & qvDefLine("qvTbl", "InlineEdit", t.TblInlineEdit And qvHasPage(t, "edit"), False)
  s = s & qvDefLine("qvTbl", "InlineDelete", t.TblInlineDelete And qvHasPage(t, "delete"), False)
  s = s & qvDefLine("qvTbl", "LinkOnLeft", t.TblLinkOnLeft, False)
  s = s & qvDefLine("qvTbl", "Filter", t.TblFilter, "")
  s = s & qvDefLine("qvTbl", "SearchType", t.TblSrchType, "")
  s = s & qvDefLine("qvTbl", "TopPageLink", t.TblTopPageLink, False)
  s = s & qvDefLine("qvTbl", "ExportCsv", t.TblExportCsv, False)
  s = s & qvSearchTableDef(t)
  For i = 1 To t.Fields.Count
    Set f = t.Fields.Seq(i)
    If Not f Is Nothing Then
      If f.FldGenerate Then s = s & qvFieldDef(f)
    End If
  Next
  qvTableDef = qvIndentLines(s)
End Function

Function qvFieldDef(f)
  Dim s, tag
  s = "Set qvFld = qvTbl.AddField(" & qvQuoteVBS(f.FldName) & ", " & qvQuoteVBS(f.FldVar) & ", " & _
      qvQuoteVBS(qvCaptionOf(f.FldCaption)) & ", " & CLng(f.FldType) & ")" & vbCrLf
  s = s & qvDefLine("qvFld", "IsKey", f.FldIsPrimaryKey Or qvInKey(f.FldName), False)
  s = s & qvDefLine("qvFld", "AutoInc", f.FldAutoIncrement, False)
  s = s & qvDefLine("qvFld", "InList", f.FldList, False)
  s = s & qvDefLine("qvFld", "InView", f.FldView, False)
  s = s & qvDefLine("qvFld", "InAdd", f.FldAdd And Not f.FldAutoIncrement, False)
  s = s & qvDefLine("qvFld", "InEdit", f.FldEdit And Not f.FldAutoIncrement, False)
  s = s & qvDefLine("qvFld", "BasicSearch", f.FldBasicSearch Or f.FldExtendedBasicSearch, False)
  s = s & qvDefLine("qvFld", "Sortable", Not qvIsLongType(f.FldType) And Not qvIsBinaryType(f.FldType), True)
  tag = UCase(Trim(f.FldHtmlTag))
  s = s & qvDefLine("qvFld", "HtmlTag", tag, "TEXT")
  s = s & qvDefLine("qvFld", "ReadOnly", f.FldHtmlTagReadOnly, False)
  s = s & qvDefLine("qvFld", "TagSize", qvSizeText(f.FldTagSize), "")
  s = s & qvDefLine("qvFld", "TagMaxLength", qvSizeText(f.FldTagMaxLength), "")
  s = s & qvDefLine("qvFld", "TagRows", qvSizeText(f.FldTagRows), "")
  s = s & qvDefLine("qvFld", "TagCols", qvSizeText(f.FldTagCols), "")
  s = s & qvDefLine("qvFld", "TagValues", f.FldTagValues, "")
  s = s & qvDefLine("qvFld", "HiddenValue", f.FldTagHiddenValue, "")
  s = s & qvDefLine("qvFld", "SelectMultiple", f.FldSelectMultiple, False)
  If tag = "RADIO" Or tag = "CHECKBOX" Then s = s & qvDefLine("qvFld", "RepeatColumns", qvNum(f.FldRepeatColumns), 0)
  If Trim(f.FldTagLnkTbl) <> "" And Trim(f.FldTagLnkFld) <> "" Then
    s = s & "qvFld.SetLookup " & qvQuoteVBS(f.FldTagLnkTbl) & ", " & qvQuoteVBS(f.FldTagLnkFld) & ", " & _
        qvQuoteVBS(f.FldTagLnkDisplay) & ", " & qvQuoteVBS(f.FldTagLnkDisp2) & ", " & _
        qvQuoteVBS(f.FldTagLnkOrderBy) & ", " & qvQuoteVBS(f.FldTagLnkOrderType) & ", " & _
        CStr(CBool(f.FldTagLnkDistinct)) & vbCrLf
  End If
  s = s & qvDefLine("qvFld", "DefaultValue", f.FldDefault, "")
  s = s & qvDefLine("qvFld", "PopCalendar", f.FldPopCalendar, False)
  s = s & qvDefLine("qvFld", "ViewTag", UCase(f.FldViewTag), "FORMATTED TEXT")
  s = s & qvDefLine("qvFld", "FmtType", f.FldFmtType, "None")
  s = s & qvDefLine("qvFld", "DtFormat", f.FldDtFormat, "")
  s = s & qvDefLine("qvFld", "NumDigits", qvNum(f.FldNumDigits), 0)
  s = s & qvDefLine("qvFld", "IncLead", qvNum(f.FldIncLeadDigit), -2)
  s = s & qvDefLine("qvFld", "UseParen", qvNum(f.FldUseParen), -2)
  s = s & qvDefLine("qvFld", "GpDigits", qvNum(f.FldGpDigits), -2)
  s = s & qvDefLine("qvFld", "HrefFld", f.FldHrefFld, "")
  s = s & qvDefLine("qvFld", "ATarget", f.FldTagATarget, "")
  If f.FldTagAPrefix <> "None" Then s = s & qvDefLine("qvFld", "APrefix", f.FldTagAPrefix, "")
  s = s & qvDefLine("qvFld", "ASuffix", f.FldTagASuffix, "")
  s = s & qvDefLine("qvFld", "ImgWidth", qvSizeText(f.FldTagImgWidth), "")
  s = s & qvDefLine("qvFld", "ImgHeight", qvSizeText(f.FldTagImgHeight), "")
  s = s & qvDefLine("qvFld", "Align", LCase(f.FldAlign), "")
  s = s & qvDefLine("qvFld", "Bold", f.FldBold, False)
  s = s & qvDefLine("qvFld", "Italic", f.FldItalic, False)
  s = s & qvDefLine("qvFld", "ColWidth", f.FldColumnWidth, "")
  s = s & qvDefLine("qvFld", "ColWrap", f.FldColumnWrap, True)
  s = s & qvDefLine("qvFld", "Required", f.FldRequired, False)
  s = s & qvDefLine("qvFld", "Validate", UCase(f.FldValidate), "")
  s = s & qvDefLine("qvFld", "MinV", f.FldMin, "")
  s = s & qvDefLine("qvFld", "MaxV", f.FldMax, "")
  s = s & qvDefLine("qvFld", "ErrMsg", f.FldErrMsg, "")
  s = s & qvDefLine("qvFld", "CheckDup", f.FldCheckDuplicate, False)
  s = s & qvDefLine("qvFld", "OrderDir", UCase(f.FldOrder), "")
  s = s & qvSearchFieldDef(f)
  s = s & qvFileDef(f)
  qvFieldDef = s
End Function

'' A size setting of a control: "" when it holds no positive number.
Function qvSizeText(value)
  If qvNum(value) > 0 Then qvSizeText = CStr(qvNum(value)) Else qvSizeText = ""
End Function

' Whether a field is one of the columns of the current table's key (TblKey lists them).
Function qvInKey(name)
  Dim parts, i
  qvInKey = False
  parts = Split(TABLE.TblKey, ",")
  For i = 0 To UBound(parts)
    If LCase(Trim(qvUnbracket(parts(i)))) = LCase(name) Then qvInKey = True
  Next
End Function

Function qvUnbracket(s)
  s = Trim(s)
  If Len(s) >= 2 And Left(s, 1) = "[" And Right(s, 1) = "]" Then s = Mid(s, 2, Len(s) - 2)
  qvUnbracket = s
End Function

' The stylesheets a page links: the one generated from the project, and the user's own file
' (CSS) when it is there to be copied beside it.
Function qvStyleLinks()
  Dim s, own, fso
  s = ""
  If PROJ.UseCss Then
    s = "<link rel=""stylesheet"" href=""" & qvHtmlEncode(qvCssName()) & """>"
  End If
  own = Trim(PROJ.CSS)
  If own <> "" Then
    Set fso = CreateObject("Scripting.FileSystemObject")
    If fso.FileExists(own) Then
      own = Mid(own, InStrRev(Replace(own, "\", "/"), "/") + 1)
      s = s & vbCrLf & "<link rel=""stylesheet"" href=""" & qvHtmlEncode(own) & """>"
    End If
  End If
  qvStyleLinks = qvIndentLines(s)
End Function

Function qvCssName()
  qvCssName = PROJ.ProjName & ".css"
  If PROJ.OutputNameLCase Then qvCssName = LCase(qvCssName)
End Function

' --- The database as the generated application reaches it ---------------------------------

' The name of the database file the run copies beside the application, or "" for a server.
Function qvDbFileName()
  Dim src
  src = ""
  If DB.DBType = "ACCESS" Then
    src = DB.DBPhyPath
  ElseIf InStr(1, DB.DBConnstr, "Provider=SQLite", 1) > 0 Then
    src = qvConnValue(DB.DBConnstr, "Data Source")
    If src = "" Then src = qvConnValue(DB.DBConnstr, "Database")
  End If
  src = Replace(src, "\", "/")
  qvDbFileName = Mid(src, InStrRev(src, "/") + 1)
End Function

' Where the run put the copy, from the application's root: below the folder DBPath names
' (without its "~" and leading slashes), as the database copy of the run places it.
Function qvDbFileRelPath()
  Dim folder
  folder = Replace(Trim(DB.DBPath), "\", "/")
  If Left(folder, 1) = "~" Then folder = Mid(folder, 2)
  Do While Left(folder, 1) = "/"
    folder = Mid(folder, 2)
  Loop
  If folder <> "" And Right(folder, 1) <> "/" Then folder = folder & "/"
  qvDbFileRelPath = folder & qvDbFileName()
End Function

Function qvDbFileProvider()
  If DB.DBType = "ACCESS" Then
    qvDbFileProvider = "Provider=Microsoft.Jet.OLEDB.4.0"
  Else
    qvDbFileProvider = "Provider=SQLite"
  End If
End Function

' The connection string of a database server: the project's own, or a DSN with the login.
Function qvDbServerConnString()
  Dim s
  s = Trim(DB.DBConnstr)
  If s = "" Then
    s = "DSN=" & DB.DBName
  End If
  If InStr(1, s, "UID=", 1) = 0 And InStr(1, s, "User ID=", 1) = 0 And Trim(DB.DBUID) <> "" Then
    s = s & ";UID=" & DB.DBUID
  End If
  If InStr(1, s, "PWD=", 1) = 0 And InStr(1, s, "Password=", 1) = 0 And Trim(DB.DBPwd) <> "" Then
    s = s & ";PWD=" & DB.DBPwd
  End If
  qvDbServerConnString = s
End Function

' The value of one key of a connection string ("Data Source=x;..."), "" when it is missing.
Function qvConnValue(connstr, key)
  Dim parts, i, eq
  qvConnValue = ""
  parts = Split(connstr, ";")
  For i = 0 To UBound(parts)
    eq = InStr(parts(i), "=")
    If eq > 0 Then
      If StrComp(Trim(Left(parts(i), eq - 1)), key, 1) = 0 Then
        qvConnValue = Trim(Mid(parts(i), eq + 1))
        Exit Function
      End If
    End If
  Next
End Function

' The stylesheet's base font size for BodySize, the seven sizes of HTML's old <font size>.
Function qvBodyFontSize()
  Select Case qvNum(PROJ.BodySize)
    Case 1: qvBodyFontSize = "13px"
    Case 3: qvBodyFontSize = "17px"
    Case 4: qvBodyFontSize = "19px"
    Case 5: qvBodyFontSize = "23px"
    Case 6: qvBodyFontSize = "28px"
    Case 7: qvBodyFontSize = "36px"
    Case Else: qvBodyFontSize = "15px"
  End Select
End Function
