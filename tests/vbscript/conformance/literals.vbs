' Literal forms and the types VBScript gives them.
Check 1, CInt(1), "small whole number is Integer"
Check TypeName(32767), "Integer", "32767"
Check TypeName(32768), "Long", "32768"
Check TypeName(-32768), "Long", "negated 32768 stays Long"
Check TypeName(2147483647), "Long", "largest Long"
Check TypeName(2147483648), "Double", "beyond Long"
Check TypeName(1.5), "Double", "decimal"
Check TypeName(1E3), "Double", "exponent"
Check 1E3, CDbl(1000), "exponent value"
Check .5, 0.5, "leading point"
Check &HFF, 255, "hex"
Check &HFFFF, -1, "four hex digits are an Integer"
Check TypeName(&HFFFF), "Integer", "hex Integer"
Check &HFFFF&, CLng(65535), "trailing & asks for Long"
Check TypeName(&H10000), "Long", "five hex digits"
Check &HFFFFFFFF, -1, "eight hex digits are -1, small enough for an Integer"
Check &O17, 15, "octal"
Check &17, 15, "octal without O"
Check "a""b", "a" & Chr(34) & "b", "doubled quote"
Check Len(""""), CLng(1), "a lone quote"
Check TypeName(#1/2/2003#), "Date", "date literal"
Check Year(#1/2/2003#), 2003, "date literal year"
Check Month(#1/2/2003#), 1, "month/day order"
Check TypeName(True), "Boolean", "True"
Check CInt(True), -1, "True is -1"
Check TypeName(Empty), "Empty", "Empty"
Check TypeName(Null), "Null", "Null"
Check TypeName(Nothing), "Nothing", "Nothing"
Rem a comment with Rem
x = 1 ' a trailing comment
Check x, 1, "after comments"
y = 1 + _
    2
Check y, 3, "line continuation"
a = 1: b = 2: c = a + b
Check c, 3, "colon separators"
Dim [my var]
[my var] = 5
Check [my var], 5, "bracketed name"
