' Custom views and reports in the default package: what their pages read from, and a report's
' groups, aggregates and options, written as statements for the run-time report library.

' The statement a page of this table reads from in place of the table itself: a custom view's
' own SELECT; a report's source when that is a custom view. "" for a table or view of the
' database, which the page names.
Function qvSourceSql(tbl)
  Dim src
  qvSourceSql = ""
  If tbl.TblType = "CUSTOMVIEW" Then
    qvSourceSql = qvTrimSql(tbl.TblCustomSQL)
  ElseIf tbl.TblType = "REPORT" Then
    Set src = qvTableNamed(tbl.TblRptSrc)
    If Not src Is Nothing Then
      If src.TblType = "CUSTOMVIEW" Then qvSourceSql = qvTrimSql(src.TblCustomSQL)
    End If
  End If
End Function

' A SELECT ready to stand in parentheses: without the ";" that ends many a hand-written one.
Function qvTrimSql(sql)
  Dim s
  s = Trim(Replace(Replace(Replace(sql, vbCr, " "), vbLf, " "), vbTab, " "))
  Do While Right(s, 1) = ";"
    s = Trim(Left(s, Len(s) - 1))
  Loop
  qvTrimSql = s
End Function

' The project's table of that name (names compare without regard to case), or Nothing.
Function qvTableNamed(name)
  Dim i, t
  Set qvTableNamed = Nothing
  For i = 1 To DB.Tables.Count
    Set t = DB.Tables.Seq(i)
    If Not t Is Nothing Then
      If StrComp(t.TblName, name, vbTextCompare) = 0 Then Set qvTableNamed = t : Exit Function
    End If
  Next
End Function

' The lines after the table definition of a custom view's or a report's page: the source the
' statements read from, and for a report its groups (by FldGroupBy, outermost first), its
' aggregates and its options.
Function qvReportDef()
  Dim s, t, sql, i, f, level, maxLevel
  Set t = TABLE
  s = ""
  If t.TblType = "REPORT" Then s = s & "qvTbl.Name = " & qvQuoteVBS(t.TblRptSrc) & vbCrLf
  sql = qvSourceSql(t)
  If sql <> "" Then s = s & "qvTbl.Source = " & qvQuoteVBS(sql) & vbCrLf
  If t.TblType <> "REPORT" Then qvReportDef = qvIndentLines(s) : Exit Function

  maxLevel = 0
  For i = 1 To t.Fields.Count
    Set f = t.Fields.Seq(i)
    If qvInReport(f) Then
      If qvNum(f.FldGroupBy) > maxLevel Then maxLevel = qvNum(f.FldGroupBy)
    End If
  Next
  ' Levels may have gaps (1, 3): they keep their order.
  For level = 1 To maxLevel
    For i = 1 To t.Fields.Count
      Set f = t.Fields.Seq(i)
      If qvInReport(f) Then
        If qvNum(f.FldGroupBy) = level Then
          s = s & "qvRptGroup " & qvQuoteVBS(f.FldVar) & ", " & CStr(CBool(f.FldGroupByShowSummary)) & vbCrLf
        End If
      End If
    Next
  Next
  For i = 1 To t.Fields.Count
    Set f = t.Fields.Seq(i)
    If qvInReport(f) Then
      If f.FldRptAggSum Or f.FldRptAggAvg Or f.FldRptAggMin Or f.FldRptAggMax Then
        s = s & "qvRptAgg " & qvQuoteVBS(f.FldVar) & ", " & CStr(CBool(f.FldRptAggSum)) & ", " & _
            CStr(CBool(f.FldRptAggAvg)) & ", " & CStr(CBool(f.FldRptAggMin)) & ", " & _
            CStr(CBool(f.FldRptAggMax)) & vbCrLf
      End If
    End If
  Next
  s = s & "qvRptIndent = " & qvNum(t.TblRptIndent) & vbCrLf
  s = s & "qvRptDetails = " & CStr(CBool(t.TblRptShowDetails)) & vbCrLf
  s = s & "qvRptGrand = " & CStr(CBool(t.TblRptShowGrandTotal)) & vbCrLf
  qvReportDef = qvIndentLines(s)
End Function

' Whether a field of the report reaches its page: the table definition holds generated fields
' only.
Function qvInReport(f)
  qvInReport = False
  If f Is Nothing Then Exit Function
  qvInReport = CBool(f.FldGenerate)
End Function
