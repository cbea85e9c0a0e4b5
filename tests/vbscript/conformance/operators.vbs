' Operators: precedence, result types, overflow, and how mixed operands, Null and Empty convert.

' --- Operator precedence, associativity and the result types of arithmetic.
CheckEach Array("-2 ^ 2", CDbl(4), "2 ^ 3 ^ 2", CDbl(64), "2 ^ -1", 0.5, "1 + 2 * 3", 7, _
  "7 \ 2 * 2", 1, "10 - 2 - 3", 5, "2 * 3 Mod 4", 2, "7 Mod 3 \ 1", 1, "1 + 2 & 3", "33", _
  """a"" & 1 + 2", "a3", "1 < 2 = True", True, "Not 1 = 2", True, _
  "True Or False And False", True, "True Xor True Or True", False, _
  "False Eqv False Xor True", False, "True Imp False Eqv False", True)
' Types of results.
CheckEach Array("TypeName(1 + 1)", "Integer", "TypeName(32767 + 1)", "Long", _
  "TypeName(-32768 - 1)", "Long", "TypeName(200 * 200)", "Long", _
  "TypeName(2147483647 + 1)", "Double", "TypeName(CByte(200) + CByte(100))", "Integer", _
  "TypeName(CByte(2) + CByte(3))", "Byte", "TypeName(CByte(2) + 3)", "Integer", _
  "TypeName(CSng(1.5) + 1)", "Single", "TypeName(CSng(1.5) + CLng(1))", "Double", _
  "TypeName(1.5 + 1)", "Double", "TypeName(CCur(1) + 1)", "Currency", _
  "TypeName(4 / 2)", "Double", "7 / 2", 3.5, "TypeName(7 \ 2)", "Integer", _
  "TypeName(CLng(7) \ 2)", "Long", "7.5 \ 2", CLng(4), "6.5 \ 2", CLng(3), "-7 \ 2", -3, _
  "-7 Mod 3", -1, "5.5 Mod 3", CLng(0), "TypeName(2 ^ 2)", "Double", "True + True", -2, _
  "TypeName(True + True)", "Integer", "-True", 1, "TypeName(Empty + Empty)", "Integer", _
  "Empty + 5", 5)
' Strings and +.
CheckEach Array("""1"" + ""2""", "12", """1"" + 2", CDbl(3), "TypeName(""1"" + 2)", "Double", _
  """a"" & Empty & ""b""", "ab", "1 & 2", "12", "TypeName(Null & Null)", "Null", _
  """x"" & Null", "x")
' Null propagation.
CheckEach Array("TypeName(Null + 1)", "Null", "TypeName(1 - Null)", "Null", _
  "TypeName(Null = Null)", "Null", "TypeName(Null > 1)", "Null", "TypeName(-Null)", "Null", _
  "TypeName(Not Null)", "Null", "False And Null", False, "TypeName(True And Null)", "Null", _
  "True Or Null", True, "TypeName(False Or Null)", "Null", "0 And Null", 0)
' Bitwise on numbers.
CheckEach Array("12 And 10", 8, "12 Or 3", 15, "12 Xor 10", 6, "Not 0", -1, _
  "TypeName(Not CByte(0))", "Byte", "Not CByte(0)", CByte(255), _
  "TypeName(1 And CLng(3))", "Long", "TypeName(True And True)", "Boolean", _
  "TypeName(True And 1)", "Integer")
' Comparisons.
CheckEach Array("1 < 2", True, """a"" < ""b""", True, """a"" < ""B""", False, _
  """10"" < ""9""", True, "10 > ""9""", True, """abc"" = ""abc""", True, "1 = 1.0", True, _
  "Empty = 0", True, "Empty = """"", True, "Nothing Is Nothing", True)
Set o1 = New RegExp
Set o2 = o1
CheckEach Array("o1 Is o2", True, "o1 Is New RegExp", False)
' Overflow and division errors.
CheckErrors Array("x = 1 / 0", 11, "x = 1 \ 0", 11, "x = 1 Mod 0", 11, "x = 1E308 * 10", 6, _
  "x = ""a"" + 1", 13, "x = 1 Is 2", 424, "x = CByte(1) - 2", 0)
Check TypeName(CByte(1) - 2), "Integer", "Byte - Integer"

' --- Result types and overflow of arithmetic on every numeric subtype, and how Null and Empty flow through operators.
CheckEach Array("TypeName(CInt(1) * CLng(2))", "Long", _
  "TypeName(CByte(10) * CByte(30))", "Integer", "TypeName(CByte(7) Mod CByte(3))", "Byte", _
  "TypeName(CByte(7) \ CByte(2))", "Byte", "TypeName(CLng(2147483647) * 2)", "Double", _
  "TypeName(CCur(1) + CLng(1))", "Currency", "TypeName(CCur(1) - True)", "Currency", _
  "TypeName(-CInt(-32768))", "Long", "-CInt(-32768)", CLng(32768), _
  "TypeName(-CLng(-2147483647 - 1))", "Double", "TypeName(True \ True)", "Integer", _
  "TypeName(True Mod True)", "Integer", "TypeName(True - False)", "Integer", _
  "TypeName(Not True)", "Boolean", "TypeName(Not CLng(5))", "Long", "Not 5", -6, _
  "2.5 \ 1", CLng(2), "-2.5 \ 1", CLng(-2), "3.5 \ 1", CLng(4), "7 Mod -3", 1, _
  "7.6 Mod 3", CLng(2), "TypeName(10.5 Mod 3)", "Long", "0 ^ 0", CDbl(1), "4 ^ 0.5", CDbl(2), _
  "(-8) ^ 3", CDbl(-512))
CheckError "x = (-8) ^ (1/3)", 5, "negative base, fractional exponent"
CheckEach Array("TypeName(Null ^ 2)", "Null", "TypeName(Null Mod 2)", "Null", _
  "TypeName(Null \ 2)", "Null")
CheckError "x = Null \ 0", 0, "Null \ 0 is Null, no error"
CheckEach Array("TypeName(Null & 1)", "String", "Null & 1", "1", _
  "TypeName(Null Xor True)", "Null", "TypeName(True Eqv Null)", "Null", "False Imp Null", True, _
  "Null Imp True", True, "TypeName(True Imp Null)", "Null", "TypeName(Null Imp False)", "Null", _
  "TypeName(Empty & Empty)", "String", "TypeName(-Empty)", "Integer", _
  "TypeName(Empty * 1.5)", "Double", "TypeName(Empty + CLng(1))", "Long", _
  "TypeName("""" & 1)", "String", """2"" * ""3""", CDbl(6), """1"" + ""1""", "11", _
  "TypeName(#1/1/2000# + CCur(1))", "Date", "TypeName(#1/1/2000# - 0.5)", "Date")
