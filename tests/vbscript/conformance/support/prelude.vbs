' Assertions shared by the VBScript test scripts: the conformance scripts (run by quorvex-vbs
' with this file as prelude) and the ADO scripts (run on an engine of their own, which read
' Failures at the end). A failed check is added to Failures and, under quorvex-vbs, printed as
' a line starting with "FAIL:" (which fails the test); the script goes on, so one run shows
' every failure.
Dim qvFailures, Failures, qvWholeNumbersAlike
qvFailures = 0
Failures = ""
' The ADO scripts set this: Integer, Long and Byte then count as one kind in Check, since
' the integer columns of different databases come back in different widths.
qvWholeNumbersAlike = False

Function qvShow(v)
  If IsArray(v) Then
    qvShow = "(array)"
  ElseIf IsObject(v) Then
    qvShow = "(object " & TypeName(v) & ")"
  ElseIf IsNull(v) Then
    qvShow = "Null"
  ElseIf IsEmpty(v) Then
    qvShow = "Empty"
  Else
    qvShow = TypeName(v) & " " & CStr(v)
  End If
End Function

Sub qvReport(text)
  qvFailures = qvFailures + 1
  Failures = Failures & text & vbLf
  If IsObject(WScript) Then WScript.StdErr.WriteLine "FAIL: " & text
End Sub

Sub qvFail(label, actual, expected)
  qvReport label & ": got " & qvShow(actual) & ", expected " & qvShow(expected)
End Sub

Function qvKind(v)
  qvKind = TypeName(v)
  If qvWholeNumbersAlike Then
    Select Case VarType(v)
      Case 2, 3, 17: qvKind = "whole number"
    End Select
  End If
End Function

' Same type and same value (Null equals Null, Empty equals Empty).
Sub Check(actual, expected, label)
  If qvKind(actual) <> qvKind(expected) Then
    qvFail label, actual, expected
  ElseIf IsNull(actual) Or IsEmpty(actual) Then
    ' the type decides
  ElseIf actual <> expected Then
    qvFail label, actual, expected
  End If
End Sub

Sub CheckTrue(condition, label)
  If Not condition Then qvFail label, condition, True
End Sub

' The exact subtype, whatever qvWholeNumbersAlike says.
Sub CheckType(v, name, label)
  If TypeName(v) <> name Then qvReport label & ": got " & qvShow(v) & ", expected a " & name
End Sub

' Runs statements at global level and checks the error number they raise (0 for none).
Sub CheckError(code, number, label)
  Dim got
  On Error Resume Next
  ExecuteGlobal code
  got = Err.Number
  On Error GoTo 0
  If got <> number Then qvFail label & " [" & code & "]", got, number
End Sub

' The error number that the last statement under On Error Resume Next raised, then cleared.
Sub CheckErr(expected, label)
  If Err.Number <> expected Then
    qvReport label & ": error " & Err.Number & " (" & Err.Description & "), expected " & expected
  End If
  Err.Clear
End Sub

' A table of expressions (as text) and the values they must give, evaluated in turn at global
' level; the expression is its own label.
Sub CheckEach(qvTable)
  Dim qvI
  For qvI = 0 To UBound(qvTable) Step 2
    Check Eval(qvTable(qvI)), qvTable(qvI + 1), qvTable(qvI)
  Next
End Sub

' A table of statements and the error numbers they raise, as CheckError.
Sub CheckErrors(qvTable)
  Dim qvI
  For qvI = 0 To UBound(qvTable) Step 2
    CheckError qvTable(qvI), qvTable(qvI + 1), "statement"
  Next
End Sub
