' Locales: what SetLocale changes in how numbers, currency and dates are written and read, for
' the locales generated applications use most, and what it leaves alone.
Dim nb : nb = ChrW(160)
Dim d : d = DateSerial(2026, 3, 15) + TimeSerial(14, 5, 9)

' One row per locale: FormatNumber, CStr of 1.5, FormatCurrency of a negative and a positive
' amount, FormatPercent, CStr of a date and time, the long date, MonthName and WeekdayName
' (full and abbreviated).
Sub CheckWriting(id, number, half, minus, plus, percent, general, long, names)
  SetLocale id
  Check FormatNumber(1234567.891, 2), number, id & " FormatNumber"
  Check CStr(1.5), half, id & " CStr of a Double"
  Check FormatCurrency(-1234.567), minus, id & " FormatCurrency negative"
  Check FormatCurrency(1234.567), plus, id & " FormatCurrency"
  Check FormatPercent(0.125), percent, id & " FormatPercent"
  Check CStr(d), general, id & " CStr of a date"
  Check FormatDateTime(d, vbLongDate), long, id & " long date"
  Check MonthName(3) & "|" & MonthName(3, True) & "|" & WeekdayName(1) & "|" & WeekdayName(1, True), names, id & " names"
End Sub

CheckWriting 1033, "1,234,567.89", "1.5", "($1,234.57)", "$1,234.57", "12.50%", "3/15/2026 2:05:09 PM", "Sunday, March 15, 2026", "March|Mar|Sunday|Sun"
CheckWriting 2057, "1,234,567.89", "1.5", "-£1,234.57", "£1,234.57", "12.50%", "15/03/2026 14:05:09", "15 March 2026", "March|Mar|Sunday|Sun"
CheckWriting 1031, "1.234.567,89", "1,5", "-1.234,57 €", "1.234,57 €", "12,50%", "15.03.2026 14:05:09", "Sonntag, 15. März 2026", "März|Mär|Sonntag|So"
CheckWriting 1036, "1" & nb & "234" & nb & "567,89", "1,5", "-1" & nb & "234,57 €", "1" & nb & "234,57 €", "12,50%", "15/03/2026 14:05:09", "dimanche 15 mars 2026", "mars|mars|dimanche|dim."
CheckWriting 3082, "1.234.567,89", "1,5", "-1.234,57 €", "1.234,57 €", "12,50%", "15/03/2026 14:05:09", "domingo, 15 de marzo de 2026", "marzo|mar|domingo|dom"
CheckWriting 1040, "1.234.567,89", "1,5", "-€ 1.234,57", "€ 1.234,57", "12,50%", "15/03/2026 14:05:09", "domenica 15 marzo 2026", "marzo|mar|domenica|dom"
CheckWriting 1043, "1.234.567,89", "1,5", "€ -1.234,57", "€ 1.234,57", "12,50%", "15-3-2026 14:05:09", "zondag 15 maart 2026", "maart|mrt|zondag|zo"
CheckWriting 1046, "1.234.567,89", "1,5", "-R$ 1.234,57", "R$ 1.234,57", "12,50%", "15/03/2026 14:05:09", "domingo, 15 de março de 2026", "março|mar.|domingo|dom."
CheckWriting 1041, "1,234,567.89", "1.5", "-¥1,235", "¥1,235", "12.50%", "2026/03/15 14:05:09", "2026年3月15日", "3月|3月|日曜日|日"
CheckWriting 2052, "1,234,567.89", "1.5", "¥-1,234.57", "¥1,234.57", "12.50%", "2026/3/15 14:05:09", "2026年3月15日", "三月|3月|星期日|周日"

' Reading numbers and dates follows the locale; date literals in code do not.
SetLocale 1031
CheckEach Array("CDbl(""1.234,5"")", 1234.5, "CDbl(""1.5"")", CDbl(15), _
  "CCur(""1.234,56 €"")", CCur(1234.56), "IsNumeric(""1,5"")", True, "Day(""15.03.2026"")", 15, _
  "DateValue(""15. März 2026"")", DateSerial(2026, 3, 15), _
  "TimeValue(""14:05:09"")", TimeSerial(14, 5, 9), _
  "CDate(""15.03.2026 14:05"")", DateSerial(2026, 3, 15) + TimeSerial(14, 5, 0), _
  """x"" & 2.25", "x2,25", """1,5"" = 1.5", True, """2,5"" + 1", 3.5, _
  "FormatDateTime(d, vbLongTime) & ""|"" & FormatDateTime(d, vbShortTime)", "14:05:09|14:05", _
  "Weekday(DateSerial(2026, 3, 15), vbUseSystemDayOfWeek)", 7, _
  "WeekdayName(1, False, vbUseSystemDayOfWeek)", "Montag", "WeekdayName(1)", "Sonntag", _
  "#3/4/2026#", DateSerial(2026, 3, 4))
SetLocale 1036
CheckEach Array("DateValue(""3/4/2026"")", DateSerial(2026, 4, 3), _
  "DateValue(""3/15/2026"")", DateSerial(2026, 3, 15), "CDbl(""1 234,5"")", 1234.5)
SetLocale 1041
CheckEach Array("DateValue(""2026年3月15日"")", DateSerial(2026, 3, 15), _
  "DateValue(""2026/3/4"")", DateSerial(2026, 3, 4))
SetLocale 1046
CheckEach Array("WeekdayName(1, False, vbUseSystemDayOfWeek)", "domingo", _
  "DatePart(""w"", DateSerial(2026, 3, 15), vbUseSystemDayOfWeek)", 1)
SetLocale 1033
CheckEach Array("WeekdayName(1, True, vbUseSystemDayOfWeek)", "Sun", "CDbl(""1,5"")", CDbl(15), "DateValue(""3/4/2026"")", DateSerial(2026, 3, 4))

' SetLocale takes ids and names and returns the id it replaced; unknown ones raise 447.
CheckEach Array("SetLocale(""de-de"")", CLng(1033), "SetLocale(""EN-GB"")", CLng(1031), _
  "SetLocale(""fr"")", CLng(2057), "SetLocale(2052)", CLng(1036), "GetLocale()", CLng(2052))
CheckErrors Array("SetLocale 12345", 447, "SetLocale ""xx-yy""", 447, "SetLocale 7", 447, _
  "SetLocale "" Fr-FR """, 0)
CheckEach Array("GetLocale()", CLng(1036), "SetLocale(0)", CLng(1036), "GetLocale()", CLng(1033))