Check #1/1/2000# - 0.5, #12/31/1999 12:00:00 PM#, "half a day back"
Check TypeName(CByte(255) + True), "Integer", "Byte + Boolean"
' Comparisons across types.
CheckEach Array("Empty < 1", True, "Empty > -1", True, """"" < ""a""", True, _
  """abc"" < ""abd""", True, """A"" < ""a""", True, """abc"" < ""abcd""", True, _
  "TypeName(Null <> 1)", "Null", "TypeName(Null = Empty)", "Null", "TypeName(1 = 1)", "Boolean", _
  "True = -1", True, "False = 0", True, "CByte(1) = CCur(1)", True, "#1/1/2000# = 36526", True)
x = Empty
CheckEach Array("x = """"", True, "x = 0", True)
i = 5
j = "5"
CheckEach Array("i = j", False, "TypeName(i < j)", "Boolean")
CheckErrors Array("x = ""5"" < 10", 0, "x = 32767 + CInt(1)", 0)
' Logical operators on numbers work bit by bit after rounding to a whole number.
CheckEach Array("Not 1.5", CLng(-3), "5 Imp 3", -5, "5 Eqv 3", -7, _
  "CByte(5) Eqv CByte(3)", CByte(249), "True And 5", 5)
' Integer division and Mod round their operands and check the range.
CheckErrors Array("x = 1 Mod 0.4", 11, "x = 2147483648 \ 1", 6)
CheckEach Array("-5 \ 2", -2, "-5 Mod 2", -1, """3"" \ ""2""", CLng(1), _
  "TypeName(CLng(5) Mod CInt(2))", "Long")
' Mixed numeric types.
CheckEach Array("TypeName(CInt(2) * CSng(2))", "Single", "TypeName(CLng(2) * CSng(2))", "Double", _
  "TypeName(CCur(2) * CInt(2))", "Currency", "TypeName(CByte(5) - CByte(1))", "Byte", _
  "TypeName(-CByte(5))", "Integer", "TypeName(+""5"")", "String", "-""5""", CDbl(-5), _
  "TypeName(&H80000000)", "Long", "&H80000000", CLng(-2147483647) - 1)
