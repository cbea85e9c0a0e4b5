' Where On Error Resume Next goes on after an error in the header of a compound statement:
' always at the next statement in the text, which for If, ElseIf, Do While and For is the first
' statement inside the block, and for Loop While the statement after the loop.
Function Fails()
  Err.Raise 1000
End Function

Sub Headers()
  Dim x, y
  On Error Resume Next

  x = False
  If Fails() Then
    x = True
  Else
    x = "else"
  End If
  Check x, True, "error in an If condition enters the Then block"
  Check Err.Number, CLng(1000), "and Err keeps the error"

  Err.Clear
  x = False
  If Fails() Then x = True
  Check x, True, "same for a single-line If"

  Err.Clear
  x = False
  If False Then
    x = "then"
  ElseIf Fails() Then
    x = True
  Else
    x = "else"
  End If
  Check x, True, "error in an ElseIf condition enters its block"

  Err.Clear
  x = False
  Do While Fails()
    x = True
    Exit Do
  Loop
  Check x, True, "error in a Do While condition enters the loop"

  Err.Clear
  x = 0
  Do
    x = x + 1
  Loop While Fails()
  Check x, 1, "error in a Loop While condition leaves the loop"

  Err.Clear
  x = 0
  While x < 2
    x = x + 1
    Fails
  Wend
  Check x, 2, "errors inside a While body"

  Err.Clear
  x = 6 : y = 0
  For x = Fails() To 100
    y = y + 1
  Next
  Check y, 1, "a For whose start failed runs its body once"
  Check x, 6, "and leaves the counter alone"
  Check Err.Number, CLng(92), "Next then finds the loop not initialized"

  Err.Clear
  x = 2 : y = 0
  For Each x In Fails()
    y = y + 1
  Next
  Check y, 1, "a For Each whose group failed runs its body once"
  Check x, 2, "and leaves the variable alone"

  Err.Clear
  x = "none"
  Select Case Fails()
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
    Case Fails()
      x = "failed case"
    Case Else
      x = "else"
  End Select
  Check x, "failed case", "error in a Case expression runs that Case"
End Sub
Headers

' A procedure with its own handler keeps the error in Err for its caller; one without a
' handler passes the error up, and the caller's handler resumes after the call.
Dim trace
Sub Inner(keepGoing)
  If keepGoing Then On Error Resume Next
  trace = 1
  Fails
  trace = 2
End Sub
Sub Outer(keepGoing)
  On Error Resume Next
  Inner keepGoing
  Check Err.Number, CLng(1000), "Err after the call (" & keepGoing & ")"
End Sub
Outer True
Check trace, 2, "the callee resumed after its own error"
Outer False
Check trace, 1, "the callee stopped at the error"

' Err is cleared by On Error Resume Next / GoTo 0 and by Err.Clear, not by a successful call.
Sub Handled()
  On Error Resume Next
  Err.Raise 1001
End Sub
Sub CallsHandled()
  On Error Resume Next
  Handled
  Check Err.Number, CLng(1001), "an error handled inside a callee is still in Err after it returns"
  On Error GoTo 0
  Check Err.Number, CLng(0), "On Error GoTo 0 clears Err"
End Sub
CallsHandled

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
