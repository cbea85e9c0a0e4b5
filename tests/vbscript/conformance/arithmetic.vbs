Option Explicit
' Arithmetic, comparisons, loops and calls on procedure locals and on module variables, the two
' places where the engine takes its fast paths.

' --- Arithmetic, comparisons, loops and calls on module variables, the code of a page body, where
' the engine reads and writes the variables' slots directly: results and types, values that
' are no plain numbers and errors must come out as they do everywhere else. A variable updated
' from itself (widening, text, Empty, overflow, becoming a function) is module_updates.vbs'.
Dim a, b, s, i, t, e, o, big, lim, w, acc, sc
Const K = 7
Class Holder
  Public v
  Public Default Property Get Value()
    Value = v
  End Property
End Class

' The loop of a page body: the sum leaves Long for Double, the counter stays Long.
s = 0
For i = 1 To 70000
  s = s + i * 2 - 1
Next
CheckEach Array("s", 4900000000, "i", CLng(70001))
s = 0
For i = 2147480000 To 2147483647 Step 1000
  s = s + i * 2 - 1
Next
CheckEach Array("i", 2147484000, "s", 17179851996)

' Both operands module variables, the left one the variable stored to, and each operator.
t = 10 : b = 3 : a = 2147483647
t = t + a * b
Check t, 6442450951, "t + a * b"
t = t - b * 3
Check t, 6442450942, "t - b * 3"
t = 5 : t = t - b - 1
Check t, 1, "t - b - 1"
t = 2 : a = 2 : t = t * a * b
Check t, 12, "t * a * b"
t = 1 : t = t + t * t
Check t, 2, "t + t * t"
a = 5 : b = 7 : t = a - b * 2
Check t, -9, "a - b * 2"
a = 16000 : b = 2 : t = 100 : t = t + a * b - 1
Check t, 32099, "Integers that fit stay Integer through the whole statement"
t = 1000 : t = t + a * b + 1000
Check t, CLng(34000), "and widen to Long where they stop fitting"
e = t - a * b - 1
Check e, CLng(1999), "the result stored to another variable"

' Values that are no Integer, Long or Double take the general rules.
a = "5" : t = 1 : t = t + a * 2
Check t, CDbl(11), "text in a product"
a = True : t = a + 1
Check t, 0, "True plus 1"
a = CByte(200) : t = a + 100
Check t, 300, "Byte widens to Integer"
a = CCur(1.5) : t = 0 : t = t + a * 2
Check t, CCur(3), "Currency"
a = #1/1/2020# : t = a + 1
Check t, #1/2/2020#, "Date plus a day"
a = Null : t = a + 1
CheckTrue IsNull(t), "Null propagates"
t = K + 1
Check t, 8, "a constant"
t = 0 : t = t + K * 2
Check t, 14, "a constant in a product"
Set o = New Holder : o.v = 41
t = o + 1
Check t, 42, "an object's default value"
t = 1 : t = t + o * 2
Check t, 83, "an object in a product"
t = o
Check t, 41, "Let of an object takes its default value"

' Comparisons that jump, with numbers, text and a module variable on the right.
a = "10" : b = 9
CheckEach Array("Not (a < b)", True, "b < a", True)
lim = 3 : w = 0
Do While w < lim
  w = w + 1
Loop
Check w, 3, "Do While against a module variable"
Do Until w >= lim * 2
  w = w + 1
Loop
Check w, 6, "Do Until"

' Errors: an overflow leaves the variable as it was, and Resume Next goes on after it.
On Error Resume Next
big = 1.7E308 : t = 0 : t = t + big * 10
Check Err.Number, CLng(6), "overflow inside a sum"
Check t, 0, "the sum keeps its value"
Err.Clear
On Error GoTo 0

' Code added later sees the same variables, and its loops take the same paths.
ExecuteGlobal "acc = 0 : For i = 1 To 10 : acc = acc + i * 2 - 1 : Next"
Check acc, 100, "a loop in ExecuteGlobal"
For i = 1 To 50
  ExecuteGlobal "acc = acc + 1"