CheckError "x = 10 ^ 308 * 10", 6, "Double overflow in a product"

' --- Operator details that differ from what the operator table suggests: the sign binds tighter
' than ^, 0 / 0 overflows, Null in the logical operators.
Dim n
n = 3
CheckEach Array("-n ^ 2", CDbl(9), "2 * 3 ^ 2", CDbl(18), _
  "-(3 ^ 2)", CDbl(-9))
CheckError "n = 0 / 0", 6, "0 / 0 overflows"
CheckEach Array("TypeName(Null Eqv True)", "Null", "Null And False", False, "Null Or True", True)
Check 1 = 1 = True, True, "comparisons chain from the left"
' True and False are not number literals that would convert text: these compare without error.
CheckEach Array(""""" = True = False", True, """true"" <> True", True, _
  "Not ("""" <> False = False)", True)

' --- How operators convert mixed operands: text and numbers, Booleans, dates, Empty and objects.
CheckEach Array("""3"" - 1", CDbl(2), "TypeName(""3"" * 2)", "Double", _
  """ 5 "" + 1", CDbl(6), """&H10"" + 0", CDbl(16), """1e2"" * 1", CDbl(100), "True * 2", -2, _
  "TypeName(True * 2)", "Integer", "False + CLng(1)", CLng(1), "1 & True", "1True", _
  """Value: "" & 1.5", "Value: 1.5", "0.1 + 0.2 = 0.3", False, _
  "1E+20 & """"", "1E+20")
d = #1/31/2004#
CheckEach Array("d + 1", #2/1/2004#, "TypeName(d + 1)", "Date", _
  "TypeName(d - #1/1/2004#)", "Double", "d - #1/1/2004#", CDbl(30), _
  "CLng(#1/1/1900#)", CLng(2), "Empty & """"", "", _
  "TypeName(CCur(1) / 2)", "Double", "CByte(255) And CByte(15)", CByte(15), _
  "Not ""True""", False)
s = "10"
n = 9
CheckEach Array("s > n", True, "n < s", True, "s = 10", True, """10"" = n + 1", True)
CheckErrors Array("x = Null + """"", 0, "Dim a(1) : x = a + 1", 13)
Set dict = CreateObject("Scripting.Dictionary")
CheckError "x = dict + 1", 450, "a default member that needs an argument"
Set re = New RegExp
CheckError "x = re + 1", 438, "an object without a default member"

' --- A negated number is an expression, not a literal: the comparison rules treat it as any
' computed number, so against literal text it compares as text.
CheckEach Array("""abc"" = -5", False, """abc"" < -5", False, "-5 < ""abc""", True, _
  """-5"" = -5", True, """abc"" = -(5)", False)
CheckError "x = ""abc"" = 5", 13, "a literal number converts the literal text"
Select Case "abc"
  Case -5
    picked = "number"
  Case Else
    picked = "else"
End Select
Check picked, "else", "Case with a negated number"
' Two variables, a number and a text: the number is less, whatever the text says; against literal
' text the number compares as text.
Dim numVar, textVar : numVar = 9 : textVar = "10"
CheckEach Array("numVar < textVar", True, "1E+300 < textVar", False, "numVar > ""10""", True)
