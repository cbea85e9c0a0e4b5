' On Error Resume Next, On Error GoTo 0, the Err object and where execution goes on after an error.

' --- On Error Resume Next, On Error GoTo 0 and the Err object.
On Error Resume Next
x = 1 / 0
Check Err.Number, CLng(11), "Err.Number after a failure"
Check Err.Description, "Division by zero", "Err.Description"
Check Err.Source, "Microsoft VBScript runtime error", "Err.Source"
Err.Clear
Check Err.Number, CLng(0), "Err.Clear"
Check Err.Description, "", "Clear empties the description"
y = "before"
y = CInt("abc")
Check y, "before", "a failed assignment leaves the variable"
Err.Clear
Err.Raise 5
Check Err.Number, CLng(5), "Err.Raise with a standard number"
Check Err.Description, "Invalid procedure call or argument", "its standard text"
Err.Raise vbObjectError + 1, "MySource", "My description"
Check Err.Number, vbObjectError + 1, "Err.Raise with own number"
Check Err.Source, "MySource", "own source"
Check Err.Description, "My description", "own description"
Err.Raise 1234
Check Err.Description, "My description", "a number without text keeps the text Err holds"
Err.Clear
Err.Raise 1234
Check Err.Description, "Unknown runtime error", "after Clear it gets the generic text"
Err.Number = 0
On Error GoTo 0
Check Err.Number, CLng(0), "On Error GoTo 0 clears"


' Errors in called procedures.
Function Fails()
  Fails = "partial"
  x = 1 / 0
  Fails = "complete"
End Function
Function Guarded()
  On Error Resume Next
  Guarded = Fails()
  Guarded = Guarded & "|" & Err.Number
End Function
Check Guarded(), "|11", "the caller's Resume Next catches the callee's error"
Function Tolerant()
  On Error Resume Next
  x = 1 / 0
  Tolerant = "went on"
End Function
Check Tolerant(), "went on", "Resume Next inside the procedure"
Sub Raiser()
  Err.Raise 9
End Sub
On Error Resume Next
Raiser
Check Err.Number, CLng(9), "a raised error reaches the caller"
On Error GoTo 0
CheckError "Raiser", 9, "and ends the statement without a handler"
' Err is an object with a default member.
On Error Resume Next
Err.Raise 13
n = Err
Check n, CLng(13), "Err's default member is Number"
On Error GoTo 0
' Run-time error numbers.
CheckErrors Array("Dim u : u.x = 1", 424, _
  "Set o = CreateObject(""Scripting.Dictionary"") : o.NoSuchMember", 438, "x = Array(1)(5)", 9, _
  "x = CLng(""x"")", 13, "x = Sqr(-1)", 5, "x = CInt(40000)", 6, _
  "Set o = CreateObject(""No.Such.Class"")", 429, _
  "Option Explicit" & vbCrLf & "undeclaredName = 1", 500, "x = 1 +", 1023, _
  "Const c1 = 1" & vbCrLf & "c1 = 2", 1002)
' A failed For header under Resume Next goes on with the body, once: Next then finds no loop to
' count (92, For loop not initialized) and goes on after the loop.
Dim forRuns, forErr
For Each forHeader In Array("For i = 1 To ""x""", "For i = 1 To 3 Step ""x""", _
                            "For i = Null To 3", "For i = 1 To 1 / 0")
  forRuns = 0
  ExecuteGlobal "On Error Resume Next" & vbCrLf & forHeader & vbCrLf & _
                "forRuns = forRuns + 1 : If forRuns > 5 Then Exit For" & vbCrLf & _
                "Next" & vbCrLf & "forErr = Err.Number"
  CheckEach Array("forRuns = 1", True, "forErr = 92", True)
Next
' The body after a failed header still works as normal once the loop is left.
forRuns = 0
For i = 1 To 2
  forRuns = forRuns + 1
Next
Check forRuns, 2, "a later For loop counts normally"

' Err.Raise: VBScript's own numbers stop at 65535; COM failure codes it knows come back under
' its own numbers (with its own texts), the rest, such as vbObjectError + n, stay as raised.
CheckErrors Array("Err.Raise &H10000&", 5, "Err.Raise &H8007000E&", 7, _
  "Err.Raise &H80070057&", 5, "Err.Raise &H800A000D&", 13, _
  "Err.Raise vbObjectError + 7", vbObjectError + 7)
On Error Resume Next
Err.Raise &H80020005&
Check Err.Description, "Type mismatch", "a mapped code takes the text of its number"
Err.Clear
Err.Raise 65535
Check Err.Number, CLng(65535), "65535 is still VBScript's own"
On Error GoTo 0

