' Reading dates from text: the orders tried for bare numbers, month names, the time with ':'
' or '.', AM/PM, two-digit years, and the text that is refused.
Dim thisYear
thisYear = Year(Now)

' Three numbers: month/day/year first, then year/month/day, then day/month/year.
Check CDate("3/7/2006"), #3/7/2006#, "month/day/year"
Check CDate("3-7-2006"), #3/7/2006#, "with dashes"
Check CDate("3 7 2006"), #3/7/2006#, "with spaces"
Check CDate("3,7,2006"), #3/7/2006#, "with commas"
Check CDate("2006-03-07"), #3/7/2006#, "year first"
Check CDate("13/1/2006"), #1/13/2006#, "a first number above 12 is the day"
Check CDate("14 2 3"), #2/3/2014#, "year/month/day wins over day/month/year"
Check CDate("32 2 3"), #2/3/1932#, "a first number above 31 is the year"
Check CDate("2 3 32"), #2/3/1932#, "a last number above 31 is the year"
Check CDate("99-1-1"), #1/1/1999#, "two-digit year first"
Check CDate("1/2/3"), #1/2/2003#, "one-digit parts"
Check CDate("100-1-1"), #1/1/100#, "the first year"
' Two-digit years: 00-29 are this century, 30-99 the last.
Check Year(CDate("1/1/00")), 2000, "year 00"
Check Year(CDate("1/1/29")), 2029, "year 29"
Check Year(CDate("1/1/30")), 1930, "year 30"
Check Year(CDate("12/31/99")), 1999, "year 99"
' Two numbers: month and day of this year, else day and month, else month and year.
Check CDate("3/7"), DateSerial(thisYear, 3, 7), "month/day of this year"
Check CDate("14 1"), DateSerial(thisYear, 1, 14), "day/month of this year"
Check CDate("2006-12"), #12/1/2006#, "year and month"
Check CDate("12-2006"), #12/1/2006#, "month and year"
Check CDate("30 2"), #2/1/1930#, "no day in February 30: a month and a year"
' Month names, full or in three letters, with the numbers in any order.
Check CDate("7 March 2006"), #3/7/2006#, "day month year"
Check CDate("March 7, 2006"), #3/7/2006#, "month day, year"
Check CDate("Mar 7 2006"), #3/7/2006#, "abbreviated month"
Check CDate("7-Mar-06"), #3/7/2006#, "day-month-two-digit year"
Check CDate("2006-Mar-7"), #3/7/2006#, "year-month-day"
Check CDate("Tuesday, March 7, 2006"), #3/7/2006#, "a weekday name is skipped"
Check CDate("March 2006"), #3/1/2006#, "month and year"
Check CDate("Jan 35"), #1/1/1935#, "a number that is no day is the year"
Check CDate("Jan 2"), DateSerial(thisYear, 1, 2), "month and day of this year"
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
Check CDate("1"), #12/31/1899#, "a whole number of days"
Check CDate("-1"), #12/29/1899#, "a negative number of days"
Check CDate("1.5"), #1:05:00 AM#, "a dotted number is a time"
Check IsDate("1"), False, "IsDate of a bare number"
Check IsDate("4.5"), True, "IsDate of a dotted time"
Check IsDate("3/7/2006 9:05 PM"), True, "IsDate of a date and time"
Check IsDate("13/13/2006"), False, "IsDate with no month"
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
Check CStr(CDate(-657434.5)), "1/1/100 12:00:00 PM", "noon of the first day"
Check CStr(CDate(2958465.5)), "12/31/9999 12:00:00 PM", "noon of the last day"
CheckError "x = CDate(2958466)", 6, "the day after the last"
CheckError "x = CDate(""2958466"")", 6, "the day after the last, as text"
CheckError "x = CDate(-657435)", 6, "the day before the first"
' Literals read the same way.
Check #13/1/2006#, #1/13/2006#, "a literal with the day first"
Check #March 7, 2006#, #3/7/2006#, "a literal with a month name"
Check #2006-03-07#, #3/7/2006#, "a literal with the year first"
' A date literal compared with text reads the text as a date.
Check #3/7/2006# = "3/7/2006", True, "a date literal equals its text"
Check #3/7/2006# < "March 8, 2006", True, "a date literal before a later date's text"
CheckError "x = (#3/7/2006# = ""soon"")", 13, "text that is no date"
