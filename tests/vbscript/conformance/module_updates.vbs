' Statements of a page body that update module variables in one go, `t = t + a * 2 - 1` and
' its kin, and For loops counting in a module variable: every operator in every place, stores
' that cannot take the short way, and counters that change under the loop.
Dim t, a, b, e, i, o, sc, terminated, c
terminated = 0
Class Counted
  Private Sub Class_Terminate()
    terminated = terminated + 1
  End Sub
End Class

' Each operator as the inner, the joining and the final one, with a module variable inside.
t = 4 : a = 3 : t = t * (a - 1) + 1
Check t, 9, "t * (a - 1) + 1"
t = 1 : a = 2 : t = (t + a * 2) * 3
Check t, 15, "(t + a * 2) * 3"
t = 1 : a = 3 : b = 2 : t = t + a * b - 1
Check t, 6, "t + a * b - 1, the inner operand a module variable"
t = 10 : a = 2 : e = t - (a + 1) * 2
Check e, 4, "the result stored to another variable"
t = 1 : a = 2
CheckTrue t + a * 2 > 4, "the result compared instead of stored"

' Stores that take the general way: a variable holding text or an object, a constant.
t = 1 : a = 3 : e = "text" : e = t + a * 2 - 1
Check e, 6, "text replaced by the number"
Set e = New Counted
e = t + a * 2 - 1
CheckEach Array("e", 6, "terminated", 1)
On Error Resume Next
vbLong = vbLong + a * 2 - 1
Check Err.Number, CLng(501), "a constant is no variable"
Check vbLong, 3, "and keeps its value"
Err.Clear

' An overflow anywhere in the statement stores nothing.
t = 1E+308 : a = 3 : t = t + a * 1 + 1E+308
CheckEach Array("Err.Number", CLng(6), "t", 1E+308)
Err.Clear
e = 5 : t = 1E+308 : e = t + a * 1E+308 - 1
CheckEach Array("Err.Number", CLng(6), "e", 5)
Err.Clear
On Error GoTo 0

' A variable updated from itself, `c = c + k`: it widens, takes text and Empty, stays Null, and
' keeps its value on overflow; a constant refuses, and a variable that became a function
' in the middle of a loop is called from then on.
c = 32766 : c = c + 1 : c = c + 1
Check c, CLng(32768), "Integer to Long"
c = 2147483647 : c = c - -1
Check c, 2147483648, "Long to Double"
c = "5" : c = c + 1
Check c, CDbl(6), "text"
c = Empty : c = c + 1
Check c, 1, "Empty"
c = Null : c = c + 1
CheckTrue IsNull(c), "Null"
On Error Resume Next
c = 1E+308 : c = c * 10
CheckEach Array("Err.Number", CLng(6), "c", 1E+308)
Err.Clear
vbLong = vbLong + 1
CheckEach Array("Err.Number", CLng(501), "vbLong", 3)
Err.Clear
c = 0
For i = 1 To 3
  c = c + 1
  If i = 2 Then ExecuteGlobal "Function c() : c = 9 : End Function"
Next
CheckEach Array("Err.Number", CLng(501), "c", 9)
Err.Clear
On Error GoTo 0

' Counters: Integer while they fit, then Long; stepping down; changed inside the loop.
For i = 1 To 10 : Next
Check i, 11, "an Integer counter"
For i = 32760 To 32770 : Next
Check i, CLng(32771), "widened to Long"
For i = 10 To 1 Step -3 : Next
Check i, -2, "stepping down"
For i = 1 To 5
  If i = 2 Then i = "4"
Next
Check i, CDbl(6), "text put in the counter"
For i = 1 To 5
  If i = 2 Then i = 3.5
Next
Check i, 5.5, "a Double put in the counter"
For undeclared = 1 To 3 : Next
Check undeclared, 4, "a counter never declared"
On Error Resume Next
For i = 1 To 3
  If i = 2 Then ExecuteGlobal "Function i() : i = 9 : End Function"
Next
Check Err.Number, CLng(501), "a counter that became a function"
Err.Clear
On Error GoTo 0

' A constant of code run earlier is read where a variable would be, but never written: in
' every statement form, as a loop's end and as a counter.
ExecuteGlobal "Const K5 = 5"
ExecuteGlobal "t = 1 : t = t + K5 * 2 - 1 : e = t + K5 : a = K5 : b = 0 : For o = 1 To K5 : b = b + K5 : Next"
CheckEach Array("t", 10, "e", 15, "a", 5, "b", 25, "o", 6)
CheckErrors Array("K5 = K5 + 1", 501, "K5 = K5 * 2 - 1", 501, "For K5 = 1 To 2 : Next", 501, _
  "t = 1 : K5 = t + a * 2", 501)
Check K5, 5, "the constant after each try"

' A variable passed ByRef whose name becomes a function or a constant during the call: the
' parameter goes on as a copy of its own, Empty, and the new meaning of the name stays.
Dim byref1, byref2
Sub RedefineUnder(p, code)
  ExecuteGlobal code
  Check VarType(p), 0, "the parameter reads Empty: " & code
  p = p & "written"
  Check p, "written", "the parameter after: " & code
End Sub
byref1 = 1 : byref2 = 2
RedefineUnder byref1, "Function byref1() : byref1 = ""fn"" : End Function"
RedefineUnder byref2, "Const byref2 = 7"
CheckEach Array("byref1", "fn", "byref2", 7)

' The time limit stops a For loop counting in a module variable.
Set sc = CreateObject("MSScriptControl.ScriptControl")
sc.Language = "VBScript"
sc.Timeout = 100
On Error Resume Next
sc.AddCode "Dim fi : For fi = 1 To 2000000000 : Next"
Check Err.Number, -2147467260, "time limit"
On Error GoTo 0
