' The date functions: parts, serial arithmetic, reading dates from text, and their text forms.

' --- The date functions at their edges: text of dates on both sides of the epoch, parts of
' fractional dates rounded to the second, serial roll-over, names with rounded arguments, and
' which argument's error wins.
CheckEach Array("CStr(CDate(3.34))", "1/2/1900 8:09:36 AM", _
  "CStr(CDate(365.25))", "12/30/1900 6:00:00 AM", "CStr(CDate(1461))", "12/31/1903", _
  "CStr(CDate(-49192.24))", "4/24/1765 5:45:36 AM", "CStr(CDate(-657434))", "1/1/100", _
  "CStr(CDate(2958465))", "12/31/9999", "CStr(CDate(-0.25))", "6:00:00 AM", _
  "CStr(#1/1/100#)", "1/1/100", "FormatDateTime(#1/1/100#, vbShortDate)", "1/1/100", _
  "FormatDateTime(#1/1/100#, vbLongDate)", "Friday, January 1, 100", _
  "FormatDateTime(0, vbLongDate)", "Saturday, December 30, 1899", _
  "FormatDateTime(-1.5)", "12/29/1899 12:00:00 PM", "FormatDateTime(-1.5, vbShortTime)", "12:00", _
  "FormatDateTime(#1/2/2003 00:04:05#, vbShortTime)", "00:04", _
  "FormatDateTime(#1/2/2003#, 1.5)", "1/2/2003", _
  "FormatDateTime(""1/2/2003"", ""1"")", "Thursday, January 2, 2003")
' Parts round the time to the nearest second, on either side of the epoch.
CheckEach Array("Day(2)", 1, "Year(2)", 1900, "Hour(2.75)", 18, "Minute(2.02083)", 30, _
  "Day(2.9999999)", 2, "Hour(2.9999999)", 0, "Hour(-1.75)", 18, "Day(-1.5)", 29, _
  "Second(1.5 / 86400)", 2, "Weekday(-1)", 6, "Hour(""1.5"")", 1)
