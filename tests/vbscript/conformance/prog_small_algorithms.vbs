' Small classic algorithms written the way scripts write them: a Caesar cipher, palindromes,
' binary digits, Euclid's GCD, a prime sieve by trial division, and the numbers they print.
Function Caesar(s, k)
  Dim i, c, r, base
  For i = 1 To Len(s)
    c = Mid(s, i, 1)
    If c >= "a" And c <= "z" Then
      base = Asc("a")
      c = Chr((Asc(c) - base + k + 26) Mod 26 + base)
    ElseIf c >= "A" And c <= "Z" Then
      base = Asc("A")
      c = Chr((Asc(c) - base + k + 26) Mod 26 + base)
    End If
    r = r & c
  Next
  Caesar = r
End Function

Function IsPalindrome(s)
  Dim t
  t = LCase(Replace(Replace(s, " ", ""), ",", ""))
  IsPalindrome = (t = StrReverse(t))
End Function

Function ToBinary(ByVal n)
  Dim r
  If n = 0 Then ToBinary = "0" : Exit Function
  Do While n > 0
    r = CStr(n Mod 2) & r
    n = n \ 2
  Loop
  ToBinary = r
End Function

Function Gcd(a, b)
  If b = 0 Then Gcd = a Else Gcd = Gcd(b, a Mod b)
End Function

Function Primes(limit)
  Dim n, k, isPrime
  For n = 2 To limit
    isPrime = True
    For k = 2 To Int(Sqr(n))
      If n Mod k = 0 Then isPrime = False : Exit For
    Next
    If isPrime Then Primes = Primes & n & " "
  Next
End Function

CheckEach Array("Caesar(""Hello, World!"", 3)", "Khoor, Zruog!", _
  "Caesar(Caesar(""Hello, World!"", 3), -3)", "Hello, World!", "Caesar(""xyz"", 4)", "bcd", _
  "IsPalindrome(""A man, a plan, a canal, Panama"")", True, "Not IsPalindrome(""abc"")", True, _
  "ToBinary(10) & "" "" & ToBinary(255) & "" "" & ToBinary(0)", "1010 11111111 0")
Dim kept
kept = 37
CheckEach Array("ToBinary(kept)", "100101", "kept", 37, "Gcd(48, 18)", 6, _
  "48 * 18 / Gcd(48, 18)", CDbl(144), "Primes(50)", "2 3 5 7 11 13 17 19 23 29 31 37 41 43 47 ")

' The printed form of results that take all fifteen digits.
CheckEach Array("CStr(Sqr(2))", "1.4142135623731", "CStr(Exp(1))", "2.71828182845905", _
  "CStr(Tan(1))", "1.5574077246549", _
  "CStr(1 - 0.9) & "" "" & CStr(100 * 1.1) & "" "" & CStr(3 * 1.1)", "0.1 110 3.3", _
  "CStr(1.7976931348623157E+308)", "1.79769313486232E+308", "CStr(12345678 * 100)", "1234567800")
