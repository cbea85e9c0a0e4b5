' Assertions shared by the host scripts: a failed check prints what differed and ends the
' script with status 3, so the driving test sees which check failed.
Sub Check(label, actual, expected)
  If TypeName(actual) <> TypeName(expected) Then
    WScript.StdErr.WriteLine "FAIL " & label & ": " & TypeName(actual) & " <> " & TypeName(expected)
    WScript.Quit 3
  End If
  If actual <> expected Then
    WScript.StdErr.WriteLine "FAIL " & label & ": [" & actual & "] <> [" & expected & "]"
    WScript.Quit 3
  End If
End Sub
