' The page-body form: the call and its result live at script level.
Function Fib(n)
  If n < 2 Then
    Fib = n
  Else
    Fib = Fib(n - 1) + Fib(n - 2)
  End If
End Function
Dim r
r = Fib(35)
WScript.Echo r
