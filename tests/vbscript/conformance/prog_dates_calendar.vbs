' Date calculations a script really does: ages, days until an event, month-end arithmetic,
' a week of weekday names, and date values mixed with numbers and text.
Function Age(birth, asOf)
  Age = DateDiff("yyyy", birth, asOf)
  If DateSerial(Year(asOf), Month(birth), Day(birth)) > asOf Then Age = Age - 1
End Function

Function DaysUntil(target, today)
  Dim nextOne
  nextOne = DateSerial(Year(today), Month(target), Day(target))
  If nextOne < today Then nextOne = DateAdd("yyyy", 1, nextOne)
  DaysUntil = DateDiff("d", today, nextOne)
End Function

Function MonthEnd(d)
  MonthEnd = DateSerial(Year(d), Month(d) + 1, 0)
End Function

CheckEach Array("Age(#6/15/1980#, #6/14/2020#)", CLng(39), _
  "Age(#6/15/1980#, #6/15/2020#)", CLng(40), "Age(#2/29/2000#, #2/28/2021#)", CLng(20), _
  "DaysUntil(#12/25/2000#, #12/1/2020#)", CLng(24), _
  "DaysUntil(#1/1/2000#, #12/31/2020#)", CLng(1), "MonthEnd(#2/10/2020#)", #2/29/2020#, _
  "MonthEnd(#12/31/2021#)", #12/31/2021#)

Dim d
d = #7/4/2021 3:30:45 PM#
Check Year(d) & "-" & Month(d) & "-" & Day(d) & " " & Hour(d) & ":" & Minute(d) & ":" & Second(d), _
      "2021-7-4 15:30:45", "the parts of a date"
CheckEach Array("WeekdayName(Weekday(d)) & "" "" & MonthName(Month(d))", "Sunday July", _
  "MonthName(2, True) & "" "" & WeekdayName(1, True)", "Feb Sun", "Weekday(d, vbMonday)", 7, _
  "DatePart(""y"", d) & "" "" & DatePart(""ww"", d) & "" "" & DatePart(""q"", d)", "185 28 3")

Dim days(6), i
For i = 0 To 6
  days(i) = WeekdayName(Weekday(DateAdd("d", i, #1/4/2021#)), True)
Next
Check Join(days, " "), "Mon Tue Wed Thu Fri Sat Sun", "a week from a Monday"

Check DateDiff("d", "1/1/2000", "1/31/2000"), CLng(30), "DateDiff of dates in text"

' Dates are numbers underneath.
CheckEach Array("CStr(CDate(36526.5))", "1/1/2000 12:00:00 PM", _
  "TypeName(Int(#1/1/2000 6:00 PM#))", "Date", _
  "IsDate(""2/29/2020"") And Not IsDate(""2/30/2020"")", True, "IsDate(""31/12/2020"")", True, _
  "Not IsDate(""hello"") And Not IsDate("""")", True, _
  "CStr(CDate(""2021/03/05 14:00""))", "3/5/2021 2:00:00 PM", _
  "CStr(TimeValue(""10:00 PM""))", "10:00:00 PM", "Year(40000) & "" "" & Hour(0.75)", "2009 18")
