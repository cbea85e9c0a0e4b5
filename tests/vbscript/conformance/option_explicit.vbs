Option Explicit
' Under Option Explicit every name must be declared before it is used, except that ReDim
' declares the array it sizes, at the script's level and in procedures.
Dim seen
ReDim madeByReDim(3)
madeByReDim(3) = "top"
Check madeByReDim(3), "top", "ReDim declares a name at the script's level"
Sub SizesItsOwn()
  ReDim local(2)
  local(2) = "local"
  seen = local(2)
End Sub
SizesItsOwn
Check seen, "local", "ReDim declares a local in a procedure"

Sub UsesUndeclared()
  undeclaredName = 1
End Sub
On Error Resume Next
UsesUndeclared
Check Err.Number, CLng(500), "assigning an undeclared name in a procedure"
Err.Clear
seen = alsoUndeclared + 1
Check Err.Number, CLng(500), "reading an undeclared name"
On Error GoTo 0
