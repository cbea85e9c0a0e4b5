' A fixed-width invoice built with String, Space, Left, Right and the Format functions, and
' a string builder that indexes into what it built.
Function PadR(s, n)
  If Len(s) >= n Then PadR = Left(s, n) Else PadR = s & Space(n - Len(s))
End Function

Function PadL(s, n)
  PadL = Right(String(n, " ") & s, n)
End Function

Dim items, prices, qty, i, total, lines
items = Array("Widget", "Gadget extra long name", "Nut", "Bolt")
prices = Array(2.5, 1234.567, 0.1, 1000000)
qty = Array(3, 1, 250, 2)
lines = Array()
total = 0
For i = 0 To UBound(items)
  ReDim Preserve lines(i)
  lines(i) = PadR(items(i), 12) & "|" & PadL(FormatNumber(prices(i), 2), 14) & "|" & _
             PadL(qty(i), 5) & "|" & PadL(FormatNumber(prices(i) * qty(i), 2, , True), 16)
  total = total + prices(i) * qty(i)
Next
Check lines(0), "Widget      |          2.50|    3|            7.50", "a plain line"
Check lines(1), "Gadget extra|      1,234.57|    1|        1,234.57", "a long name is cut, the price grouped"
Check lines(2), "Nut         |          0.10|  250|           25.00", "a leading zero"
Check lines(3), "Bolt        |  1,000,000.00|    2|    2,000,000.00", "millions"
Check Len(lines(3)), CLng(50), "every line has the same width"
Check FormatCurrency(total), "$2,001,267.07", "the total as currency"
Check PadL(FormatNumber(-total, 2, , True), 16), "  (2,001,267.07)", "a negative in parentheses"
Check String(3, "=") & String(2, 65) & Space(2) & "|", "===AA  |", "String of a text and of a character code"

Check FormatPercent(0.1234), "12.34%", "a percentage"
Check FormatPercent(1.5, 0), "150%", "a percentage without decimals"
Check FormatNumber(123, 2, vbFalse), "123.00", "decimals are padded"
Check FormatNumber(-0.5, 2, vbFalse), "-.50", "no leading zero when asked"
Check FormatNumber(".5"), "0.50", "numeric text is formatted"
Check FormatNumber(1234567.891, 1, , , vbFalse), "1234567.9", "no grouping when asked"
Check FormatDateTime(#3/4/2005 13:05:09#), "3/4/2005 1:05:09 PM", "general date"
Check FormatDateTime(#3/4/2005 13:05:09#, vbLongDate), "Friday, March 4, 2005", "long date"
Check FormatDateTime(#3/4/2005 13:05:09#, vbShortTime), "13:05", "short time"
Check FormatDateTime(#1/1/2000#), "1/1/2000", "a date without time"
Check FormatDateTime(0.5, vbLongTime), "12:00:00 PM", "a time without date"

' A string builder and the searches over its result.
Dim sb
sb = ""
For i = 1 To 5
  sb = sb & Chr(64 + i) & CStr(i * i) & ";"
Next
Check sb, "A1;B4;C9;D16;E25;", "built by appending"
Check Len(sb), CLng(17), "its length"
Check InStr(sb, "C9"), CLng(7), "InStr"
Check InStrRev(sb, ";", -1), CLng(17), "InStrRev from the end"
Check InStr(3, sb, ";"), CLng(3), "InStr from a start position"
Check Mid(sb, 4, 3), "B4;", "Mid"
Check UCase(StrReverse(sb)), ";52E;61D;9C;4B;1A", "reversed"
Check Replace("a-b-c-d", "-", "+", 2, 2), "+b+c-d", "Replace from a start with a count cuts the front"
Check Replace("aAaA", "a", "x", 1, -1, vbTextCompare), "xxxx", "Replace ignoring case"
Check "[" & LTrim("  x  ") & "][" & RTrim("  x  ") & "]", "[x  ][  x]", "trimming one side"
CheckTrue Trim(vbTab & "x") <> "x", "Trim leaves tabs"

Dim parts
parts = Split("  one  two three ", " ")
Check UBound(parts), CLng(6), "Split keeps the empty pieces between spaces"
Check Join(parts, "|"), "||one||two|three|", "and joins them back"
parts = Split("a,b,,c", ",", 2)
Check parts(1), "b,,c", "a limited Split leaves the rest whole"
Check UBound(Split("")), CLng(-1), "splitting nothing"
Check StrComp("abc", "ABC") & StrComp("abc", "ABC", 1) & StrComp("a", "b"), "10-1", "StrComp"
Check InStr(1, "ABC", "b", 1), CLng(2), "InStr ignoring case"
Check InStrRev("abcabc", "bc", 4), CLng(2), "InStrRev from a position"

' The byte forms count two bytes to each character.
Dim field
field = "ID42NAME"
Check LenB(field), CLng(16), "bytes in a field"
Check LeftB(field, 4) & "|" & MidB(field, 5, 4) & "|" & RightB(field, 8), "ID|42|NAME", "cutting by bytes"
Check InStrB(field, "NAME"), CLng(9), "a byte position"
Check InStrB(3, field, "I"), CLng(0), "searching from a byte position"
CheckTrue IsNull(MidB(Null, 1)), "Null passes through"
