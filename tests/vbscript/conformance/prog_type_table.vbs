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
CheckEach Array("True + 1", 0, "Empty + 1", 1, "s + 5", CDbl(10), "s & 5", "55", _
  """a"" & True & 1.5 & #1/1/2001#", "aTrue1.51/1/2001", "Null & ""x""", "x", _
  "IsNull(Null + 1)", True, "IsNull(Null And True) And (Null Or True)", True, "1 = ""1""", True)

' The logical operators read Empty as a Long 0; arithmetic reads it as an Integer 0.
Dim unset
Check TypeName(unset And 1) & " " & TypeName(Not unset) & " " & TypeName(unset Xor CInt(5)), _
      "Long Long Long", "Empty in a logical operator"
CheckEach Array("Not unset", CLng(-1), "unset Imp Null", CLng(-1), _
  "TypeName(unset \ CInt(1)) & "" "" & TypeName(unset + CInt(1))", "Integer Integer", _
  "CByte(170) Imp Null", CByte(85), "IsNull(CInt(170) Imp Null)", True)
