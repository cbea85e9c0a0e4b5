' Helpers of the default package for charts. Charts are no part of the project: the host hands
' a run the charts of each table as CHARTS (Nothing when it has none), and the list and report
' pages draw those whose ShowChart is on.

' The current table's charts (a TyxCharts), or Nothing.
Function qvTableCharts()
  Set qvTableCharts = Nothing
  If Not IsObject(CHARTS) Then Exit Function
  If CHARTS Is Nothing Then Exit Function
  Set qvTableCharts = CHARTS.Item(TABLE.TblName)
End Function

' How many charts the current table shows.
Function qvChartCount()
  Dim list, i, c
  qvChartCount = 0
  Set list = qvTableCharts()
  If list Is Nothing Then Exit Function
  For i = 1 To list.Count
    Set c = list.Seq(i)
    If Not c Is Nothing Then
      If qvFlag(c.ShowChart) And Trim(c.ChartXFldName) <> "" Then qvChartCount = qvChartCount + 1
    End If
  Next
End Function

' The statements that draw the current table's charts of one position (1 above the rows, 2
' below them, 0 all), each over the rows that `whereExpr` and `valuesExpr` select.
Function qvChartCalls(position, whereExpr, valuesExpr)
  Dim list, i, c, s, pos
  s = ""
  Set list = qvTableCharts()
  If Not list Is Nothing Then
    For i = 1 To list.Count
      Set c = list.Seq(i)
      If Not c Is Nothing Then
        If qvNum(c.ChartPosition) = 2 Then pos = 2 Else pos = 1
        If qvFlag(c.ShowChart) And Trim(c.ChartXFldName) <> "" And (position = 0 Or pos = position) Then
          s = s & qvChartDef(c) & "qvChartObj.Draw " & whereExpr & ", " & valuesExpr & vbCrLf
        End If
      End If
    Next
  End If
  qvChartCalls = qvIndentLines(s)
End Function

' One chart's settings as statements of the run-time qvChart, only what differs from its
' defaults.
Function qvChartDef(c)
  Dim s, caption
  caption = c.ChartCaption
  If Trim(caption) = "" Then caption = c.ChartName
  s = "Set qvChartObj = New qvChart" & vbCrLf
  s = s & qvDefLine("qvChartObj", "Name", c.ChartName, "")
  s = s & qvDefLine("qvChartObj", "Caption", caption, "")
  s = s & qvDefLine("qvChartObj", "XFld", c.ChartXFldName, "")
  s = s & qvDefLine("qvChartObj", "YFld", c.ChartYFldName, "")
  s = s & qvDefLine("qvChartObj", "Kind", qvNum(c.ChartType), 1)
  If qvNum(c.ChartWidth) > 0 Then s = s & qvDefLine("qvChartObj", "Width", qvNum(c.ChartWidth), 600)
  If qvNum(c.ChartHeight) > 0 Then s = s & qvDefLine("qvChartObj", "Height", qvNum(c.ChartHeight), 320)
  s = s & qvDefLine("qvChartObj", "BgColor", c.ChartBgColor, "")
  s = s & qvDefLine("qvChartObj", "PlotBgColor", c.ChartChartBgColor, "")
  s = s & qvDefLine("qvChartObj", "PlotBorderColor", c.ChartChartBorderColor, "")
  s = s & qvDefLine("qvChartObj", "BorderLeft", c.ChartBorderLeftColor, "")
  s = s & qvDefLine("qvChartObj", "BorderTop", c.ChartBorderTopColor, "")
  s = s & qvDefLine("qvChartObj", "BorderRight", c.ChartBorderRightColor, "")
  s = s & qvDefLine("qvChartObj", "BorderBottom", c.ChartBorderBottomColor, "")
  If qvNum(c.ChartNumGridLines) > 0 Then s = s & qvDefLine("qvChartObj", "GridLines", qvNum(c.ChartNumGridLines), 4)
  If Trim(c.ChartGridColor) <> "" Then s = s & qvDefLine("qvChartObj", "GridColor", c.ChartGridColor, "#dde3ea")
  s = s & qvDefLine("qvChartObj", "XName", c.ChartXAxisName, "")
  s = s & qvDefLine("qvChartObj", "XNameRotated", qvFlag(c.ChartXAxisNameRotated), False)
  s = s & qvDefLine("qvChartObj", "XMaxChar", qvNum(c.ChartXAxisValueMaxChar), 16)
  s = s & qvDefLine("qvChartObj", "XRotation", qvNum(c.ChartXAxisValueRotation), 0)
  s = s & qvDefLine("qvChartObj", "YName", c.ChartYAxisName, "")
  s = s & qvDefLine("qvChartObj", "YNameRotated", qvFlag(c.ChartYAxisNameRotated), False)
  s = s & qvDefLine("qvChartObj", "YMin", qvNum(c.ChartYAxisMinValue), 0)
  s = s & qvDefLine("qvChartObj", "YMax", qvNum(c.ChartYAxisMaxValue), 0)
  s = s & qvDefLine("qvChartObj", "ShowNames", qvFlag(c.ChartShowNames), True)
  s = s & qvDefLine("qvChartObj", "ShowValues", qvFlag(c.ChartShowValues), False)
  s = s & qvDefLine("qvChartObj", "ShowHover", qvFlag(c.ChartShowHover), True)
  If qvNum(c.ChartAlpha) > 0 Then s = s & qvDefLine("qvChartObj", "Alpha", qvNum(c.ChartAlpha), 100)
  s = s & qvDefLine("qvChartObj", "Palette", c.ChartColorPalette, "")
  s = s & qvDefLine("qvChartObj", "GlobalCss", qvFlag(c.ChartUseGlobalCss), True)
  s = s & qvDefLine("qvChartObj", "SortType", qvNum(c.ChartSortType), 0)
  qvChartDef = s
End Function

' A Boolean setting that may hold nothing.
Function qvFlag(v)
  qvFlag = False
  If IsEmpty(v) Or IsNull(v) Then Exit Function
  If CStr(v) = "" Then Exit Function
  qvFlag = CBool(v)
End Function
