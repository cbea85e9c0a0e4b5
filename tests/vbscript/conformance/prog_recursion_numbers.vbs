' Recursive algorithms (factorial, Fibonacci, Towers of Hanoi, permutations) and how their
' results print: the type each step lands in and VBScript's number-to-text rules.
Function Fact(n)
  If n <= 1 Then Fact = 1 Else Fact = n * Fact(n - 1)
End Function

Function FactCur(n)
  If n <= 1 Then FactCur = CCur(1) Else FactCur = n * FactCur(n - 1)
End Function

Function Fib(n)
  If n < 2 Then Fib = n Else Fib = Fib(n - 1) + Fib(n - 2)
End Function

Dim moves, trace
Sub Hanoi(n, from, via, dest)
  If n = 0 Then Exit Sub
  Hanoi n - 1, from, dest, via
  moves = moves + 1
  If n = 3 Then trace = trace & from & dest & " "
  Hanoi n - 1, via, from, dest
End Sub

Dim perms
Sub Permute(prefix, rest)
  Dim k
  If Len(rest) = 0 Then perms = perms & prefix & " " : Exit Sub
  For k = 1 To Len(rest)
    Permute prefix & Mid(rest, k, 1), Left(rest, k - 1) & Mid(rest, k + 1)
  Next
End Sub

' Integer arithmetic widens to Long and then to Double as the product grows.
Check TypeName(Fact(7)), "Integer", "7! fits an Integer"
Check TypeName(Fact(8)), "Long", "8! widens to Long"
Check TypeName(Fact(13)), "Double", "13! widens to Double"
Check CStr(Fact(10)), "3628800", "10!"
Check CStr(Fact(15)), "1307674368000", "15! prints in full"
Check CStr(Fact(20)), "2.43290200817664E+18", "20! prints in exponent form"
Check CStr(Fact(25)), "1.5511210043331E+25", "trailing zeros of the mantissa are dropped"
Check CStr(Fact(170)), "7.25741561530799E+306", "170! is near the top of Double"
Check CStr(FactCur(15)), "1307674368000", "15! in Currency"
Check TypeName(FactCur(15)), "Currency", "Currency stays Currency when multiplied by Integers"
CheckError "Dim big : big = FactCur(18)", 6, "18! does not fit Currency"
Check Fib(20), 6765, "Fibonacci"

moves = 0 : trace = ""
Hanoi 5, "A", "B", "C"
Check moves, 31, "Hanoi of five discs"
Check trace, "AC CB BA AC ", "moves of the third disc"
perms = ""
Permute "", "abc"
Check perms, "abc acb bac bca cab cba ", "permutations in order"

' How numbers become text.
Check CStr(1E+15), "1E+15", "a power of ten prints in exponent form"
Check CStr(123456789012345), "123456789012345", "fifteen digits print in full"
Check CStr(1234567890123456), "1.23456789012346E+15", "sixteen digits round to fifteen"
Check CStr(1E-5), "1E-05", "small exponents have two digits"
Check CStr(0.0001), "0.0001", "four decimal places print plainly"
Check CStr(0.1 + 0.2), "0.3", "fifteen significant digits hide the binary error"
CheckTrue 0.1 + 0.2 <> 0.3, "but the values still differ"
Check CStr(1 / 3), "0.333333333333333", "a third"
Check CStr(2 / 3), "0.666666666666667", "two thirds round"
Check CStr(CSng(1 / 3)), "0.3333333", "a Single prints seven digits"
Check CStr(CSng(16777217)), "1.677722E+07", "a large Single"
Check CStr(CDbl(CSng(0.1))), "0.100000001490116", "a Single widened to Double shows its error"
Check CStr(-1E+100), "-1E+100", "a negative exponent form"
Check CStr(100 / 4), "25", "whole Doubles print without a point"
Check CStr(Atn(1) * 4), "3.14159265358979", "pi"

' Hex and Oct of negatives show the two's complement of the Integer or Long.
Check Hex(-1), "FFFF", "Hex of an Integer -1"
Check Hex(-255), "FF01", "Hex of a negative Integer"
Check Hex(CInt(-32768)), "8000", "Hex of the smallest Integer"
Check Hex(-32768), "FFFF8000", "the literal 32768 is a Long before it is negated"
Check Hex(-32769), "FFFF7FFF", "Hex of a Long"
Check Hex(65536), "10000", "Hex of a Long"
Check Oct(-1), "177777", "Oct of an Integer -1"
Check Hex(-2147483648), "80000000", "Hex of the smallest Long"

' Overflow moves Integer and Long results up, never wraps.
Check TypeName(32767 + 1), "Long", "Integer overflow gives a Long"
Check TypeName(2147483647 + 1), "Double", "Long overflow gives a Double"
Check 100000 * 100000, 10000000000, "Long times Long"
Check -10 \ 3, -3, "integer division truncates"
Check -10 Mod 3, -1, "Mod takes the sign of the dividend"
Check 5.5 Mod 2, CLng(0), "Mod rounds its operands half to even first"
Check CLng(2.5) + CLng(3.5), CLng(6), "CLng rounds half to even"
Check Int(-3.7) & " " & Fix(-3.7), "-4 -3", "Int and Fix of negatives"
CheckError "Dim p : p = (-8) ^ (1 / 3)", 5, "a fractional power of a negative"
CheckError "Dim z : z = 0 / 0", 6, "zero divided by zero"
CheckError "Dim z : z = 1 / 0", 11, "division by zero"
CheckError "Dim z : z = 0 \ 0", 11, "integer division of zero by zero"
