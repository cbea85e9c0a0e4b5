' Conversions and number functions at their edges: Boolean text forms, Booleans into Byte,
' numeric text as a date, Single against Double, Round of a Boolean, the generator's start.
Option Explicit
Dim x

' Before any other call, Rnd(0) repeats the generator's starting seed.
Check Rnd(0), CSng(327680 / 16777216), "Rnd(0) before the first number"
Check Rnd(0), CSng(327680 / 16777216), "Rnd(0) does not advance"
Check Rnd(-2) = Rnd(-2), True, "a negative argument reseeds"

Check CBool("#TRUE#"), True, "CBool of #TRUE#"
Check CBool("#false#"), False, "CBool of #false#"
Check CBool(" true "), True, "CBool trims blanks"
Check CBool("0.1"), True, "CBool of a fraction"
CheckError "x = CBool("""")", 13, "CBool of empty text"
CheckError "x = CByte(""#TRUE#"")", 13, "only CBool reads #TRUE#"
CheckError "x = CDbl(""TRUE"")", 13, "CDbl of True as text"

Check CByte(True), CByte(255), "CByte(True) keeps the low byte of -1"
Check CByte(False), CByte(0), "CByte(False)"
Check CByte("-0.5"), CByte(0), "CByte rounds -0.5 to zero"
CheckError "x = CByte(""-1"")", 6, "CByte of -1"
CheckError "x = CByte(256)", 6, "CByte of 256"
Check CInt(-32768.5), CInt(-32768), "CInt rounds half to even at the edge"
CheckError "x = CInt(32767.5)", 6, "CInt of 32767.5"
CheckError "x = CInt(-32768.51)", 6, "CInt below the edge"
Check CCur(0.000149), CCur(0.0001), "CCur keeps four places"
CheckError "x = CCur(""#TRUE#"")", 13, "CCur of #TRUE#"

Check CDate("1"), #12/31/1899#, "CDate of numeric text counts days"
Check IsDate("4"), False, "numeric text is no date for IsDate"
CheckError "x = CDate(""x"")", 13, "CDate of other text"
CheckError "x = CDate(Null)", 94, "CDate of Null"

' A Single meets a Double at the Single's precision.
Check CSng(0.001 * 0.001) = 0.000001, True, "Single equals the Double it came from"
Check CSng(0.1) = 0.1, True, "CSng(0.1) = 0.1"
Check CSng(0.1) < 0.1, False, "no ordering from the lost digits"
Check CSng(1) < 1.5, True, "different values still order"
Check CSng(16777216) = 16777217.5, False, "Doubles far apart stay apart"

' Round gives a Boolean back; Int and Fix make it an Integer.
Check Round(True), True, "Round(True)"
Check Round(False), False, "Round(False)"
Check Int(True), -1, "Int(True)"
Check Fix(True), -1, "Fix(True)"
Check Round(Empty), 0, "Round(Empty)"
Check Round("2.5"), CDbl(2), "Round of text is a Double"
Check Round(-3.5), CDbl(-4), "Round half to even below zero"
Check Fix(CCur(-0.99)), CCur(0), "Fix of Currency"
Check Int(CCur(-0.99)), CCur(-1), "Int of Currency"

Check Abs("-1"), CDbl(1), "Abs of text is a Double"
Check Abs(True), 1, "Abs(True) is an Integer"
Check Abs(CByte(1)), CByte(1), "Abs of a Byte"
Check Abs(-32768), CLng(32768), "Abs widens the lowest Integer"
Check Sgn(CStr(-1)), -1, "Sgn of text"
Check Sgn(True), -1, "Sgn(True)"
CheckError "x = Sgn(Null)", 94, "Sgn(Null)"
CheckError "x = Sqr(True)", 5, "Sqr of True is Sqr(-1)"
CheckError "x = Log(False)", 5, "Log(0)"
CheckError "x = Log(-2)", 5, "Log of a negative"
Check Sqr(CCur(0.0625)), 0.25, "Sqr of Currency"
Check RGB(1, 256, 273), &HFFFF01, "RGB clamps at 255"
CheckError "x = RGB(-1, 0, 0)", 5, "RGB refuses negatives"

' Hex and octal text read as 32 bits; only a conversion to Integer wraps at 16.
Check CLng("&HFFFF"), CLng(65535), "CLng of &HFFFF text"
Check CInt("&HFFFF"), -1, "CInt of &HFFFF text"
Check Hex("&HFFFF"), "FFFF", "Hex of &HFFFF text"
Check CDbl("&H80000000"), CDbl(-2147483648), "CDbl of &H80000000 text"
Check CLng(" &O17 "), CLng(15), "octal text with blanks"
Check "&HFFFF" + 0, CDbl(65535), "hex text in arithmetic"
CheckError "x = CInt(""&H10000"")", 6, "CInt of hex text past 16 bits"

' A sign may follow the number, once.
Check CDbl("5-"), CDbl(-5), "trailing minus"
Check CDbl(" 5 + "), CDbl(5), "trailing plus with blanks"
Check IsNumeric("1-"), True, "IsNumeric with a trailing minus"
Check IsNumeric("-5-"), False, "two signs"
Check IsNumeric("(5-)"), False, "parentheses and a sign"

' Result types: a Single divided by a Single, Integer or Byte stays a Single; adding ranks
' Currency above Double, multiplying ranks Double above Currency.
Check CSng(1) / CSng(2), CSng(0.5), "Single / Single"
Check CSng(1) / 2, CSng(0.5), "Single / Integer"
Check TypeName(CSng(1) / 100000), "Double", "Single / Long"
Check TypeName(1 / 2), "Double", "Integer / Integer"
Check TypeName(CSng(3E+38) / CSng(0.1)), "Double", "a Single quotient too big for a Single"
Check CCur(1) + CSng(0.1), CCur(1.1), "Currency + Single"
Check CCur(2) - 0.25, CCur(1.75), "Currency - Double"
Check CCur(2) * CSng(1.5), CCur(3), "Currency * Single"
Check CCur(2) * 1.5, CDbl(3), "Currency * Double"

' Currency reads text digit by digit, exactly, rounding the fifth place half to even.
Check CStr(CCur("922337203685477.5807")), "922337203685477.5807", "largest Currency from text"
Check CStr(CCur("-922337203685477.5808")), "-922337203685477.5808", "smallest Currency from text"
Check CCur("0.00015"), CCur("0.0002"), "fifth place rounds up to even"
Check CCur("0.00025"), CCur("0.0002"), "fifth place rounds down to even"
Check CCur("$1,234.5"), CCur(1234.5), "Currency text with sign and separators"
Check CCur("1.5e-2"), CCur(0.015), "Currency text with an exponent"
CheckError "x = CCur(""922337203685477.5808"")", 6, "Currency text one past the largest"
CheckError "x = CCur(""1e400"")", 6, "Currency text far too big"
CheckError "x = CCur(""abc"")", 13, "Currency of other text"

' The numeric conversions refuse to be called as statements once they have converted, and
' Randomize has no value to read.
CheckError "Call CInt(1)", 458, "CInt called as a statement"
CheckError "CDbl ""2""", 458, "CDbl called as a statement"
CheckError "Call CByte("""")", 13, "a failed conversion reports its own error first"
CheckError "Call CStr(1)", 0, "CStr may be called as a statement"
CheckError "Call Abs(-4)", 0, "other functions may be called as statements"
CheckError "x = Randomize(0)", 13, "Randomize has no value"
CheckError "Randomize 5", 0, "Randomize as a statement"
Check CLng(CInt(2) + CDbl("3")), CLng(5), "conversions inside expressions"
