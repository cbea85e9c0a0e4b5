Dim x, y
x = 1 + 2 * 3
WScript.Echo "x =", x, TypeName(x)
Function Fib(n)
  If n < 2 Then
    Fib = n
  Else
    Fib = Fib(n - 1) + Fib(n - 2)
  End If
End Function
WScript.Echo Fib(20)
s = ""
For i = 1 To 5
  s = s & i
Next
WScript.Echo s
Sub Inc(a)
  a = a + 1
End Sub
z = 5
Inc z
WScript.Echo z
Class Foo
  Public Bar
  Private Sub Class_Initialize
    Bar = 42
  End Sub
  Private Sub Class_Terminate
    WScript.Echo "bye"
  End Sub
  Public Function Twice(v)
    Twice = v * 2 + Bar
  End Function
End Class
Set f = New Foo
WScript.Echo f.Bar, f.Twice(4)
Set f = Nothing
WScript.Echo "after"
Dim arr(3)
arr(1) = "one"
WScript.Echo arr(1), UBound(arr)
On Error Resume Next
y = 1 / 0
WScript.Echo Err.Number, Err.Description
On Error GoTo 0
WScript.Echo Eval("1 + 2"), -2 ^ 2, 2 ^ 3 ^ 2
Execute "q = 7"
WScript.Echo q
Select Case 3
  Case 1, 2: WScript.Echo "a"
  Case 3: WScript.Echo "three"
  Case Else: WScript.Echo "else"
End Select
Do While z > 0
  z = z - 2
Loop
WScript.Echo z
For Each e In Array(1, "b", 3)
  WScript.Echo e
Next
WScript.Echo 32767 + 1, TypeName(32767 + 1), TypeName(2147483647 + 1)
x = 1 / 0
