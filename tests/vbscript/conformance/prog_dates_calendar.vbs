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

Check Age(#6/15/1980#, #6/14/2020#), CLng(39), "the day before the birthday"
Check Age(#6/15/1980#, #6/15/2020#), CLng(40), "on the birthday"
Check Age(#2/29/2000#, #2/28/2021#), CLng(20), "a leap-day birthday in a common year"
Check DaysUntil(#12/25/2000#, #12/1/2020#), CLng(24), "days until Christmas"
Check DaysUntil(#1/1/2000#, #12/31/2020#), CLng(1), "the event has passed this year"
Check MonthEnd(#2/10/2020#), #2/29/2020#, "the end of a leap February"
Check MonthEnd(#12/31/2021#), #12/31/2021#, "day zero of next January"

' DateAdd by months keeps to the end of shorter months.
Check DateAdd("m", 1, #1/31/2020#), #2/29/2020#, "January 31 plus a month, leap year"
Check DateAdd("m", 1, #1/31/2021#), #2/28/2021#, "January 31 plus a month"
Check DateAdd("yyyy", 1, #2/29/2020#), #2/28/2021#, "a year after a leap day"
Check DateAdd("q", 1, #11/30/2020#), #2/28/2021#, "a quarter"
Check DateAdd("ww", 2, #1/1/2020#), #1/15/2020#, "two weeks"
Check CStr(DateAdd("h", 25, #1/1/2020#)), "1/2/2020 1:00:00 AM", "hours roll into the next day"
Check CStr(DateAdd("n", 90, #1/1/2020 11:00 PM#)), "1/2/2020 12:30:00 AM", "minutes past midnight"
Check CStr(DateAdd("s", 86399, #1/1/2000#)), "1/1/2000 11:59:59 PM", "the last second of a day"

Dim d
d = #7/4/2021 3:30:45 PM#
Check Year(d) & "-" & Month(d) & "-" & Day(d) & " " & Hour(d) & ":" & Minute(d) & ":" & Second(d), _
      "2021-7-4 15:30:45", "the parts of a date"
Check WeekdayName(Weekday(d)) & " " & MonthName(Month(d)), "Sunday July", "names"
Check MonthName(2, True) & " " & WeekdayName(1, True), "Feb Sun", "abbreviated names"
Check Weekday(d, vbMonday), 7, "Sunday counted from Monday"
Check DatePart("y", d) & " " & DatePart("ww", d) & " " & DatePart("q", d), "185 28 3", "day, week and quarter of the year"

Dim days(6), i
For i = 0 To 6
  days(i) = WeekdayName(Weekday(DateAdd("d", i, #1/4/2021#)), True)
Next
Check Join(days, " "), "Mon Tue Wed Thu Fri Sat Sun", "a week from a Monday"

Check DateDiff("d", #1/1/2020#, #12/25/2020#), CLng(359), "days in a leap year"
Check DateDiff("m", #1/31/2020#, #2/1/2020#), CLng(1), "months count boundaries crossed"
Check DateDiff("ww", #1/1/2020#, #3/1/2020#), CLng(9), "Sundays crossed"
Check DateDiff("w", #1/1/2020#, #3/1/2020#), CLng(8), "whole weeks"
Check DateDiff("yyyy", #12/31/2019#, #1/1/2020#), CLng(1), "one day across a new year"
Check DateDiff("d", "1/1/2000", "1/31/2000"), CLng(30), "dates given as text"

Check DateSerial(2020, 13, 1), #1/1/2021#, "month 13 rolls over"
Check DateSerial(2020, 1, -1), #12/30/2019#, "negative days roll back"
Check DateSerial(99, 1, 1), #1/1/1999#, "two-digit years are in the 1900s"
Check CStr(TimeSerial(25, 0, 0)), "12/31/1899 1:00:00 AM", "more than a day of hours"
Check CStr(TimeSerial(0, 0, 3661)), "1:01:01 AM", "seconds roll into hours"

' Dates are numbers underneath.
Check CDbl(#1/1/1900#), CDbl(2), "the serial of 1/1/1900"
Check CLng(#1/1/2000#), CLng(36526), "a date as a Long"
Check CStr(CDate(36526.5)), "1/1/2000 12:00:00 PM", "a number as a date"
Check CStr(CDate(-1.25)), "12/29/1899 6:00:00 AM", "before the epoch the time still counts forward"
Check TypeName(#1/1/2000# + 1), "Date", "a date plus a number"
Check TypeName(#1/1/2000# - #12/25/1999#), "Double", "the difference of two dates"
Check #1/1/2000# - #12/25/1999#, CDbl(7), "a week apart"
Check TypeName(Int(#1/1/2000 6:00 PM#)), "Date", "Int keeps a date"
CheckTrue IsDate("2/29/2020") And Not IsDate("2/30/2020"), "IsDate knows leap years"
CheckTrue IsDate("31/12/2020"), "a day above twelve is read day-first"
CheckTrue Not IsDate("hello") And Not IsDate(""), "IsDate of text that is no date"
Check CStr(CDate("March 5, 2021")) & "|" & CStr(CDate("5-Mar-2021")), "3/5/2021|3/5/2021", "month names in text"
Check CStr(CDate("2021/03/05 14:00")), "3/5/2021 2:00:00 PM", "year first with a time"
Check CStr(TimeValue("10:00 PM")), "10:00:00 PM", "TimeValue"
Check Year(40000) & " " & Hour(0.75), "2009 18", "numbers taken as dates"
