' Arithmetic, comparisons, loops and calls on module variables, the code of a page body, where
' the engine reads and writes the variables' slots directly: results and types, values that
' are no plain numbers, names that change meaning and errors must come out as they do
' everywhere else.
Option Explicit
Dim a, b, s, i, t, e, o, big, n2, lim, w, acc, sc
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
Check s, 4900000000, "sum past the Long range"
Check i, CLng(70001), "counter after the loop"
s = 0
For i = 2147480000 To 2147483647 Step 1000
  s = s + i * 2 - 1
Next
Check i, 2147484000, "counter past the Long range becomes Double"
Check s, 17179851996, "sum of Long products that overflow"
a = 32767 : a = a + 1
Check a, CLng(32768), "Integer overflow widens to Long"
a = 2147483647 : a = a + 1
Check a, 2147483648, "Long overflow widens to Double"

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
a = "5" : a = a + 1
Check a, CDbl(6), "text plus a number"
a = "5" : t = 1 : t = t + a * 2
Check t, CDbl(11), "text in a product"
e = Empty : e = e + 1
Check e, 1, "Empty plus a number"
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
CheckTrue Not (a < b), "text is never less than a number"
CheckTrue b < a, "a number is less than text"
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
big = 1.7E308 : big = big * 10
Check Err.Number, CLng(6), "overflow of a Double"
Check big, 1.7E308, "the variable keeps its value"
Err.Clear
big = 1.7E308 : t = 0 : t = t + big * 10
Check Err.Number, CLng(6), "overflow inside a sum"
Check t, 0, "the sum keeps its value"
Err.Clear
On Error GoTo 0

' A name that stops being a variable in the middle of a loop: from then on it is the function.
On Error Resume Next
For i = 1 To 3
  n2 = n2 + 1
  If i = 1 Then ExecuteGlobal "Function n2() : n2 = 100 : End Function"
  If i = 3 Then Check Err.Number, CLng(501), "assigning to what became a function"
  Err.Clear
Next
On Error GoTo 0
Check n2, 100, "the name calls the new function"

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
Check t, 100, "sum of the elements"
Check list(1.6), 20, "a fractional index rounds"
Check list("3"), 30, "a text index converts"
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