CheckErrors Array("x = Year(2958466)", 6, "x = Year(""x"")", 13)
' Serial roll-over in both directions.
CheckEach Array("DateSerial(2006, 14, 35)", #3/7/2007#, "DateSerial(2006, 0, 0)", #11/30/2005#, _
  "DateSerial(2006, 1, -400)", #11/26/2004#, "DateSerial(2000, 1.5, 1)", #2/1/2000#, _
  "DateSerial(2000, 2.5, 1)", #2/1/2000#, "DateSerial(Empty, Empty, Empty)", #11/30/1999#, _
  "DateSerial(99, 13, 1)", #1/1/2000#)
CheckErrors Array("x = DateSerial(10000, 1, 1)", 5, "x = DateSerial(-10000, 1, 1)", 5, _
  "x = DateSerial(Null, 1, 1)", 94, "x = DateSerial(2000, 1, ""x"")", 13)
Check TimeSerial(24, 2, 1), #12/31/1899 12:02:01 AM#, "24 hours is the next day"
Check TimeSerial(50, 2, 1), #1/1/1900 2:02:01 AM#, "two days on"
Check TimeSerial(10, 60, 2), #11:00:02 AM#, "minutes roll into hours"
Check TimeSerial(10, 0, 60), #10:01:00 AM#, "seconds roll into minutes"
Check TimeSerial(25, -1, 0), #12/31/1899 12:59:00 AM#, "a negative minute"
Check TimeSerial(2.5, 0, 0), #2:00:00 AM#, "hours round half to even"
CheckError "x = TimeSerial(Null, 0, 0)", 94, "Null hour"
' Names: arguments round half to even; the optional ones are read first.
CheckEach Array("WeekdayName(1.1)", "Sunday", "WeekdayName(1, 10)", "Sun", _
  "WeekdayName(1, True, 2.5)", "Mon", "WeekdayName(1, True, 1.5)", "Mon", _
  "WeekdayName(1, True, 7.1)", "Sat", "WeekdayName(3, False, vbSaturday)", "Monday", _
  "MonthName(1, 10)", "Jan", "MonthName(1.5)", "February", "MonthName(12.5)", "December")
CheckErrors Array("x = MonthName(Null)", 94, "x = MonthName(1, Null)", 94, _
  "x = MonthName(""a"", Null)", 94, "x = MonthName(""a"")", 13, "x = MonthName(0.5)", 5, _
  "x = WeekdayName(7.5)", 5, "x = Weekday(Null, -1)", 5, "x = Weekday(#1/1/2000#, Null)", 94, _
  "x = Weekday(Null, Null)", 94, "x = Weekday(Null, ""a"")", 13)
CheckEach Array("Weekday(Null, vbSunday)", Null, "Weekday(#1/1/2000#, 2.5)", 6)
' DateAdd keeps the day when it can and clips it to the month's end when it cannot.
CheckEach Array("DateAdd(""m"", 1, #1/31/2004#)", #2/29/2004#, _
  "DateAdd(""m"", -1, #3/31/2005#)", #2/28/2005#, "DateAdd(""q"", 1, #1/31/2004#)", #4/30/2004#, _
  "DateAdd(""yyyy"", 1, ""2/29/2004"")", #2/28/2005#)
Check DateAdd("m", 1, #1/31/2004 10:30:00 PM#), #2/29/2004 10:30:00 PM#, "the time stays"
Check DateAdd("ww", -1, DateSerial(2000, 1, 1)), #12/25/1999#, "a week back"
Check DateAdd("h", 36, -1.75), #12/31/1899 6:00:00 AM#, "hours across the epoch"
Check DateAdd("d", -1, 0.25), #12/29/1899 6:00:00 AM#, "a day back across the epoch"
Check DateAdd("n", 30, -0.5), #12:30:00 PM#, "minutes on day zero"
Check DateAdd("d", 1, Null), Null, "a Null date gives Null"
Check DateAdd("d", 1, -657434.5), #1/2/100 12:00:00 PM#, "from noon of the first day"
CheckErrors Array("x = DateAdd(Null, 1, #1/1/2000#)", 94, _
  "x = DateAdd(""q"", Null, #1/1/2000#)", 94, "x = DateAdd(""dd"", 1, #1/1/2000#)", 5, _
  "x = DateAdd(""yyyy"", 1, #12/31/9999#)", 5, "x = DateAdd(""d"", -1, #1/1/100#)", 5)
' DateDiff counts boundaries crossed; "w" counts whole weeks, "ww" first days of the week.
CheckEach Array("DateDiff(""d"", #1/2/2000 1:00 AM#, #1/1/2000 11:00 PM#)", CLng(-1), _
  "DateDiff(""w"", #1/1/2000#, #1/14/2000#)", CLng(1), _
  "DateDiff(""w"", #1/14/2000#, #1/1/2000#)", CLng(-1), _
  "DateDiff(""ww"", #1/1/2000#, #1/2/2000#)", CLng(1), _
  "DateDiff(""ww"", #1/1/2000#, #1/2/2000#, vbMonday)", CLng(0), _
  "DateDiff(""ww"", #1/1/2000#, #1/8/2000#, vbSaturday)", CLng(1), _
  "DateDiff(""q"", #12/31/2000#, #1/1/2000#)", CLng(-3), _
  "DateDiff(""h"", -1.25, -1.75)", CLng(12), "DateDiff(""s"", -1.25, -0.75)", CLng(129600), _
  "DateDiff(""d"", -0.5, 0)", CLng(0))
' Week numbers under each first-week rule.
CheckEach Array("DatePart(""ww"", #12/31/2000#)", 54, _
  "DatePart(""ww"", #1/1/2000#, vbSunday, vbFirstFullWeek)", 52, _
  "DatePart(""ww"", #1/2/2000#, vbSunday, vbFirstFullWeek)", 1, _
  "DatePart(""ww"", #12/31/2000#, vbMonday, vbFirstFourDays)", 52, _
  "DatePart(""ww"", #12/30/2003#, vbMonday, vbFirstFourDays)", 1, _
  "DatePart(""ww"", #1/1/2005#, vbMonday, vbFirstFourDays)", 53)

' --- Reading dates from text: the orders tried for bare numbers, month names, the time with ':'
' or '.', AM/PM, two-digit years, and the text that is refused.
Dim thisYear
thisYear = Year(Now)

' Three numbers: month/day/year first, then year/month/day, then day/month/year.
CheckEach Array("CDate(""3/7/2006"")", #3/7/2006#, "CDate(""3-7-2006"")", #3/7/2006#, _
  "CDate(""3 7 2006"")", #3/7/2006#, "CDate(""3,7,2006"")", #3/7/2006#, _
  "CDate(""2006-03-07"")", #3/7/2006#, "CDate(""13/1/2006"")", #1/13/2006#, _
  "CDate(""14 2 3"")", #2/3/2014#, "CDate(""32 2 3"")", #2/3/1932#, _
  "CDate(""2 3 32"")", #2/3/1932#, "CDate(""99-1-1"")", #1/1/1999#, _
  "CDate(""1/2/3"")", #1/2/2003#, "CDate(""100-1-1"")", #1/1/100#)
' Dates are numbers underneath, and year/month/day text may carry a time.
CheckEach Array("CStr(CDate(36526.5))", "1/1/2000 12:00:00 PM", "TypeName(Int(#1/1/2000 6:00 PM#))", _
  "Date", "Year(40000) & "" "" & Hour(0.75)", "2009 18", _
  "CStr(CDate(""2021/03/05 14:00""))", "3/5/2021 2:00:00 PM")
' Two-digit years: 00-29 are this century, 30-99 the last.
CheckEach Array("Year(CDate(""1/1/00""))", 2000, "Year(CDate(""1/1/29""))", 2029, _
  "Year(CDate(""1/1/30""))", 1930, "Year(CDate(""12/31/99""))", 1999)
' Two numbers: month and day of this year, else day and month, else month and year.
CheckEach Array("CDate(""3/7"")", DateSerial(thisYear, 3, 7), _
  "CDate(""14 1"")", DateSerial(thisYear, 1, 14), "CDate(""2006-12"")", #12/1/2006#, _
  "CDate(""12-2006"")", #12/1/2006#, "CDate(""30 2"")", #2/1/1930#)
' Month names, full or in three letters, with the numbers in any order.
CheckEach Array("CDate(""7 March 2006"")", #3/7/2006#, "CDate(""March 7, 2006"")", #3/7/2006#, _
  "CDate(""Mar 7 2006"")", #3/7/2006#, "CDate(""7-Mar-06"")", #3/7/2006#, _
  "CDate(""2006-Mar-7"")", #3/7/2006#, "CDate(""Tuesday, March 7, 2006"")", #3/7/2006#, _
  "CDate(""March 2006"")", #3/1/2006#, "CDate(""Jan 35"")", #1/1/1935#, _
  "CDate(""Jan 2"")", DateSerial(thisYear, 1, 2))
' Times: ':' or '.' between the parts, AM/PM only below 13 o'clock.
Check CDate("9:05"), #9:05:00 AM#, "hours and minutes"
Check CDate("9.05"), #9:05:00 AM#, "a dot separates the time too"
Check CDate("1.5.2"), #1:05:02 AM#, "hours, minutes, seconds with dots"
Check CDate("21:05"), #9:05:00 PM#, "24-hour time"
Check CDate("9 PM"), #9:00:00 PM#, "an hour with PM"
Check CDate("9:05 a"), #9:05:00 AM#, "a for AM"
Check CDate("12:30 AM"), #12:30:00 AM#, "12 AM is midnight"
Check CDate("0:00 PM"), #12:00:00 PM#, "0 PM is noon"
Check CDate("13:00 AM"), #1:00:00 PM#, "AM is ignored after 12"
Check CDate("3/7/2006 9:05:01 PM"), #3/7/2006 9:05:01 PM#, "date then time"
Check CDate("21:05 3/7/2006"), #3/7/2006 9:05:00 PM#, "time then date"
Check CDate("1 2 3 am"), DateSerial(thisYear, 1, 2) + #3:00:00 AM#, "an hour with AM after a date"
Check CDate("1.2 3 4 5"), #3/4/2005 1:02:00 AM#, "a time with a dot before a date"
' Text that is no date but a number counts days; the date reading comes first.
Check CDate("-1"), #12/29/1899#, "a negative number of days"
Check CDate("1.5"), #1:05:00 AM#, "a dotted number is a time"
CheckEach Array("IsDate(""1"")", False, "IsDate(""4.5"")", True, _
  "IsDate(""3/7/2006 9:05 PM"")", True, "IsDate(""13/13/2006"")", False)
' Refused text.
Dim bad
For Each bad In Array("", " ", "x", "3/7/2006x", "January", "Sept 5, 2006", "25:00", "23:60", _
    "23:59:60", "10:00:00.5", "3//7/2006", "3/7/2006/", "-3/7/2006", "7.3.2006", "3/7/2006 12", _
    "12 noon", "#3/7/2006#", "1 2 am", "1 am 2", "1 2.3 4", "2 32 3", "32 49", "2/29/2006", _
    "1/1/10000", "0/1/2006", "1/32/2006", "1:2:3:4")
  CheckError "x = CDate(""" & bad & """)", 13, "CDate refuses"
  Check IsDate(bad), False, "IsDate refuses [" & bad & "]"
Next
' Number arguments: any time of 1/1/100 through 12/31/9999, before or after the epoch.
CheckEach Array("CStr(CDate(-657434.5))", "1/1/100 12:00:00 PM", _
  "CStr(CDate(2958465.5))", "12/31/9999 12:00:00 PM")
CheckErrors Array("x = CDate(2958466)", 6, "x = CDate(""2958466"")", 6, "x = CDate(-657435)", 6)
' Literals read the same way.
Check #13/1/2006#, #1/13/2006#, "a literal with the day first"
Check #March 7, 2006#, #3/7/2006#, "a literal with a month name"
Check #2006-03-07#, #3/7/2006#, "a literal with the year first"
' A date literal compared with text reads the text as a date.
CheckEach Array("#3/7/2006# = ""3/7/2006""", True, "#3/7/2006# < ""March 8, 2006""", True)
CheckError "x = (#3/7/2006# = ""soon"")", 13, "text that is no date"

' --- Date arithmetic and parts in the 1033 locale: month ends, leap years, week numbering, formats.
Check DateAdd("d", -1, #3/1/2004#), #2/29/2004#, "a day back into a leap day"
Check DateAdd("h", 25, #1/1/2004#), #1/2/2004 1:00:00 AM#, "hours over a day"
Check DateAdd("n", -1, #1/1/2004#), #12/31/2003 11:59:00 PM#, "a minute back over the year"
Check DateAdd("s", 90, #1/1/2004#), #1/1/2004 12:01:30 AM#, "seconds"
CheckEach Array("DateAdd(""ww"", 2, #1/1/2004#)", #1/15/2004#, "DateAdd(""w"", 1, #1/3/2004#)", #1/4/2004#, _
  "DateAdd(""y"", 1, #12/31/2004#)", #1/1/2005#, _
  "TypeName(DateAdd(""d"", 1, ""1/1/2004""))", "Date")
CheckError "x = DateAdd(""x"", 1, Now)", 5, "unknown interval"
CheckEach Array("DateDiff(""d"", #1/1/2004#, #3/1/2004#)", CLng(60), _
  "DateDiff(""m"", #1/31/2004#, #2/1/2004#)", CLng(1), _
  "DateDiff(""yyyy"", #12/31/2003#, #1/1/2004#)", CLng(1), _
  "DateDiff(""s"", #1/1/2004#, #1/1/2004 0:01#)", CLng(60), _
  "DateDiff(""q"", #3/31/2004#, #4/1/2004#)", CLng(1), _
  "TypeName(DateDiff(""d"", Now, Now))", "Long", "DatePart(""q"", #5/1/2004#)", 2, _
  "DatePart(""y"", #2/1/2004#)", 32)
CheckEach Array("DatePart(""w"", #1/4/2004#)", 1, "DatePart(""w"", #1/4/2004#, vbMonday)", 7, _
  "DatePart(""ww"", #1/1/2004#)", 1, "DatePart(""ww"", #1/4/2004#)", 2, _
  "DatePart(""yyyy"", #1/4/2004#)", 2004, "DatePart(""h"", #1/1/2004 13:30#)", 13, _
  "Weekday(#1/1/2004#)", 5, "Weekday(#1/1/2004#, vbMonday)", 4, _
  "Weekday(#1/1/2004#, vbSaturday)", 6, "MonthName(2)", "February")
CheckEach Array("DateSerial(2004, 2, 30)", #3/1/2004#, "DateSerial(2004, 3, 0)", #2/29/2004#)
CheckEach Array("CDbl(TimeSerial(12, 0, 0))", 0.5, "DateValue(""1/2/2003 10:00"")", #1/2/2003#, _
  "Int(TimeValue(""1/2/2003 10:00""))", CDate(0), "Minute(TimeValue(""1/2/2003 10:59""))", 59, _
  "Year(#2/29/2004#)", 2004, "Day(#2/29/2004#)", 29, "Hour(#1:02:03 PM#)", 13, _
  "Minute(#1:02:03 PM#)", 2, "Second(#1:02:03 PM#)", 3, "TypeName(Year(Null))", "Null", _
  "Month(""3/4/2005"")", 3, "FormatDateTime(#1/2/2003 13:04:05#)", "1/2/2003 1:04:05 PM", _
  "FormatDateTime(#1/2/2003 13:04:05#, vbShortDate)", "1/2/2003", _
  "FormatDateTime(#1/2/2003 13:04:05#, vbLongTime)", "1:04:05 PM", _
  "FormatDateTime(#1/2/2003#)", "1/2/2003", "FormatDateTime(#13:04:05#)", "1:04:05 PM", _
  "TypeName(Date)", "Date", "Int(CDbl(Date))", CDbl(Date), "Now >= Date", True, _
  "TypeName(Timer)", "Single", "CDate(""12/31/1899"") < CDate(""1/1/1900"")", True)
CheckErrors Array("x = Weekday(Now, 8)", 5)
CheckEach Array("WeekdayName(7, True, vbMonday)", "Sun", _
  "TypeName(DateDiff(""yyyy"", Null, #1/1/2004#))", "Null", _
  "TypeName(DatePart(""m"", Null))", "Null", "IsDate(""25:00"")", False)
Check CDate("1/15/2004 3 PM"), #1/15/2004 3:00:00 PM#, "hour with PM"

' --- The date family: two-digit years either side of the pivot, negative time parts, leap
' years, the last week of a year, and the texts of one evening.
Dim d
d = CDate("3/7/2006 9:05:01 PM")
CheckEach Array("CStr(d)", "3/7/2006 9:05:01 PM", "Weekday(d, vbMonday)", 2, _
  "CStr(DateSerial(2006, 3, 0))", "2/28/2006", "CStr(DateSerial(29, 1, 1))", "1/1/2029", _
  "CStr(DateSerial(30, 1, 1))", "1/1/1930", "CStr(TimeSerial(12, -1, 0))", "11:59:00 AM", _
  "CStr(TimeSerial(0, 0, 0))", "12:00:00 AM", "CStr(TimeValue(""21:05""))", "9:05:00 PM", _
  "IsDate(""2/29/2004"")", True, "IsDate(""2/29/2006"")", False, _
  "DateDiff(""s"", #3/7/2006#, #3/8/2006#)", CLng(86400), "DatePart(""y"", #12/31/2004#)", 366, _
  "DatePart(""ww"", #12/31/2006#)", 53, "FormatDateTime(d, vbLongDate)", "Tuesday, March 7, 2006", _
  "FormatDateTime(d, vbShortTime)", "21:05")
CheckErrors Array("x = CDate(""not a date"")", 13, "x = Year(""2/30/2006"")", 13)
' A fractional count is rounded half to even before it is added.
CheckEach Array("DateAdd(""d"", 1.5, #1/1/2004#)", #1/3/2004#, _
  "DateAdd(""d"", 2.5, #1/1/2004#)", #1/3/2004#, "DateAdd(""d"", -1.5, #1/5/2004#)", #1/3/2004#, _
  "DateAdd(""m"", 1.5, #1/1/2004#)", #3/1/2004#)
Check DateAdd("h", "1.6", #1/1/2004#), #1/1/2004 2:00:00 AM#, "DateAdd rounds a text count"
' TimeValue keeps only the time, exactly as the same time written alone.
CheckTrue TimeValue("1/2/2003 10:00") = #10:00:00 AM#, "TimeValue drops a date part exactly"
CheckTrue CDbl(TimeValue(#7/4/2150 6:30:15 PM#)) = CDbl(#6:30:15 PM#), "TimeValue of a far date"
Check TimeValue(#12/30/1899 11:59:59 PM#), #11:59:59 PM#, "TimeValue of the last second"

' --- Calendar arithmetic across boundaries, week numbers under each first-week rule, and the
' general text of a time alone.
CheckEach Array("Year(""12/31/1999"")", 1999, "Year(0)", 1899, _
  "DateSerial(2006, -1, 1)", #11/1/2005#, "CStr(TimeSerial(9, 5, 1))", "9:05:01 AM", _
  "DateValue(""3/7/2006 9:05:01 AM"")", #3/7/2006#, "CStr(TimeValue(""3/7/2006 9:05:01 AM""))", "9:05:01 AM", _
  "DateAdd(""n"", -90, #3/7/2006 1:00 AM#)", #3/6/2006 11:30 PM#, _
  "DateDiff(""h"", #3/7/2006 10:59 AM#, #3/7/2006 11:00 AM#)", CLng(1), _
  "DateDiff(""n"", #3/7/2006 10:59:59 AM#, #3/7/2006 11:00 AM#)", CLng(1), _
  "DatePart(""w"", #3/7/2006#, 2)", 2, _
  "FormatDateTime(CDate(0.5))", "12:00:00 PM")
' 1/1/2005 is a Saturday: under Monday and the first four days it is 2004's week 53. Under
' the first four days the week of 1/1/2004 (a Thursday) starts on Monday 12/29/2003; the other
' rules keep late December in its own year.
CheckEach Array("DatePart(""ww"", #1/1/2005#, 2, 2)", 53, "DatePart(""ww"", #1/3/2005#, 2, 3)", 1, _
  "DatePart(""ww"", #1/2/2005#, 2, 3)", 52, "DatePart(""ww"", #12/31/2003#, 2, 2)", 1, _
  "DatePart(""ww"", #12/28/2003#, 2, 2)", 52, "DatePart(""ww"", #12/31/2003#, 2, 3)", 52)
CheckErrors Array("x = WeekdayName(0)", 5, "x = DateValue(""bogus"")", 13, _
  "x = DateAdd(""s"", 1, #12/31/9999 11:59:59 PM#)", 5, "x = DatePart(""ww"", #1/1/2006#, 1, 4)", 5, _
  "x = FormatDateTime(d, Null)", 94)
' The clock functions agree with each other.
Check Abs(CDbl(Date) + CDbl(Time) - CDbl(Now)) <= 2 / 86400, True, "Date + Time is Now"
