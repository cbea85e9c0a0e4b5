' A table of what a script meets when input arrives as text, numbers, dates and flags:
' TypeName, VarType and IsNumeric row by row, then + and & over the same mixed values.
Function Row(v)
  Row = TypeName(v) & "|" & VarType(v) & "|" & IsNumeric(v) & "|" & IsEmpty(v) & "|" & IsNull(v)
End Function

Dim cases, expected, i
cases = Array(Empty, Null, 0, -1.5, "", "abc", "12", " 12 ", "1e3", "&H10", "1,000", "$5", _
              True, #1/2/2003#, CCur(3), CByte(7), CSng(2.5), "12abc", ".5", "-", "  ", "+5")
expected = Array("Empty|0|True|True|False", "Null|1|False|False|True", "Integer|2|True|False|False", _
                 "Double|5|True|False|False", "String|8|False|False|False", "String|8|False|False|False", _
                 "String|8|True|False|False", "String|8|True|False|False", "String|8|True|False|False", _
                 "String|8|True|False|False", "String|8|True|False|False", "String|8|True|False|False", _
                 "Boolean|11|True|False|False", "Date|7|False|False|False", "Currency|6|True|False|False", _
                 "Byte|17|True|False|False", "Single|4|True|False|False", "String|8|False|False|False", _
                 "String|8|True|False|False", "String|8|False|False|False", "String|8|False|False|False", _
                 "String|8|True|False|False")
For i = 0 To UBound(cases)
  Check Row(cases(i)), expected(i), "row " & i
Next

' Text that reads as a number converts the way CDbl reads it.
Dim texts, values, got
texts = Array("12", " 12 ", "1e3", "&H10", "1,000", "$5", ".5", "&O17", "+5", "5-")
values = Array(12, 12, 1000, 16, 1000, 5, 0.5, 15, 5, -5)
For i = 0 To UBound(texts)
  got = CDbl(texts(i))
  Check got, CDbl(values(i)), "CDbl(""" & texts(i) & """)"
Next

' + adds when either side is a number, joins when both are text; & always joins.
Dim s : s = "5"
Check "1" + 2, CDbl(3), "text plus a number is a Double sum"
Check "1" + "2", "12", "text plus text joins"
Check 1 & 2, "12", "& joins numbers"
Check "3" * "4", CDbl(12), "* converts both texts"
Check True + 1, 0, "True is -1"
Check TypeName(True + True), "Integer", "Booleans add as Integers"
Check Empty + 1, 1, "Empty adds as zero"
Check TypeName(Empty + Empty), "Integer", "Empty plus Empty"
Check s + 5, CDbl(10), "a text variable plus a number"
Check s & 5, "55", "a text variable joined to a number"
Check "a" & True & 1.5 & #1/1/2001#, "aTrue1.51/1/2001", "joining several types"
Check Null & "x", "x", "Null joins as nothing"
CheckTrue IsNull(Null + 1), "Null propagates through +"
CheckTrue IsNull(Null And True) And (Null Or True), "Null in logic"
Check TypeName(CByte(200) + CByte(100)), "Integer", "Byte overflow widens"
Check TypeName(CSng(1) + CLng(1)), "Double", "Single and Long give Double"
Check TypeName(CSng(1) + CInt(1)), "Single", "Single and Integer give Single"
Check TypeName(-"3"), "Double", "negating text gives a Double"
Check TypeName(Not CByte(1)), "Byte", "Not keeps a Byte"
Check Not 5, -6, "Not of a number is bitwise"
Check 3 And 5, 1, "bitwise And"
Check 3 Xor 5, 6, "bitwise Xor"

' Comparisons of mixed types.
CheckTrue "B" < "a", "text compares by code, capitals first"
CheckTrue 2 < "10", "a number literal against text compares as numbers"
CheckTrue Not ("2" < "10"), "text against text compares as text"
CheckTrue 1 = "1", "a number literal equals its text"
CheckTrue Empty = 0 And Empty = "", "Empty equals zero and the empty text"
CheckTrue IsNull(Null = Null), "Null compared with anything is Null"
CheckTrue CBool("true") And Not CBool("False") And CBool(0.1), "CBool of text and fractions"
CheckError "Dim b : b = CBool(""maybe"")", 13, "CBool of other text"
CheckError "Dim b : b = ""abc"" + 1", 13, "text that is no number in a sum"
CheckError "Dim b : b = CByte(-1)", 6, "CByte below zero"
CheckError "Dim b : b = Array(1) + 1", 13, "an array in a sum"
CheckError "Dim b : b = CStr(Null)", 94, "CStr of Null"

' The logical operators read Empty as a Long 0; arithmetic reads it as an Integer 0.
Dim unset
Check TypeName(unset And 1) & " " & TypeName(Not unset) & " " & TypeName(unset Xor CInt(5)), _
      "Long Long Long", "Empty in a logical operator"
Check Not unset, CLng(-1), "Not of Empty"
Check unset Imp Null, CLng(-1), "Empty Imp Null"
Check TypeName(unset \ CInt(1)) & " " & TypeName(unset + CInt(1)), "Integer Integer", "Empty in arithmetic"
Check CByte(170) Imp Null, CByte(85), "a Byte Imp Null is the Byte's complement"
CheckTrue IsNull(CInt(170) Imp Null), "an Integer Imp Null is Null"
