' Sub and Function calls: the forms of a call, ByRef and ByVal, results and recursion.

' --- Sub and Function calls, ByRef (the default) and ByVal, results and recursion.
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
CheckEach Array("arr(1)", 11, "Twice(21)", 42, "TypeName(NoResult())", "Empty", _
  "Fact(10)", CLng(3628800), "UsesOwnName(5)", 6, "Twice(Twice(2))", 8)
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
CheckEach Array("Counter()", 1, "Counter()", 1)
' Exit.
Function EarlyExit(n)
  EarlyExit = "start"
  If n > 0 Then Exit Function
  EarlyExit = "end"
End Function
CheckEach Array("EarlyExit(1)", "start", "EarlyExit(0)", "end")
Sub ExitSub(ByRef out)
  out = 1
  Exit Sub
  out = 2
End Sub
ExitSub z
Check z, 1, "Exit Sub"
' Argument errors.
CheckErrors Array("Twice 1, 2", 450, "x = Twice()", 450, "x = NotDefinedAnywhere(1)", 13)
' Definitions later in the code are callable earlier.
Check Later(), "later", "forward reference"
Function Later()
  Later = "later"
End Function
' A later definition replaces the earlier one.
ExecuteGlobal "Function Later() : Later = ""replaced"" : End Function"
Check Later(), "replaced", "redefinition"
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

' --- Argument passing, return values and recursion.
Sub AddOne_2(n)
  n = n + 1
End Sub
x = 1
Call AddOne_2((x))
Check x, 1, "Call with doubled parentheses passes a copy"
Function Twice_2(ByRef n)
  n = n * 2
  Twice_2 = n
End Function
y = 4
z = Twice_2(y)
CheckEach Array("y", 8, "z", 8)
Function GetDict()
  Set GetDict = CreateObject("Scripting.Dictionary")
  GetDict.Add "k", "v"
End Function
CheckEach Array("GetDict()(""k"")", "v", "TypeName(GetDict)", "Dictionary")
calls = 0
Sub Bump()
  calls = calls + 1
End Sub
Bump
Bump()
Call Bump
Check calls, 3, "three ways to call a Sub"
Sub Swap(a, b)
  Dim t
  t = a : a = b : b = t
End Sub
p = "first" : q = "second"
Swap p, q
Check p & q, "secondfirst", "two ByRef arguments"
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

' --- The forms of a call: with and without Call, parentheses around the name, around the only
' argument (a copy) or around the first of several, and calls through GetRef.
Dim x, y, log

Function SetFirst(a)
  a(0) = "set"
  SetFirst = 1
End Function
Sub Bump_3(n)
  n = n + 1
End Sub

x = Array(0)
Call (((SetFirst))) (x)
Check x(0), "set", "Call with the name in parentheses passes by reference"
x = Array(0)
Call (SetFirst) ((x))
Check x(0), 0, "and doubled parentheses pass a copy"
x = Array(0)
y = (SetFirst)(x)
CheckEach Array("y", 1, "x(0)", "set")
y = ((x))(0)
Check y, "set", "indexing a parenthesised array name"

' After the name, a parenthesised first argument may go on with members and more arguments.
Class Box
  Public v
  Public Function Self()
    Set Self = Me
  End Function
End Class
Sub Note(a, b)
  log = a & "," & b
End Sub
Set x = New Box
x.v = "inner"
Note (x).Self().v, "second"
Check log, "inner,second", "first argument starting with a parenthesis"
Note (1 + 2) * 2, 3
Check log, "6,3", "parenthesised part of the first argument"
Class Shower
  Public Sub Show(a, b)
    log = a & ";" & b
  End Sub
End Class
Dim holder(0)
Set holder(0) = New Shower
holder(0).Show (2), 3
Check log, "2;3", "a method of an element called with a parenthesised first argument"

' GetRef with parameters, called with and without Call.
Function Join3(a, b, c)
  Join3 = a & b & c
End Function
Set y = GetRef("Join3")
Check y(1, 2, 3), "123", "a GetRef reference takes the arguments"
Set y = GetRef("Bump_3")
x = 5
y x
Check x, 6, "a GetRef Sub passes by reference"

' New RegExp is the built-in object even when the script has a class of that name.
Class RegExp
  Public Property Get Global()
    Global = "script class"
  End Property
End Class
Set x = New RegExp
Check x.Global, False, "New RegExp"

' --- Calls of what cannot be called: empty parentheses read nothing.
Class PublicField
  Public V
End Class
Set withField = New PublicField
withField.V = 3
Check withField.V, 3, "a public variable read"
CheckErrors Array("x = withField.V()", 5, "withField.V()", 5, "Dim n : n = 5 : x = n()", 13, _
  "Dim s : s = ""s"" : x = s()", 13, "Dim e : x = e()", 13, "Dim a : a = Array(1) : x = a()", 9, _
  "Dim n : n = 5 : n", 13, "NeverDefinedAnywhere", 13)