Next
Check acc, 150, "ExecuteGlobal adding to a module variable"
Set sc = CreateObject("MSScriptControl.ScriptControl")
sc.Language = "VBScript"
sc.AddCode "Dim s, i : s = 0 : For i = 1 To 10 : s = s + i * 2 - 1 : Next"
sc.AddCode "For i = 1 To 10 : s = s + i * 2 - 1 : Next"
Check sc.Eval("s"), 200, "two AddCode calls on one variable"
Check sc.Eval("i"), 11, "their counter"
On Error Resume Next
sc.AddCode "Option Explicit" & vbCrLf & "Dim q, r : r = 1 : q = q + r * 2 : If q < nope Then q = 0"
Check Err.Number, CLng(500), "Option Explicit on the right of a comparison"
Check sc.Eval("q"), 2, "the statement before the error ran"
Err.Clear
sc.AddCode "Option Explicit" & vbCrLf & "zz = zz + 1"
Check Err.Number, CLng(500), "Option Explicit on the stored variable"
Err.Clear
' The time limit stops a loop on module variables, Resume Next or not.
sc.Timeout = 100
sc.AddCode "On Error Resume Next : Dim h : h = 0 : Do While h >= 0 : h = h + 1 : Loop"
Check Err.Number, -2147467260, "time limit"
On Error GoTo 0

' Module variables passed to procedures: by reference they change, by value they don't.
Sub Bump(x)
  x = x + 1
End Sub
Sub BumpCopy(ByVal x)
  x = x + 1
End Sub
a = 5 : Bump a
Check a, 6, "ByRef module variable"
BumpCopy a
Check a, 6, "ByVal module variable"
For i = 1 To 3
  Bump a
Next
Check a, 9, "ByRef in a loop"

' Elements of a module array: whole, fractional and text indexes, bounds, and ReDim and Erase
' between the reads.
Dim list(), fixed(2)
ReDim list(4)
For i = 0 To 4
  list(i) = i * 10
Next
t = 0
For i = 0 To 4
  t = t + list(i)
Next
CheckEach Array("t", 100, "list(1.6)", 20, "list(""3"")", 30)
ReDim Preserve list(5)
list(5) = 50
Check list(5), 50, "after ReDim Preserve"
fixed(1) = "x"
Erase fixed
Check fixed(1), Empty, "Erase of a fixed array empties its elements"
On Error Resume Next
t = list(6)
Check Err.Number, CLng(9), "past the upper bound"
Err.Clear
t = list(-1)
Check Err.Number, CLng(9), "below the lower bound"
Err.Clear
Erase list
t = list(0)
Check Err.Number, CLng(9), "an erased dynamic array has no elements"
On Error GoTo 0

' --- Arithmetic, comparisons and calls on the locals of procedures, where the engine takes its
' quickest paths: the result types, widening on overflow and every other operand type must
' come out as they do at global level.

Sub WideningOnLocals()
  Dim i, l, d, m
  i = 100
  i = i + 1
  Check i, 101, "Integer + Integer stays Integer"
  i = 32767
  i = i + 1
  Check i, CLng(32768), "Integer overflow in a store widens to Long"
  i = CInt(-32768)
  i = i - 1
  Check i, CLng(-32769), "Integer underflow widens to Long"
  i = 200
  i = i * 200
  Check i, CLng(40000), "Integer product widens to Long"
  l = 2147483647
  l = l + 1
  Check l, 2147483648, "Long overflow widens to Double"
  l = CLng(-2147483647)
  l = l - 2
  Check l, -2147483649, "Long underflow widens to Double"
  l = 65536
  m = l * l
  Check m, 4294967296, "Long product widens to Double"
  d = 1.5
  d = d + 1
  Check d, 2.5, "Double + Integer"
  m = i + 1
  Check m, CLng(40001), "load, add and store into another local"
  m = 5
  m = m * m - m
  Check m, 20, "a local on both sides"
End Sub
WideningOnLocals