' A handled error reads the plain text; only the report of an uncaught one names what failed.
On Error Resume Next
Set namedDict = CreateObject("Scripting.Dictionary")
namedDict.NoSuchMember
Check Err.Description, "Object doesn't support this property or method", "a missing member"
Err.Clear
NoSuchProcedure 1
Check Err.Description, "Type mismatch", "an unknown procedure"
Err.Clear
Err.Raise 13, , "Type mismatch: 'mine'"
Check Err.Description, "Type mismatch: 'mine'", "a raised text stays as raised"
On Error GoTo 0

' --- The Err object after each kind of failure, Err.Raise and how handlers pass between procedures.
Function Fails_2(code)
  On Error Resume Next
  Execute code
  Fails_2 = Err.Number & "|" & Err.Description & "|" & Err.Source
End Function
CheckEach Array("Fails_2(""x = CInt(""""a"""")"")", "13|Type mismatch|Microsoft VBScript runtime error", _
  "Fails_2(""x = CInt(99999)"")", "6|Overflow|Microsoft VBScript runtime error", _
  "Fails_2(""Dim a(1) : a(2) = 0"")", "9|Subscript out of range|Microsoft VBScript runtime error", _
  "Fails_2(""x = 5 \ 0"")", "11|Division by zero|Microsoft VBScript runtime error", _
  "Fails_2(""x = Left(""""a"""", -1)"")", "5|Invalid procedure call or argument|Microsoft VBScript runtime error", _
  "Fails_2(""x = CLng(Null)"")", "94|Invalid use of Null|Microsoft VBScript runtime error", _
  "Fails_2(""Dim o : o.Name = 1"")", "424|Object required|Microsoft VBScript runtime error", _
  "Fails_2(""Set o = CreateObject(""""Scripting.Dictionary"""") : o.Add 1, 1 : o.Add 1, 2"")", "457|This key is already associated with an element of this collection|Microsoft VBScript runtime error")
CheckError "Dim o : Set o = Nothing : o.Name = 1", 424, "a member of Nothing"
Check Fails_2("x = Array(1, 2)(0, 1)"), "9|Subscript out of range|Microsoft VBScript runtime error", "too many indices"
Check Fails_2("Err.Raise 5, ""Mine"""), "5|Invalid procedure call or argument|Mine", "own source, standard text"
Check Fails_2("Err.Raise 5, , ""Own text"""), "5|Own text|Microsoft VBScript runtime error", "own text, standard source"
Check Fails_2("x = 1"), "0||", "no error"
CheckError "Err.Raise 0", 5, "Err.Raise 0 is itself invalid"
' Handlers and the Err object across statements.
On Error Resume Next
x = 1 / 0
y = 2
Check Err.Number, CLng(11), "a later good statement leaves Err alone"
On Error Resume Next
Check Err.Number, CLng(0), "On Error Resume Next clears Err"
Err.Description = "only text"
Check Err.Number, CLng(0), "setting the text alone keeps number 0"
Err.Clear
On Error GoTo 0
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
CheckEach Array("TextOf(70)", "Permission denied", "TextOf(76)", "Path not found", _
  "TextOf(53)", "File not found", "TextOf(58)", "File already exists", _
  "TextOf(62)", "Input past end of file", _
  "TextOf(10)", "This array is fixed or temporarily locked", "TextOf(28)", "Out of stack space", _
  "TextOf(35)", "Sub or Function not defined", "TextOf(91)", "Object variable not set", _
  "TextOf(424)", "Object required", _
  "TextOf(438)", "Object doesn't support this property or method", _
  "TextOf(449)", "Argument not optional", _
  "TextOf(450)", "Wrong number of arguments or invalid property assignment", _
  "TextOf(500)", "Variable is undefined", "TextOf(501)", "Illegal assignment", _
  "TextOf(32811)", "Element not found", "TextOf(5017)", "Syntax error in regular expression")
' Compile errors met through ExecuteGlobal.
CheckErrors Array("x = (1", 1006, "x = [open", 1007, "For i = 1 To 2 : Next i", 1025, _
  "Class K2 : Public Default Function A() : End Function : Public Default Function B() : End Function : End Class", 1052, _
  "Class K3 : Private Sub Class_Initialize(a) : End Sub : End Class", 1053, _
  "With 5 : .x = 1 : End With", 424, "Erase neverAssigned", 13)
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

