' Objects still held by the script's variables end with it, in the order of the variables.
Class K
  Public Name
  Private Sub Class_Terminate()
    WScript.Echo "term " & Name
  End Sub
End Class
Set a = New K : a.Name = "a"
Set b = New K : b.Name = "b"
Dim list(1)
Set list(0) = New K : list(0).Name = "in array"
WScript.Echo "end of script"
