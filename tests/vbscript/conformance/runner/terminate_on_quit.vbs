' WScript.Quit ends the script, and the objects it still holds end with it.
Class K
  Private Sub Class_Terminate()
    WScript.Echo "term on quit"
  End Sub
End Class
Set a = New K
WScript.Echo "quitting"
WScript.Quit 3
WScript.Echo "not reached"
