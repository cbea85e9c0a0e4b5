' Execute inside a procedure runs in that procedure's scope; ExecuteGlobal at the script's level.

Dim shared, seenBefore, inside
shared = 1

Function MakeLocal(pass)
  seenBefore = made
  Execute "made = 10"
  Execute "made = made + 1 : other = made * 2"
  inside = made & "," & other & "," & Eval("made + other") & "," & TypeName(made)
  MakeLocal = made
End Function
CheckEach Array("MakeLocal(1)", 11, "inside", "11,22,33,Integer", "IsEmpty(made)", True, _
  "IsEmpty(other)", True)
MakeLocal 2
Check IsEmpty(seenBefore), True, "a new call starts without them"

Sub ShadowGlobal
  Dim shared
  Execute "shared = 7"
  inside = shared
End Sub
ShadowGlobal
CheckEach Array("inside", 7, "shared", 1)

Sub AssignGlobal
  Execute "shared = 9"
End Sub
AssignGlobal
Check shared, 9, "with no local of that name, the global is assigned"

Sub MakeGlobal
  ExecuteGlobal "madeGlobally = 5"
End Sub
MakeGlobal
Check madeGlobally, 5, "ExecuteGlobal creates a global"

Sub Recurse(n)
  Execute "level = n"
  If n < 3 Then Recurse n + 1
  inside = inside & level
End Sub
inside = ""
Recurse 1
Check inside, "321", "each call has its own names"

Class Holder
  Public Field
  Sub Fill
    Execute "Field = 5 : scratch = 6"
    inside = Field & scratch
  End Sub
End Class
Dim box
Set box = New Holder
box.Fill
CheckEach Array("inside", "56", "box.Field", 5, "IsEmpty(scratch)", True)

Sub PassAlong
  Execute "Set dict = CreateObject(""Scripting.Dictionary"") : dict(1) = 2 : list = Array(4, 5)"
  inside = TypeName(dict) & dict.Count & list(1) & UBound(list)
End Sub
PassAlong
Check inside, "Dictionary151", "created objects and arrays used by the procedure"

Sub FailHalfway
  On Error Resume Next
  Execute "kept = 1 : kept = 1 / 0"
  inside = Err.Number & ":" & kept
End Sub
FailHalfway
Check inside, "11:1", "a snippet that fails keeps what it assigned"

Sub Declare
  Execute "Dim shared, grid(2) : shared = 1 : grid(2) = 5"
  Execute "grid(1) = 4 : inside = shared & grid(1) + grid(2) & UBound(grid)"
End Sub
Declare
CheckEach Array("inside", "192", "shared", 9, "IsEmpty(grid)", True)

Execute "topLevel = 3"
Check topLevel, 3, "Execute at the script's level makes globals"
