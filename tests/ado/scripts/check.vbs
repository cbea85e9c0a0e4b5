' Assertions of the ADO scripts. A failed check is added to Failures, which the test reads when
' the script ends, so one run reports every failure.
Dim Failures
Failures = ""

Function Show(v)
  If IsArray(v) Then
    Show = "(array)"
  ElseIf IsObject(v) Then
    Show = "(object " & TypeName(v) & ")"
  ElseIf IsNull(v) Then
    Show = "Null"
  ElseIf IsEmpty(v) Then
    Show = "Empty"
  Else
    Show = TypeName(v) & " " & CStr(v)
  End If
End Function

'' Same subtype and same value; Integer, Long and Byte count as one whole-number kind, so
' literals can be written plainly (CheckType checks the exact subtype).
Function WholeKind(v)
  Select Case VarType(v)
    Case 2, 3, 17: WholeKind = "whole"
    Case Else: WholeKind = TypeName(v)
  End Select
End Function

Sub CheckType(v, name, label)
  If TypeName(v) <> name Then Failures = Failures & label & ": got " & Show(v) & ", expected a " & name & vbLf
End Sub

Sub Check(actual, expected, label)
  Dim same
  If WholeKind(actual) <> WholeKind(expected) Then
    same = False
  ElseIf IsNull(actual) Or IsEmpty(actual) Then
    same = True
  Else
    same = (actual = expected)
  End If
  If Not same Then Failures = Failures & label & ": got " & Show(actual) & ", expected " & Show(expected) & vbLf
End Sub

Sub CheckTrue(condition, label)
  If Not condition Then Failures = Failures & label & vbLf
End Sub

' The error number that the last statement under On Error Resume Next raised, then cleared.
Sub CheckErr(expected, label)
  If Err.Number <> expected Then
    Failures = Failures & label & ": error " & Err.Number & " (" & Err.Description & "), expected " & expected & vbLf
  End If
  Err.Clear
End Sub
