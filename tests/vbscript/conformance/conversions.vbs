' Conversion and number functions at their edges: rounding, ranges, text forms, Null and Empty.

' --- Conversions and number functions at their edges: Boolean text forms, Booleans into Byte,
' numeric text as a date, Single against Double, Round of a Boolean, the generator's start.
Option Explicit
Dim x

' Before any other call, Rnd(0) repeats the generator's starting seed.
CheckEach Array("Rnd(0)", CSng(327680 / 16777216), "Rnd(0)", CSng(327680 / 16777216), _
  "Rnd(-2) = Rnd(-2)", True)

CheckEach Array("CBool(""#TRUE#"")", True, "CBool(""#false#"")", False, _
  "CBool("" true "")", True, "CBool(""0.1"")", True)
CheckErrors Array("x = CBool("""")", 13, "x = CByte(""#TRUE#"")", 13, "x = CDbl(""TRUE"")", 13)

CheckEach Array("CByte(True)", CByte(255), "CByte(False)", CByte(0), "CByte(""-0.5"")", CByte(0))
CheckErrors Array("x = CByte(""-1"")", 6, "x = CByte(256)", 6)
Check CInt(-32768.5), CInt(-32768), "CInt rounds half to even at the edge"
CheckErrors Array("x = CInt(32767.5)", 6, "x = CInt(-32768.51)", 6)
Check CCur(0.000149), CCur(0.0001), "CCur keeps four places"
' Text to Currency rounds the fifth place half to even; so does each step of a running sum.
Dim curBal, curYear
curBal = CCur(1000)
For curYear = 1 To 3 : curBal = curBal + CCur(curBal * 0.05) : Next
CheckEach Array("curBal", CCur(1157.625), "FormatCurrency(curBal, 3)", "$1,157.625", _
  "CStr(CCur(""1.23455"") + CCur(""1.23465""))", "2.4692")
CheckError "x = CCur(""#TRUE#"")", 13, "CCur of #TRUE#"

CheckEach Array("CDate(""1"")", #12/31/1899#, "IsDate(""4"")", False)
CheckErrors Array("x = CDate(""x"")", 13, "x = CDate(Null)", 94)

' A Single meets a Double at the Single's precision.
CheckEach Array("CSng(0.001 * 0.001) = 0.000001", True, "CSng(0.1) = 0.1", True, _
  "CSng(0.1) < 0.1", False, "CSng(1) < 1.5", True, "CSng(16777216) = 16777217.5", False)

' Round gives a Boolean back; Int and Fix make it an Integer.
CheckEach Array("Round(True)", True, "Round(False)", False, "Int(True)", -1, "Fix(True)", -1, _
  "Round(Empty)", 0, "Round(""2.5"")", CDbl(2), "Round(-3.5)", CDbl(-4), _
  "Fix(CCur(-0.99))", CCur(0), "Int(CCur(-0.99))", CCur(-1))

CheckEach Array("Abs(""-1"")", CDbl(1), "Abs(True)", 1, "Abs(CByte(1))", CByte(1), _
  "Abs(-32768)", CLng(32768), "Sgn(CStr(-1))", -1, "Sgn(True)", -1)
CheckErrors Array("x = Sgn(Null)", 94, "x = Sqr(True)", 5, "x = Log(False)", 5, "x = Log(-2)", 5)
CheckEach Array("Sqr(CCur(0.0625))", 0.25, "RGB(1, 256, 273)", &HFFFF01)
CheckError "x = RGB(-1, 0, 0)", 5, "RGB refuses negatives"

' Hex and octal text read as 32 bits; only a conversion to Integer wraps at 16.
CheckEach Array("CLng(""&HFFFF"")", CLng(65535), "CInt(""&HFFFF"")", -1, _
  "Hex(""&HFFFF"")", "FFFF", "CDbl(""&H80000000"")", CDbl(-2147483648), _
  "CLng("" &O17 "")", CLng(15), """&HFFFF"" + 0", CDbl(65535))
CheckError "x = CInt(""&H10000"")", 6, "CInt of hex text past 16 bits"

' A sign may follow the number, once.
CheckEach Array("CDbl(""5-"")", CDbl(-5), "CDbl("" 5 + "")", CDbl(5), "IsNumeric(""1-"")", True, _
  "IsNumeric(""-5-"")", False, "IsNumeric(""(5-)"")", False)

' Result types: a Single divided by a Single, Integer or Byte stays a Single; adding ranks
' Currency above Double, multiplying ranks Double above Currency.
CheckEach Array("CSng(1) / CSng(2)", CSng(0.5), "CSng(1) / 2", CSng(0.5), _
  "TypeName(CSng(1) / 100000)", "Double", "TypeName(1 / 2)", "Double", _
  "TypeName(CSng(3E+38) / CSng(0.1))", "Double", "CCur(1) + CSng(0.1)", CCur(1.1), _
  "CCur(2) - 0.25", CCur(1.75), "CCur(2) * CSng(1.5)", CCur(3), "CCur(2) * 1.5", CDbl(3))

' Currency reads text digit by digit, exactly, rounding the fifth place half to even.
CheckEach Array("CStr(CCur(""922337203685477.5807""))", "922337203685477.5807", _
  "CStr(CCur(""-922337203685477.5808""))", "-922337203685477.5808", _
  "CCur(""0.00015"")", CCur("0.0002"), "CCur(""0.00025"")", CCur("0.0002"), _
  "CCur(""$1,234.5"")", CCur(1234.5), "CCur(""1.5e-2"")", CCur(0.015))
CheckErrors Array("x = CCur(""922337203685477.5808"")", 6, "x = CCur(""1e400"")", 6, _
  "x = CCur(""abc"")", 13)

' The numeric conversions refuse to be called as statements once they have converted, and
' Randomize has no value to read.
CheckErrors Array("Call CInt(1)", 458, "CDbl ""2""", 458, "Call CByte("""")", 13, _
  "Call CStr(1)", 0, "Call Abs(-4)", 0, "x = Randomize(0)", 13, "Randomize 5", 0)
Check CLng(CInt(2) + CDbl("3")), CLng(5), "conversions inside expressions"

' --- Conversion functions at their edges: rounding, ranges, text forms, Null and Empty.
CheckEach Array("CInt(2.5)", 2, "CInt(3.5)", 4, "CLng(1.5)", CLng(2), _
  "CInt(""2.5"")", 2, "CLng(""  42  "")", CLng(42), "CInt(Empty)", 0, _
  "CLng(True)", CLng(-1), "CByte(255.4)", CByte(255))
CheckErrors Array("x = CByte(-1)", 6, "x = CLng(2147483648)", 6, "x = CInt(Null)", 94, _
  "x = CStr(Null)", 94, "x = CDbl(""1x"")", 13, "x = CInt("""")", 13)
CheckEach Array("CBool(""FALSE"")", False, "CBool(""0"")", False, "CBool(-0.1)", True, _
  "CBool(Empty)", False)
CheckError "x = CBool(""yes"")", 13, "CBool(""yes"")"
CheckEach Array("CStr(True)", "True", "CStr(Empty)", "", "CStr(1.0)", "1", "CStr(-0.5)", "-0.5", _
  "CStr(#1/2/2003#)", "1/2/2003", "CStr(#1/2/2003 13:04:05#)", "1/2/2003 1:04:05 PM", _
  "CStr(#1:04:05 PM#)", "1:04:05 PM", "CStr(CDate(0))", "12:00:00 AM", "CDate(1)", #12/31/1899#)
CheckEach Array("TypeName(CSng(1.5))", "Single", "TypeName(CCur(1))", "Currency", _
  "CCur(1.23456)", CCur(1.2346), "TypeName(CDbl(""1""))", "Double")
' Rounding family.
CheckEach Array("Int(-2.5)", CDbl(-3), "Fix(-2.5)", CDbl(-2), _
  "TypeName(Int(CInt(3)))", "Integer", "TypeName(Int(""2.7""))", "Double", _
  "Int(""2.7"")", CDbl(2), "TypeName(Int(Null))", "Null", "Round(3.5)", CDbl(4), _
  "TypeName(Sgn(5.5))", "Integer", "TypeName(Abs(Null))", "Null", "Abs(-5.5)", 5.5)
' Hex and Oct.
CheckEach Array("Hex(255)", "FF", "Hex(-1)", "FFFF", "Hex(CLng(-1))", "FFFFFFFF", _
  "Hex(65536)", "10000", "Hex(-32769)", "FFFF7FFF", "Oct(8)", "10", _
  "TypeName(Hex(Null))", "Null", "Hex(2.5)", "2")
' Character codes.
CheckEach Array("Asc(""A"")", 65, "TypeName(Asc(""A""))", "Integer", "Asc(""AB"")", 65)
CheckError "x = Asc("""")", 5, "Asc of empty text"
CheckEach Array("ChrW(65)", "A", "AscW(""A"")", 65, "Chr(0)", ChrW(0))
CheckError "x = Chr(-1)", 5, "Chr(-1)"
' Tests of kind.
CheckEach Array("IsNumeric("""")", False, "IsNumeric(Empty)", True, "IsNumeric(Null)", False, "IsNumeric("" 12 "")", True, _
  "IsNumeric(""1e5"")", True, "IsNumeric(""&H1F"")", True, "IsNumeric(""-1.5"")", True, _
  "IsNumeric(True)", True, "IsNumeric(#1/1/2000#)", False, "IsNumeric(Array(1))", False, _
  "IsDate(""2/30/2004"")", False, "IsDate(""abc"")", False, _
  "IsDate(#1/1/2000#)", True, "IsDate(Null)", False, "IsEmpty(Empty)", True, _
  "IsEmpty("""")", False, "IsNull(Empty)", False, "IsObject(Nothing)", True, _
  "IsArray(Array())", True)
CheckEach Array("Oct(-1)", "177777", "Oct(CLng(-1))", "37777777777")
CheckErrors Array("x = Hex(2 ^ 31)", 6, "x = Log(0)", 5)
Check Chr(65.5), "B", "Chr rounds its code half to even"

' --- Conversions and type questions on text, Null, Nothing and arrays.
CheckEach Array("CLng(""1,234"")", CLng(1234), "CBool(0)", False, "CDbl(""1e3"")", CDbl(1000), _
  "CStr(CDate(""3/7/2006 9:05:01 AM""))", "3/7/2006 9:05:01 AM", "Hex(Empty)", "0", _
  "IsDate(""March 7, 2006"")", True, "IsDate(1)", False, _
  "TypeName(Nothing)", "Nothing", "TypeName(Array(1))", "Variant()", "VarType(""x"")", 8, _
  "Round(0.125, 2)", 0.12, "TypeName(Round(CSng(2.6)))", "Single", _
  "TypeName(Round(Empty))", "Integer", "Round(CCur(12.5), 1)", CCur(12.5), _
  "Round(CCur(12.55), 2)", CCur(12.55), "Round(CCur(12.625), 2)", CCur(12.62), _
  "TypeName(Fix(""7.9""))", "Double", "TypeName(Int(CDate(1.75)))", "Date", _
  "TypeName(Abs(-32768))", "Long", _
  "Sgn(Empty)", 0, "Exp(0)", CDbl(1), "RGB(300, 0, 0)", CLng(255), "vbRed", CLng(255), _
  "vbBlue", CLng(&HFF0000), "vbUseDefault", -2, "vbFirstFourDays", 2, "vbArray", 8192, _
  "TypeName(vbTextCompare)", "Integer", "vbObjectError", -2147221504, "Len(vbNullChar)", CLng(1), _
  "VBCRLF", Chr(13) & Chr(10))
CheckErrors Array("x = Exp(1000)", 6, "x = Sin(Null)", 94)
' A fresh engine's generator starts where Windows' does, and Rnd of a negative number restarts
' a fixed sequence whatever came before.
Dim rndSc : Set rndSc = CreateObject("MSScriptControl.ScriptControl") : rndSc.Language = "VBScript"
CheckEach Array("Abs(rndSc.Eval(""Rnd"") - 0.7055475) < 1E-7", True, _
  "Abs(rndSc.Eval(""Rnd"") - 0.533424) < 1E-7", True, "Abs(rndSc.Eval(""Rnd(-1)"") - 0.224007) < 1E-6", True, _
  "Abs(Rnd(-1) - 0.224007) < 1E-6", True, "Rnd(-1) = rndSc.Eval(""Rnd(-1)"")", True)
' Doubles print with at most 15 significant digits, a negative zero as 0.
CheckEach Array("CStr(0.1 + 0.2)", "0.3", "CStr(1234567890123456)", "1.23456789012346E+15", _
  "CStr(0 * -1.5)", "0", "CStr(CSng(1.1))", "1.1", "CStr(CCur(-1.5))", "-1.5", _
  "CStr(CCur(1.2345))", "1.2345")
' Products widen Integer to Long to Double as they grow, and print in the same rule; a Single
' prints with 7 digits, and Hex of a negative shows its two's complement.
CheckEach Array("TypeName(5040 * 8)", "Long", "TypeName(479001600 * 13)", "Double", _
  "CStr(479001600 * 13 * 14 * 15)", "1307674368000", "CStr(2432902008176640000 * 1)", _
  "2.43290200817664E+18", "CStr(1.5511210043331E+25 * 1)", "1.5511210043331E+25", _
  "CStr(CSng(1 / 3))", "0.3333333", "CStr(CSng(16777217))", "1.677722E+07", _
  "CStr(CDbl(CSng(0.1)))", "0.100000001490116", "CStr(Atn(1) * 4)", "3.14159265358979", _
  "Hex(-255)", "FF01", "Hex(CInt(-32768))", "8000", "Hex(-2147483648)", "80000000")
CheckError "x = CCur(922337203685477) * 18", 6, "a Currency product past its range"
CheckEach Array("CStr(Sqr(2))", "1.4142135623731", "CStr(Exp(1))", "2.71828182845905", _
  "CStr(Tan(1))", "1.5574077246549", _
  "CStr(1 - 0.9) & "" "" & CStr(100 * 1.1) & "" "" & CStr(3 * 1.1)", "0.1 110 3.3", _
  "CStr(1.7976931348623157E+308)", "1.79769313486232E+308", "CStr(12345678 * 100)", "1234567800")
