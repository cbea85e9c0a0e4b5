' Argument passing, return values and recursion.
Sub AddOne(n)
  n = n + 1
End Sub
Sub AddOneByVal(ByVal n)
  n = n + 1
End Sub
x = 1
AddOne x
Check x, 2, "ByRef is the default"
AddOneByVal x
Check x, 2, "ByVal leaves the caller's variable"
AddOne (x)
Check x, 2, "parentheses pass a copy"
Call AddOne(x)
Check x, 3, "Call passes ByRef"
Call AddOne((x))
Check x, 3, "Call with doubled parentheses passes a copy"
AddOne x + 0
Check x, 3, "an expression is a copy"
Dim arr(1)
arr(0) = 10
AddOne arr(0)
Check arr(0), 11, "an array element passes ByRef"
Function Twice(ByRef n)
  n = n * 2
  Twice = n
End Function
y = 4
z = Twice(y)
Check y, 8, "function argument ByRef"
Check z, 8, "and its result"
Function Nothing1()
End Function
Check TypeName(Nothing1()), "Empty", "a function that sets nothing returns Empty"
Function EarlyExit(v)
  EarlyExit = "before"
  If v Then Exit Function
  EarlyExit = "after"
End Function
Check EarlyExit(True), "before", "Exit Function keeps the value so far"
Check EarlyExit(False), "after", "no exit"
Function Factorial(n)
  If n <= 1 Then
    Factorial = 1
  Else
    Factorial = n * Factorial(n - 1)
  End If
End Function
Check Factorial(10), CLng(3628800), "recursion"
Function Fib(n)
  If n < 2 Then Fib = n : Exit Function
  Fib = Fib(n - 1) + Fib(n - 2)
End Function
Check Fib(15), 610, "double recursion"
Function Accumulate()
  Accumulate = 1
  Accumulate = Accumulate + 1
End Function
Check Accumulate(), 2, "the function name reads back as a variable"
Function GetDict()
  Set GetDict = CreateObject("Scripting.Dictionary")
  GetDict.Add "k", "v"
End Function
Check GetDict()("k"), "v", "function returning an object"
Check TypeName(GetDict), "Dictionary", "object result type"
counter = 0
Sub Bump()
  counter = counter + 1
End Sub
Bump
Bump()
Call Bump
Check counter, 3, "three ways to call a Sub"
Sub Swap(a, b)
  Dim t
  t = a : a = b : b = t
End Sub
p = "first" : q = "second"
Swap p, q
Check p & q, "secondfirst", "two ByRef arguments"
Sub SetLocal()
  Dim counter
  counter = 100
End Sub
SetLocal
Check counter, 3, "Dim inside a procedure hides the global"
Sub MakeImplicit()
  implicitVar = 5
End Sub
MakeImplicit
Check TypeName(implicitVar), "Empty", "an undeclared name in a procedure is local"
Function WithExitSub()
  WithExitSub = 1
End Function
CheckError "Sub Two(a, b) : End Sub : Two 1", 450, "too few arguments"
CheckError "Sub Three(a) : End Sub : Three 1, 2", 450, "too many arguments"
CheckError "x = NoSuchFunction(1)", 13, "call of an unknown name"
Sub ChangeObj(o)
  Set o = Nothing
End Sub
Set obj = CreateObject("Scripting.Dictionary")
ChangeObj obj
Check TypeName(obj), "Nothing", "object reference ByRef"
Set obj = CreateObject("Scripting.Dictionary")
Sub ChangeObjVal(ByVal o)
  o.Add "a", 1
  Set o = Nothing
End Sub
ChangeObjVal obj
Check obj.Count, CLng(1), "ByVal object still shares the object"
