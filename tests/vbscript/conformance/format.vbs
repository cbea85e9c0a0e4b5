' FormatNumber, FormatCurrency, FormatPercent and Round, with every optional argument.

' --- FormatNumber, FormatCurrency and FormatPercent: rounding half away from zero on the decimal
' digits, the tri-state options one by one, Null and Empty, and the long date's text.
CheckEach Array("FormatNumber(0.125, 2)", "0.13", "FormatNumber(1.005, 2)", "1.01", _
  "FormatNumber(2.675, 2)", "2.68", "FormatNumber(2.5, 0)", "3", "FormatNumber(-2.5, 0)", "-3", _
  "FormatNumber(999.999, 2)", "1,000.00", "FormatNumber(-999.995, 2)", "-1,000.00", _
  "FormatNumber(CCur(1234.5678), 4)", "1,234.5678", "FormatNumber(CSng(2.675), 2)", "2.68", _
  "FormatNumber(CSng(1.1), 4)", "1.1000", "FormatNumber(123.456, -1)", "123.46", _
  "FormatNumber(123.456, 5)", "123.45600", "FormatNumber(1, 2.5)", "1.00", _
  "FormatNumber(1, 3.5)", "1.0000", "FormatNumber(1, ""2"")", "1.00", _
  "FormatNumber(True, 0)", "-1", "FormatNumber(Empty)", "0.00", _
  "FormatNumber(""1,234.5"")", "1,234.50", "FormatNumber(0.1, 0, -1)", "0")
' A negative value that rounds to zero keeps its sign, as in the Windows number formats.
CheckEach Array("FormatNumber(-0.4, 0)", "-0", "FormatNumber(-0.001)", "-0.00", _
  "FormatCurrency(-0.001)", "($0.00)", "FormatPercent(-0.00001)", "-0.00%", _
  "FormatNumber(-0.001, 2, , -1)", "(0.00)", "FormatNumber(-0.1, 1, 0)", "-.1", _
  "FormatNumber(-0.1, 1, 0, -1)", "(.1)", "FormatNumber(-0.1, 1, -2, -2, -2)", "-0.1", _
  "FormatNumber(-1234.5, 1, , -1)", "(1,234.5)", "FormatNumber(1234, 0, -2, -2, -2)", "1,234")
CheckErrors Array("x = FormatNumber(Null)", 13, "x = FormatNumber(1, Null)", 94, _
  "x = FormatNumber(1, 1, Null)", 94, "x = FormatNumber(1, 1, 1, Null)", 94, _
  "x = FormatNumber(1, 1, 1, 1, Null)", 94, "x = FormatNumber(1234, 0, ""x"")", 13)
CheckEach Array("FormatCurrency(-1234.5)", "($1,234.50)", _
  "FormatCurrency(-1234.5, , , 0)", "-$1,234.50", "FormatCurrency(0.5, , 0)", "$.50", _
  "FormatCurrency(-0.5, , 0)", "($.50)", "FormatCurrency(-0.5, , 0, 0)", "-$.50", _
  "FormatCurrency(1234.5, -1, -1, -1, 0)", "$1234.50", "FormatCurrency(Empty)", "$0.00", _
  "FormatCurrency(CCur(-1.23))", "($1.23)")
CheckErrors Array("x = FormatCurrency(Null)", 13, "x = FormatCurrency(1000, 0, 0, 0, Null)", 94)
CheckEach Array("FormatPercent(0.005, 0)", "1%", "FormatPercent(0.015, 0)", "2%", _
  "FormatPercent(0.001, , 0)", ".10%", "FormatPercent(1000)", "100,000.00%", _
  "FormatPercent(1000, , , , 0)", "100000.00%", "FormatPercent(Empty)", "0.00%")
CheckErrors Array("x = FormatPercent(Null)", 13, "x = FormatPercent(""12%"")", 13)
' The long date follows today's en-US data: the day without a leading zero.
Check FormatDateTime(#1/2/2003#, vbLongDate), "Thursday, January 2, 2003", "long date"
CheckErrors Array("x = FormatDateTime(Null)", 13, "x = FormatDateTime(0.1, Null)", 94, _
  "x = FormatDateTime(#1/2/2003#, -1)", 5)

' --- The defaults under 1033 (two decimals, groups of three, a leading zero), the text they give,
' and numbers to text through CStr for comparison.
CheckEach Array("FormatNumber(1234.5678)", "1,234.57", "FormatNumber(1234567.891, 2)", "1,234,567.89", _
  "FormatNumber(0.123, 2, vbTrue)", "0.12", "FormatNumber(0, 2)", "0.00", _
  "TypeName(FormatNumber(1))", "String", "FormatNumber(""1e3"")", "1,000.00", _
  "FormatNumber(0.000001, 8)", "0.00000100", "FormatNumber(1E-7, 3)", "0.000", _
  "FormatCurrency(1234.5)", "$1,234.50", "FormatCurrency(0)", "$0.00", _
  "FormatCurrency(1234.5, 0)", "$1,235", "FormatPercent(0.1234)", "12.34%", _
  "FormatPercent(-0.25, 1)", "-25.0%", "FormatPercent(-0.5, 0, , vbTrue)", "(50%)")
CheckErrors Array("x = FormatNumber(""abc"")", 13, "x = FormatCurrency(""x"")", 13)
CheckEach Array("CStr(1234.5)", "1234.5", "CStr(100000000000000)", "100000000000000", _
  "CStr(1E+15)", "1E+15", "CStr(123456789012345.6)", "123456789012346", "CStr(0.0001)", "0.0001", _
  "CStr(0.00001)", "1E-05", "CStr(-1E-20)", "-1E-20", "CStr(1/3)", "0.333333333333333", _
  "CStr(CSng(3.14159))", "3.14159", "CStr(CCur(-0.0001))", "-0.0001")

' --- Banker's rounding in Round and the whole-number conversions, unlike the Format functions.
CheckEach Array("Round(1.2345, 2)", 1.23, "Round(Null)", Null, "CLng(-2.5)", CLng(-2), _
  "Abs(-3)", 3, "Sgn(-0.5)", -1, "Sqr(16)", CDbl(4), "RGB(255, 128, 0)", CLng(33023), _
  "IsNumeric(""1,234.5"")", True, "IsNumeric(""12a"")", False)

Rnd -1
Randomize 7
Dim r1, r2
r1 = Rnd
Rnd -1
Randomize 7
r2 = Rnd
CheckEach Array("r1", r2, "r1 >= 0 And r1 < 1", True)

CheckErrors Array("x = CLng(Null)", 94, "x = Round(1.5, -1)", 5, "x = UBound(1)", 13, _
  "x = UBound(Array(1), 2)", 9, "x = FormatNumber(1, -3)", 5)
