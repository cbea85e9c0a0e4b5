' The Err object after each kind of failure, Err.Raise and how handlers pass between procedures.
Function Fails(code)
  On Error Resume Next
  Execute code
  Fails = Err.Number & "|" & Err.Description & "|" & Err.Source
End Function
Check Fails("x = CInt(""a"")"), "13|Type mismatch|Microsoft VBScript runtime error", "type mismatch"
Check Fails("x = CInt(99999)"), "6|Overflow|Microsoft VBScript runtime error", "overflow"
Check Fails("Dim a(1) : a(2) = 0"), "9|Subscript out of range|Microsoft VBScript runtime error", "subscript"
Check Fails("x = 5 \ 0"), "11|Division by zero|Microsoft VBScript runtime error", "division by zero"
Check Fails("x = Left(""a"", -1)"), "5|Invalid procedure call or argument|Microsoft VBScript runtime error", "invalid argument"
Check Fails("x = CLng(Null)"), "94|Invalid use of Null|Microsoft VBScript runtime error", "invalid use of Null"
Check Fails("Dim o : o.Name = 1"), "424|Object required|Microsoft VBScript runtime error", "object required"
Check Fails("Set o = CreateObject(""Scripting.Dictionary"") : o.Add 1, 1 : o.Add 1, 2"), "457|This key is already associated with an element of this collection|Microsoft VBScript runtime error", "duplicate key"
CheckError "Set o = CreateObject(""Scripting.Dictionary"") : o.Bogus", 438, "unknown member"
CheckError "Set o = CreateObject(""Bogus.Thing"")", 429, "cannot create"
CheckError "Dim o : Set o = Nothing : o.Name = 1", 424, "member of Nothing"
Check Fails("x = Array(1, 2)(0, 1)"), "9|Subscript out of range|Microsoft VBScript runtime error", "too many indices"
Check Fails("Err.Raise 6"), "6|Overflow|Microsoft VBScript runtime error", "Err.Raise of a standard number takes its text"
Check Fails("Err.Raise 5, ""Mine"""), "5|Invalid procedure call or argument|Mine", "own source, standard text"
Check Fails("Err.Raise 5, , ""Own text"""), "5|Own text|Microsoft VBScript runtime error", "own text, standard source"
Check Fails("Err.Raise vbObjectError + 513, ""App"", ""Custom"""), "-2147220991|Custom|App", "custom number"
Check Fails("x = 1"), "0||", "no error"
CheckError "Err.Raise 0", 5, "Err.Raise 0 is itself invalid"
' Handlers and the Err object across statements.
On Error Resume Next
x = 1 / 0
y = 2
Check Err.Number, CLng(11), "a later good statement leaves Err alone"
On Error Resume Next
Check Err.Number, CLng(0), "On Error Resume Next clears Err"
x = 1 / 0
Err.Clear
Check Err.Number, CLng(0), "Err.Clear"
Err.Clear
Err.Description = "only text"
Check Err.Number, CLng(0), "setting the text alone keeps number 0"
Err.Clear
On Error GoTo 0
Function Inner()
  Inner = "start"
  Dim z : z = 1 / 0
  Inner = "never"
End Function
Function Outer()
  On Error Resume Next
  Dim r
  r = Inner()
  Outer = TypeName(r) & "|" & Err.Number
End Function
Check Outer(), "Empty|11", "the callee stops at its error; the caller's assignment is skipped"
trace2 = Empty
Sub Deep3()
  Err.Raise 1001, "Deep", "from deep"
End Sub
Sub Deep2()
  Deep3
  trace2 = "deep2 went on"
End Sub
Function Deep1()
  On Error Resume Next
  Deep2
  Deep1 = Err.Number & "|" & Err.Description & "|" & Err.Source
End Function
Check Deep1(), "1001|from deep|Deep", "an error passes up two levels"
Check TypeName(trace2), "Empty", "the middle procedure stops too"
Function ResumeInLoop()
  On Error Resume Next
  Dim i, n
  For i = 1 To 3
    n = n + 10 / (i - 2)
  Next
  ResumeInLoop = n
End Function
Check ResumeInLoop(), CDbl(0), "Resume Next inside a loop carries on with the loop"
Function AfterGoto0()
  On Error Resume Next
  On Error GoTo 0
  Dim z : z = 1 / 0
  AfterGoto0 = "went on"
End Function
CheckError "x = AfterGoto0()", 11, "On Error GoTo 0 turns the handler off"
