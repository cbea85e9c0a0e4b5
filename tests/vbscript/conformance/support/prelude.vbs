' Assertions shared by the conformance scripts. A failed check prints a line starting with
' "FAIL:" (which fails the test) and the script goes on, so one run shows every failure.
Dim qvFailures
qvFailures = 0

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

Sub qvFail(label, actual, expected)
  qvFailures = qvFailures + 1
  WScript.StdErr.WriteLine "FAIL: " & label & ": got " & qvShow(actual) & ", expected " & qvShow(expected)
End Sub

' Same type and same value (Null equals Null, Empty equals Empty).
Sub Check(actual, expected, label)
  If TypeName(actual) <> TypeName(expected) Then
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

' Runs statements at global level and checks the error number they raise (0 for none).
Sub CheckError(code, number, label)
  Dim got
  On Error Resume Next
  ExecuteGlobal code
  got = Err.Number
  On Error GoTo 0
  If got <> number Then qvFail label & " [" & code & "]", got, number
End Sub
