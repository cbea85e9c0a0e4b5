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
CheckEach Array("TypeName(Fact(7))", "Integer", "TypeName(Fact(8))", "Long", _
  "TypeName(Fact(13))", "Double", "CStr(Fact(10))", "3628800", "CStr(Fact(15))", "1307674368000", _
  "CStr(Fact(20))", "2.43290200817664E+18", "CStr(Fact(25))", "1.5511210043331E+25", _
  "CStr(Fact(170))", "7.25741561530799E+306", "CStr(FactCur(15))", "1307674368000", _
  "TypeName(FactCur(15))", "Currency")
CheckError "Dim big : big = FactCur(18)", 6, "18! does not fit Currency"
Check Fib(20), 6765, "Fibonacci"

moves = 0 : trace = ""
Hanoi 5, "A", "B", "C"
CheckEach Array("moves", 31, "trace", "AC CB BA AC ")
perms = ""
Permute "", "abc"
Check perms, "abc acb bac bca cab cba ", "permutations in order"

' How Singles and the results of the trigonometric functions become text.
CheckEach Array("CStr(CSng(1 / 3))", "0.3333333", "CStr(CSng(16777217))", "1.677722E+07", _
  "CStr(CDbl(CSng(0.1)))", "0.100000001490116", "CStr(Atn(1) * 4)", "3.14159265358979")

' Hex of negatives shows the two's complement of the Integer or Long.
CheckEach Array("Hex(-255)", "FF01", "Hex(CInt(-32768))", "8000", "Hex(-2147483648)", "80000000")
