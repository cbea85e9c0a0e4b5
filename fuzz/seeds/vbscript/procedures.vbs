' Sub and Function calls, ByRef (the default) and ByVal, results and recursion.
Sub AddOne(n)
  n = n + 1
End Sub
Sub AddOneByVal(ByVal n)
  n = n + 1
End Sub
Function Twice(n)
  Twice = n * 2
End Function
Function NoResult()
End Function
Function Fact(n)
  If n <= 1 Then Fact = 1 Else Fact = n * Fact(n - 1)
End Function
Function UsesOwnName(n)
  UsesOwnName = n
  UsesOwnName = UsesOwnName + 1
End Function

a = 1
AddOne a
Check a, 2, "ByRef by default"
Call AddOne(a)
Check a, 3, "Call passes ByRef too"
AddOne (a)
Check a, 3, "parentheses pass by value"
AddOneByVal a
Check a, 3, "ByVal"
AddOne a + 0
Check a, 3, "an expression is a temporary"
Dim arr(2)
arr(1) = 10
AddOne arr(1)
Check arr(1), 11, "array elements are passed by reference"
Check Twice(21), 42, "Function result"
Check TypeName(NoResult()), "Empty", "no result is Empty"
Check Fact(10), CLng(3628800), "recursion"
Check UsesOwnName(5), 6, "the function's name is its result variable"
Check Twice(Twice(2)), 8, "nested calls"
' Locals and globals.
g = "global"
Sub Shadow()
  Dim g
  g = "local"
End Sub
Shadow
Check g, "global", "a Dim'd local hides the global"
Sub SetsGlobal()
  g = "changed"
End Sub
SetsGlobal
Check g, "changed", "an undeclared name that is global assigns the global"
Sub ImplicitLocal()
  brandNewName = 5
End Sub
ImplicitLocal
Check IsEmpty(brandNewName), True, "an undeclared unknown name becomes a local"
Function Counter()
  Static_ = Static_ + 1
  Counter = Static_
End Function
Check Counter(), 1, "locals start Empty each call"
Check Counter(), 1, "locals start Empty each call again"
' Exit.
Function EarlyExit(n)
  EarlyExit = "start"
  If n > 0 Then Exit Function
  EarlyExit = "end"
End Function
Check EarlyExit(1), "start", "Exit Function keeps the result"
Check EarlyExit(0), "end", "no exit"
Sub ExitSub(ByRef out)
  out = 1
  Exit Sub
  out = 2
End Sub
ExitSub z
Check z, 1, "Exit Sub"
' Argument errors.
CheckError "Twice 1, 2", 450, "too many arguments"
CheckError "x = Twice()", 450, "too few arguments"
CheckError "x = NotDefinedAnywhere(1)", 13, "calling an unknown name"
' Definitions later in the code are callable earlier.
Check Later(), "later", "forward reference"
Function Later()
  Later = "later"
End Function
' A later definition replaces the earlier one.
ExecuteGlobal "Function Later() : Later = ""replaced"" : End Function"
Check Later(), "replaced", "redefinition"
' GetRef.
Set f = GetRef("Twice")
Check f(5), 10, "GetRef calls the function"
Dim dyn()
ReDim dyn(2)
Sub Grow(x)
  ReDim Preserve dyn(5)
  x = 1
End Sub
CheckError "Grow dyn(0)", 10, "the array is locked while an element is passed"
Check UBound(dyn), CLng(2), "the locked array kept its size"
Sub SetSeven(x)
  x = 7
End Sub
SetSeven dyn(0)
ReDim Preserve dyn(4)
Check dyn(0), 7, "the lock is released after the call"
Set dict = CreateObject("Scripting.Dictionary")
dict("k") = 1
AddOne dict("k")
Check dict("k"), 1, "an object's default member is passed by value"
