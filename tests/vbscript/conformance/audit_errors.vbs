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
' Standard texts for raised numbers.
Function TextOf(n)
  On Error Resume Next
  Err.Raise n
  TextOf = Err.Description
End Function
Check TextOf(70), "Permission denied", "70"
Check TextOf(76), "Path not found", "76"
Check TextOf(53), "File not found", "53"
Check TextOf(58), "File already exists", "58"
Check TextOf(62), "Input past end of file", "62"
Check TextOf(10), "This array is fixed or temporarily locked", "10"
Check TextOf(28), "Out of stack space", "28"
Check TextOf(35), "Sub or Function not defined", "35"
Check TextOf(91), "Object variable not set", "91"
Check TextOf(424), "Object required", "424"
Check TextOf(438), "Object doesn't support this property or method", "438"
Check TextOf(449), "Argument not optional", "449"
Check TextOf(450), "Wrong number of arguments or invalid property assignment", "450"
Check TextOf(500), "Variable is undefined", "500"
Check TextOf(501), "Illegal assignment", "501"
Check TextOf(32811), "Element not found", "32811"
Check TextOf(5017), "Syntax error in regular expression", "5017"
' Compile errors met through ExecuteGlobal.
CheckError "x = 1 Then", 1025, "expected end of statement"
CheckError "x = ""open", 1033, "unterminated string"
CheckError "x = (1", 1006, "expected )"
CheckError "x = [open", 1007, "expected ]"
CheckError "Dim Dim", 1010, "expected identifier"
CheckError "Exit For", 1039, "Exit outside its block"
CheckError "For i = 1 To 2 : Next i", 1025, "Next takes no counter"
CheckError "Sub S8(a) : End Sub : S8(1, 2)", 1044, "parentheses around several Sub arguments"
CheckError "Class K2 : Public Default Function A() : End Function : Public Default Function B() : End Function : End Class", 1052, "two defaults"
CheckError "Class K3 : Private Sub Class_Initialize(a) : End Sub : End Class", 1053, "Initialize with arguments"
CheckError "Set x = New NoSuchClass", 506, "class not defined"
CheckError "With 5 : .x = 1 : End With", 424, "With on a non-object"
CheckError "Erase neverAssigned", 13, "Erase of Empty"
CheckError "Dim fixedArr(2) : ReDim fixedArr(3)", 10, "ReDim of a fixed array"
' Stack overflow is caught like any other error.
Function Forever(n)
  Forever = Forever(n + 1)
End Function
CheckError "x = Forever(0)", 28, "endless recursion"

' Err.Raise takes what it is not given from what Err still holds; only after Err.Clear (or
' with nothing held) do the standard source and text stand in. Help file and context go with
' the next error the engine raises itself.
Sub RaiseKeepsWhatErrHolds()
  On Error Resume Next
  Err.Clear
  Err.Raise 1000, "Ledger", "Balance is off", "ledger.chm", 42
  Err.Raise 9
  Check Err.Number, CLng(9), "second Raise sets its number"
  Check Err.Source, "Ledger", "source kept from the first Raise"
  Check Err.Description, "Balance is off", "text kept from the first Raise"
  Check Err.HelpFile, "ledger.chm", "help file kept"
  Check Err.HelpContext, CLng(42), "help context kept"
  Err.Clear
  Err.Raise 2000, "Shelf"
  Err.Raise 9
  Check Err.Source, "Shelf", "source of the last Raise"
  Check Err.Description, "Unknown runtime error", "text the first Raise filled in"
  Err.Raise 1000, "Ledger", "Balance is off", "ledger.chm", 42
  Dim q : q = 1 \ 0
  Check Err.Number, CLng(11), "a runtime error replaces it"
  Check Err.Source, "Microsoft VBScript runtime error", "with the engine's source"
  Check Err.HelpFile, "", "and no help file"
  Check Err.HelpContext, CLng(0), "and no help context"
End Sub
RaiseKeepsWhatErrHolds