' --- Where On Error Resume Next goes on after an error in the header of a compound statement:
' always at the next statement in the text, which for If, ElseIf, Do While and For is the first
' statement inside the block, and for Loop While the statement after the loop.
Function Fails_3()
  Err.Raise 1000
End Function

Sub Headers()
  Dim x, y
  On Error Resume Next

  x = False
  If Fails_3() Then
    x = True
  Else
    x = "else"
  End If
  Check x, True, "error in an If condition enters the Then block"
  Check Err.Number, CLng(1000), "and Err keeps the error"

  Err.Clear
  x = False
  If Fails_3() Then x = True
  Check x, True, "same for a single-line If"

  Err.Clear
  x = False
  If False Then
    x = "then"
  ElseIf Fails_3() Then
    x = True
  Else
    x = "else"
  End If
  Check x, True, "error in an ElseIf condition enters its block"

  Err.Clear
  x = False
  Do While Fails_3()
    x = True
    Exit Do
  Loop
  Check x, True, "error in a Do While condition enters the loop"

  Err.Clear
  x = 0
  Do
    x = x + 1
  Loop While Fails_3()
  Check x, 1, "error in a Loop While condition leaves the loop"

  Err.Clear
  x = 0
  While x < 2
    x = x + 1
    Fails_3
  Wend
  Check x, 2, "errors inside a While body"

  Err.Clear
  x = 6 : y = 0
  For x = Fails_3() To 100
    y = y + 1
  Next
  Check y, 1, "a For whose start failed runs its body once"
  Check x, 6, "and leaves the counter alone"
  Check Err.Number, CLng(92), "Next then finds the loop not initialized"

  Err.Clear
  x = 2 : y = 0
  For Each x In Fails_3()
    y = y + 1
  Next
  Check y, 1, "a For Each whose group failed runs its body once"
  Check x, 2, "and leaves the variable alone"

  Err.Clear
  x = "none"
  Select Case Fails_3()
    Case True
      x = "true"
    Case Empty
      x = "empty"
    Case Else
      x = "else"
  End Select
  Check x, "none", "error in the Select expression runs no Case"
  Check Err.Number, CLng(1000), "Select error kept"

  Err.Clear
  x = "none"
  Select Case False
    Case True
      x = "true"
    Case Fails_3()
      x = "failed case"
    Case Else
      x = "else"
  End Select
  Check x, "failed case", "error in a Case expression runs that Case"
End Sub
Headers

' Nothing where a value is wanted is error 91.
Sub NothingValues()
  Dim x
  On Error Resume Next
  x = 1
  x = Nothing
  Check Err.Number, CLng(91), "x = Nothing without Set"
  Check x, 1, "and x is unchanged"
  Err.Clear
  x = Not Nothing
  Check Err.Number, CLng(91), "Not Nothing"
  Err.Clear
  x = "" & Nothing
  Check Err.Number, CLng(91), "concatenating Nothing"
End Sub
NothingValues

' --- The error a bad operand raises: the conversion or lookup that fails decides the number.
Class NoDefault
  Public A
End Class
Class DefaultNeedsArgs
  Public Default Function F(i)
    F = i
  End Function
End Class
Class DefaultArray
  Public Default Function F()
    F = Array(1, 2, 3)
  End Function
End Class
CheckErrors Array("x = UBound(Nothing)", 91, "x = LBound(Nothing)", 91, _
  "x = UBound(New NoDefault)", 438, "x = UBound(New DefaultNeedsArgs)", 450)
Check UBound(New DefaultArray), CLng(2), "UBound of a default member returning an array"
CheckErrors Array("x = Escape(Null)", 94, "x = Unescape(Null)", 94, _
  "x = Filter(Null, ""a"")", 94, "x = DateValue(Null)", 94, "x = TimeValue(Null)", 94, _
  "x = DateValue(44000)", 13)
Check DateValue(#3/4/2026 10:00#), #3/4/2026#, "DateValue of a date"
CheckErrors Array("x = ChrB(256)", 6, "x = ChrB(-1)", 6, _
  "Dim held(1) : Set held(0) = Nothing : held(0)(0) = 1", 13, _
  "Option Explicit" & vbLf & "Set o = New NoSuchClassHere", 500)

' --- For Each over a call that failed under On Error Resume Next still starts, on nothing.
Function FailsForEach()
  Err.Raise 5
End Function
On Error Resume Next
For Each item In FailsForEach()
Next
Check Err.Number, CLng(451), "the loop reports that it has no collection"
On Error GoTo 0
