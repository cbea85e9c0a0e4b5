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
CheckEach Array("lines(0)", "Widget      |          2.50|    3|            7.50", _
  "lines(1)", "Gadget extra|      1,234.57|    1|        1,234.57", _
  "lines(2)", "Nut         |          0.10|  250|           25.00", _
  "lines(3)", "Bolt        |  1,000,000.00|    2|    2,000,000.00", "Len(lines(3))", CLng(50), _
  "FormatCurrency(total)", "$2,001,267.07", _
  "PadL(FormatNumber(-total, 2, , True), 16)", "  (2,001,267.07)", _
  "String(3, ""="") & String(2, 65) & Space(2) & ""|""", "===AA  |")

CheckEach Array("FormatNumber("".5"")", "0.50", "FormatNumber(1234567.891, 1, , , vbFalse)", "1234567.9")

' A string builder and the searches over its result.
Dim sb
sb = ""
For i = 1 To 5
  sb = sb & Chr(64 + i) & CStr(i * i) & ";"
Next
CheckEach Array("sb", "A1;B4;C9;D16;E25;", "Len(sb)", CLng(17), "InStr(sb, ""C9"")", CLng(7), _
  "InStrRev(sb, "";"", -1)", CLng(17), "Mid(sb, 4, 3)", "B4;", _
  "UCase(StrReverse(sb))", ";52E;61D;9C;4B;1A")
Dim parts
parts = Split("  one  two three ", " ")
CheckEach Array("UBound(parts)", CLng(6), "Join(parts, ""|"")", "||one||two|three|")

' The byte forms count two bytes to each character.
Dim field
field = "ID42NAME"
CheckEach Array("LenB(field)", CLng(16), _
  "LeftB(field, 4) & ""|"" & MidB(field, 5, 4) & ""|"" & RightB(field, 8)", "ID|42|NAME", _
  "InStrB(field, ""NAME"")", CLng(9), "InStrB(3, field, ""I"")", CLng(0), _
  "IsNull(MidB(Null, 1))", True)
