' On Error Resume Next, On Error GoTo 0 and the Err object.
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

' An error in an If condition under Resume Next continues inside the If.
On Error Resume Next
r = "none"
If 1 / 0 = 1 Then
  r = "inside"
End If
Check r, "inside", "Resume Next goes to the next statement, inside the If"
On Error GoTo 0

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
CheckError "Dim u : u.x = 1", 424, "member of a non-object"
CheckError "Set o = CreateObject(""Scripting.Dictionary"") : o.NoSuchMember", 438, "unknown member"
CheckError "x = Array(1)(5)", 9, "subscript out of range"
CheckError "x = CLng(""x"")", 13, "type mismatch"
CheckError "x = Sqr(-1)", 5, "invalid procedure call"
CheckError "x = CInt(40000)", 6, "overflow"
CheckError "Set o = CreateObject(""No.Such.Class"")", 429, "cannot create object"
CheckError "Option Explicit" & vbCrLf & "undeclaredName = 1", 500, "variable is undefined"
CheckError "x = 1 +", 1023, "a compile error in ExecuteGlobal"
CheckError "Const c1 = 1" & vbCrLf & "c1 = 2", 1002, "assigning a constant"
' A loop whose header fails under Resume Next.
On Error Resume Next
n = 0
For Each v In 5
  n = n + 1
Next
CheckTrue n <= 1, "a failed For Each header does not loop"
On Error GoTo 0
' A failed For header under Resume Next goes on with the body, once: Next then finds no loop to
' count (92, For loop not initialized) and goes on after the loop.
Dim forRuns, forErr
For Each forHeader In Array("For i = 1 To ""x""", "For i = 1 To 3 Step ""x""", _
                            "For i = Null To 3", "For i = 1 To 1 / 0")
  forRuns = 0
  ExecuteGlobal "On Error Resume Next" & vbCrLf & forHeader & vbCrLf & _
                "forRuns = forRuns + 1 : If forRuns > 5 Then Exit For" & vbCrLf & _
                "Next" & vbCrLf & "forErr = Err.Number"
  CheckTrue forRuns = 1, "a failed For header runs the body once: " & forHeader
  CheckTrue forErr = 92, "and its Next finds the loop not initialized: " & forHeader
Next
On Error Resume Next
forRuns = 0
For i = 1 To "x"
  forRuns = forRuns + 1
  If forRuns > 5 Then Exit For
Next
Check Err.Number, CLng(92), "For with a text bound"
On Error GoTo 0
CheckTrue forRuns = 1, "For with a text bound runs its body once"
' The body after a failed header still works as normal once the loop is left.
forRuns = 0
For i = 1 To 2
  forRuns = forRuns + 1
Next
Check forRuns, 2, "a later For loop counts normally"

' Err.Raise: VBScript's own numbers stop at 65535; COM failure codes it knows come back under
' its own numbers (with its own texts), the rest, such as vbObjectError + n, stay as raised.
CheckError "Err.Raise &H10000&", 5, "a positive number above 65535"
CheckError "Err.Raise &H8007000E&", 7, "E_OUTOFMEMORY"
CheckError "Err.Raise &H80070057&", 5, "E_INVALIDARG"
CheckError "Err.Raise &H800A000D&", 13, "a control-facility code"
CheckError "Err.Raise vbObjectError + 7", vbObjectError + 7, "vbObjectError + n"
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
