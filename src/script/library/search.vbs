' Search, export and master/detail in the default package: the lines of a table's and a
' field's definition that steer them, written for the run-time library's qvTableDef and
' qvFieldDef.

' The table's search page (when its search type asks for one), its export formats and its
' master table.
Function qvSearchTableDef(t)
  Dim s, kind, master
  s = ""
  kind = UCase(Trim(t.TblSrchType))
  If kind = "ADVANCED" Or kind = "BOTH" Then
    If qvHasPage(t, "list") Then s = s & qvDefLine("qvTbl", "SearchPage", qvPageName(t, "search"), "")
  End If
  If qvHasPage(t, "export") Then s = s & qvDefLine("qvTbl", "ExportPage", qvPageName(t, "export"), "")
  s = s & qvDefLine("qvTbl", "ExportExcel", CBool(t.TblExportExcel), False)
  s = s & qvDefLine("qvTbl", "ExportWord", CBool(t.TblExportWord), False)
  s = s & qvDefLine("qvTbl", "ExportXml", CBool(t.TblExportXml), False)
  s = s & qvDefLine("qvTbl", "ExportHtml", CBool(t.TblExportHtml), False)
  Set master = qvMasterOf(t)
  If Not master Is Nothing Then s = s & qvMasterDef(t, master)
  s = s & qvDetailsDef(t)
  qvSearchTableDef = s
End Function

' A detail table's master: its names and pages (its record page only when the linking fields
' are its key, which addresses the record), the linking fields, and the master's list fields
' that the box above the details shows.
Function qvMasterDef(t, master)
  Dim s, view, i, f
  view = ""
  If LCase(Replace(qvKeyFields(t.TblMasterFld), " ", "")) = LCase(Replace(qvKeyFields(master.TblKey), " ", "")) Then view = qvPageIf(master, "view")
  s = "qvTbl.SetMaster " & qvQuoteVBS(master.TblName) & ", " & qvQuoteVBS(qvCaptionOf(master.TblCaption)) & ", " & _
      qvQuoteVBS(qvPageIf(master, "list")) & ", " & qvQuoteVBS(view) & ", " & _
      qvQuoteVBS(qvKeyFields(t.TblMasterFld)) & ", " & qvQuoteVBS(qvKeyFields(t.TblDetailFld)) & vbCrLf
  For i = 1 To master.Fields.Count
    Set f = master.Fields.Seq(i)
    If Not f Is Nothing Then
      If f.FldGenerate And f.FldList And Not qvIsBinaryType(f.FldType) Then
        s = s & "qvTbl.AddMasterField " & qvQuoteVBS(f.FldName) & ", " & qvQuoteVBS(qvCaptionOf(f.FldCaption)) & vbCrLf
      End If
    End If
  Next
  qvMasterDef = s
End Function

' The master of a detail table: the generated table that TblMasterTbl names, when the fields
' that link them are given in equal numbers. Nothing otherwise.
Function qvMasterOf(t)
  Dim m
  Set qvMasterOf = Nothing
  If Trim(t.TblMasterTbl) = "" Or Trim(t.TblMasterFld) = "" Or Trim(t.TblDetailFld) = "" Then Exit Function
  If UBound(Split(t.TblMasterFld, ",")) <> UBound(Split(t.TblDetailFld, ",")) Then Exit Function
  Set m = qvTableNamed(qvUnbracket(t.TblMasterTbl))
  If m Is Nothing Then Exit Function
  If Not m.TblGen Then Exit Function
  Set qvMasterOf = m
End Function

' A list of linking fields as the pages take it: names without brackets, joined by ",".
Function qvKeyFields(list)
  Dim parts, i, s
  parts = Split(list, ",")
  s = ""
  For i = 0 To UBound(parts)
    If s <> "" Then s = s & ","
    s = s & qvUnbracket(parts(i))
  Next
  qvKeyFields = s
End Function

' The detail tables whose master is this table, each with its list page and linking fields,
' so that a master's list and view link to them. Every page asks, and going through all tables
' for each made a run's time grow with the square of their number: the tables that name any
' master are found once a run (as the menu is made once), and only those are looked at.
Dim qvDetailCandidates, qvDetailTables
qvDetailTables = -1

Function qvDetailsDef(t)
  Dim s, i, d, m, n
  If qvDetailTables <> DB.Tables.Count Then
    ReDim qvDetailCandidates(DB.Tables.Count)
    n = 0
    For i = 1 To DB.Tables.Count
      Set d = DB.Tables.Seq(i)
      If Not d Is Nothing Then
        If Trim(d.TblMasterTbl) <> "" Then Set qvDetailCandidates(n) = d : n = n + 1
      End If
    Next
    ReDim Preserve qvDetailCandidates(n)
    qvDetailTables = DB.Tables.Count
  End If
  s = ""
  For i = 0 To UBound(qvDetailCandidates) - 1
    Set d = qvDetailCandidates(i)
    Set m = qvMasterOf(d)
    If Not m Is Nothing Then
      If StrComp(m.TblName, t.TblName, vbTextCompare) = 0 And qvHasPage(d, "list") Then
        s = s & "qvTbl.AddDetail " & qvQuoteVBS(qvCaptionOf(d.TblCaption)) & ", " & qvQuoteVBS(qvPageIf(d, "list")) & ", " & _
            qvQuoteVBS(qvKeyFields(d.TblMasterFld)) & ", " & qvQuoteVBS(qvKeyFields(d.TblDetailFld)) & vbCrLf
      End If
    End If
  Next
  qvDetailsDef = s
End Function

' A field's advanced search: whether it is offered, with which operators, and how its quick
' search reads a lookup's or its own values' labels.
Function qvSearchFieldDef(f)
  Dim s, shown
  s = ""
  shown = CBool(f.FldSearch) And Not qvIsBinaryType(f.FldType) And qvFieldTypeClass(f.FldType) <> 6
  s = s & qvDefLine("qvFld", "Search", shown, False)
  If shown Then
    s = s & qvDefLine("qvFld", "SrchOpr", UCase(Trim(f.FldSrchOpr)), "=")
    s = s & qvDefLine("qvFld", "SrchOpr2", UCase(Trim(f.FldSrchOpr2)), "")
  End If
  s = s & qvDefLine("qvFld", "ExtSearch", CBool(f.FldExtendedBasicSearch) And Not CBool(f.FldBasicSearch), False)
  s = s & qvDefLine("qvFld", "SelectSize", qvSizeText(f.FldSelectSize), "")
  s = s & qvDefLine("qvFld", "SelectAllowAdd", CBool(f.FldSelectAllowAdd), False)
  If Trim(f.FldSelectFilter) <> "" Then s = s & qvDefLine("qvFld", "SelectFilter", f.FldSelectFilter, "")
  If Trim(f.FldParentSelect) <> "" And Trim(f.FldSelectFilterFld) <> "" Then
    s = s & qvDefLine("qvFld", "ParentSelect", qvVarOf(f.FldParentSelect), "")
    s = s & qvDefLine("qvFld", "SelectFilterFld", qvUnbracket(f.FldSelectFilterFld), "")
  End If
  qvSearchFieldDef = s
End Function

' The variable of a field of the current table, by its name; the name itself when the table
' has no such field.
Function qvVarOf(name)
  Dim i, f
  qvVarOf = qvUnbracket(name)
  For i = 1 To TABLE.Fields.Count
    Set f = TABLE.Fields.Seq(i)
    If Not f Is Nothing Then
      If StrComp(f.FldName, qvUnbracket(name), vbTextCompare) = 0 Then qvVarOf = f.FldVar : Exit Function
    End If
  Next
End Function