Sub OtherTypesOnLocals()
  Dim s, e, n, b, y, t, c, dt
  s = "5"
  s = s + 1
  Check s, CDbl(6), "String + Integer is Double"
  s = "a"
  s = s + "b"
  Check s, "ab", "String + String joins"
  e = e + 1
  Check e, 1, "Empty + Integer"
  n = Null
  n = n + 1
  Check n, Null, "Null + Integer"
  b = True
  b = b + 1
  Check b, 0, "Boolean + Integer"
  y = CByte(255)
  y = y + 1
  Check y, 256, "Byte overflow widens to Integer"
  c = CCur(1.5)
  c = c * 2
  Check c, CCur(3), "Currency * Integer"
  dt = #1/1/2000#
  dt = dt + 1
  Check dt, #1/2/2000#, "Date + Integer"
  t = "x"
  t = t + ("y" & "z")
  Check t, "xyz", "the local stays the left operand"
  t = 10
  t = t - (3 * 2)
  Check t, 4, "subtraction keeps its order"
  t = 10
  t = t - t * 2
  Check t, -10, "the same local on both sides of -"
End Sub
OtherTypesOnLocals

Sub Bump_2(x)
  x = x + 1
End Sub

Sub ByRefOperands()
  Dim v
  v = 32767
  Bump_2 v
  Check v, CLng(32768), "ByRef parameter incremented and widened"
  v = "7"
  Bump_2 v
  Check v, CDbl(8), "ByRef String parameter"
End Sub
ByRefOperands

Function Classify(n)
  If n < 2 Then
    Classify = "small"
  Else
    Classify = "large"
  End If
End Function

Sub ComparisonsAndBranches()
  Check Classify(1), "small", "Integer below"
  Check Classify(2), "large", "Integer at the bound"
  Check Classify(CLng(-5)), "small", "Long"
  Check Classify(1.999), "small", "Double below"
  Check Classify(2.001), "large", "Double above"
  Check Classify(Empty), "small", "Empty counts as zero"
  Check Classify(Null), "large", "Null is not True: the Else branch runs"
  Dim i, hits
  i = 0
  hits = 0
  Do While i < 10
    i = i + 1
    If i <> 5 Then hits = hits + 1
  Loop
  Check hits, 9, "loop condition and inner test on locals"
End Sub
ComparisonsAndBranches

Sub OverflowOnLocals()
  Dim d, after
  d = 1.7E+308
  On Error Resume Next
  d = d * 10
  Check Err.Number, CLng(6), "Double overflow raises Overflow"
  Err.Clear
  after = 1
  On Error GoTo 0
  Check d, 1.7E+308, "the failed store leaves the local as it was"
  Check after, 1, "execution goes on at the next statement"
End Sub
OverflowOnLocals

Sub LongLoop()
  Dim i, s
  s = 0
  For i = 1 To 50000
    s = s + i * 2 - 1
  Next
  Check s, 2500000000, "sum of odd numbers, widened to Double on the way"
End Sub
LongLoop

Function Fib(n)
  If n < 2 Then
    Fib = n
  Else
    Fib = Fib(n - 1) + Fib(n - 2)
  End If
End Function

Function Repeat(n)
  Repeat = String(n, "x")
End Function

Function NoResult()
End Function

Class Tracked
  Private Sub Class_Terminate()
    terminated = terminated + 1
  End Sub
End Class
Dim terminated
terminated = 0

Function MakeTracked()
  Set MakeTracked = New Tracked
End Function

Function Failing(x)
  Dim local
  local = "kept"
  Failing = 1 / x
End Function

Sub CallsAndResults()
  Check Fib(15), 610, "recursive Function assigning its own name"
  Check Repeat(5), "xxxxx", "String result"
  Check IsEmpty(NoResult()), True, "a Function that assigns nothing returns Empty"
  Call Repeat(3)
  Repeat 3
  Dim o
  Set o = MakeTracked()
  Check terminated, 0, "returned object is alive"
  Set o = Nothing
  Check terminated, 1, "last reference released at once"
  MakeTracked
  Check terminated, 2, "a discarded object result ends at once"
  Dim r
  On Error Resume Next
  r = Failing(0)
  Check Err.Number, CLng(11), "error in the callee reaches the caller"
  On Error GoTo 0
  Check IsEmpty(r), True, "nothing stored after the failed call"
  Check Failing(4), 0.25, "the same procedure works afterwards"
End Sub
CallsAndResults

Sub CountersOnLocals()
  Dim i, n, seen
  For i = 1 To 3
  Next
  Check i, 4, "Integer counter ends past the bound as Integer"
  For i = CLng(1) To 3
  Next
  Check i, CLng(4), "Long counter stays Long"
  seen = ""
  For i = 10 To 1 Step -3
    seen = seen & i & " "
  Next
  Check seen, "10 7 4 1 ", "negative step"
  Check i, -2, "counter after a negative step"
  n = 0
  For i = 1 To 2 Step 0.5
    n = n + 1
  Next
  Check n, 3, "Double step"
  Check i, 2.5, "Double counter"
  n = 0
  For i = 1 To 10000
    n = n + 1
  Next
  Check n, 10000, "iterations counted"
  For i = 2147483640 To 2147483647
  Next
  Check i, 2147483648, "Long counter widens past the last value"
End Sub
CountersOnLocals

Sub LoopTestsOnLocals()
  Dim i, n
  i = 0
  Do
    i = i + 2
  Loop Until i >= 9
  Check i, 10, "Loop Until jumps back while the test fails"
  i = 0
  n = 0
  While i < 5
    i = i + 1
    n = n + i
  Wend
  Check n, 15, "While ... Wend"
  i = 3
  Do While i > 0.5
    i = i / 2
  Loop
  Check i, 0.375, "Double against a Double constant"
  n = 0
  For i = 1 To 20
    If i Mod 2 = 0 Then
    ElseIf i > 15 Then
      n = n + 100
    ElseIf i <= 3 Then
      n = n + 1
    End If
  Next
  Check n, 202, "ElseIf chain on a counter"
End Sub
LoopTestsOnLocals

Sub ArrayReadsOnLocals()
  Dim a(4), b(), i, total, r
  For i = 0 To 4
    a(i) = i * 10
  Next
  a(4) = "four"
  total = 0
  For i = 0 To 3
    total = total + a(i)
  Next
  Check total, 60, "elements read by an Integer counter"
  r = a(CLng(4))
  Check r, "four", "String element by a Long index"
  r = a("2")
  Check r, 20, "String index"
  r = a(1.6)
  Check r, 20, "Double index rounds"
  ReDim b(2)
  b(1) = 3
  r = a(b(1))
  ReDim Preserve b(5)
  Check r, 30, "index taken from another array's element"
  Check UBound(b), CLng(5), "that array is not left locked"
  On Error Resume Next
  r = a(5)
  Check Err.Number, CLng(9), "past the upper bound"
  Err.Clear
  r = a(-1)
  Check Err.Number, CLng(9), "below the lower bound"
  On Error GoTo 0
End Sub
ArrayReadsOnLocals

' A module variable changes type, and lets go of an object at once.
Dim gs, go
gs = 2500000000
gs = "text"
Check gs, "text", "a number replaced by a string"
Set go = New Tracked
gs = 1
Set go = Nothing
Check terminated, 3, "module variable released at once"

Function Twice(v)
  Twice = v + v
End Function

Sub CopiesAndSumsOnLocals()
  Dim a, b, c, big
  a = 7
  b = a
  Check b, 7, "a number copied between locals"
  a = "x"
  b = a
  a = "y"
  Check b, "x", "a string copied keeps its own value"
  b = 5
  a = 1.5
  b = a
  Check b, 1.5, "a string replaced by a copied number"
  a = 3
  b = 4
  c = Twice(a) + Twice(b)
  Check c, 14, "sum of two call results stored"
  c = Twice("ab") + Twice("c")
  Check c, "ababcc", "sum of two strings joins them"
  big = 1E+308
  c = "kept"
  On Error Resume Next
  c = Twice(big) + Twice(big)
  Check Err.Number, CLng(6), "overflow of a stored sum"
  On Error GoTo 0
  Check c, "kept", "the failed sum leaves the local alone"
End Sub
CopiesAndSumsOnLocals
