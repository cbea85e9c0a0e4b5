' Errors travelling through procedure calls: which statements still run, what Err holds
' at each level, and errors raised inside Class_Initialize, With blocks, Eval and Execute.
Dim log

Sub Inner()
  log = log & "[inner]"
  Err.Raise 1001, "Inner", "inner failed"
  log = log & "[inner after]"
End Sub

Sub Middle()
  log = log & "[middle]"
  Inner
  log = log & "[middle after]"
End Sub

Sub Outer()
  On Error Resume Next
  Middle
  log = log & "[outer " & Err.Number & " " & Err.Source & " " & Err.Description & "]"
  Err.Clear
  log = log & "[cleared " & Err.Number & "]"
End Sub

log = ""
Outer
Check log, "[middle][inner][outer 1001 Inner inner failed][cleared 0]", _
      "an error leaves every procedure up to the one that resumes"

Function SafeDiv(a, b)
  On Error Resume Next
  SafeDiv = a / b
  If Err.Number <> 0 Then SafeDiv = "err" & Err.Number
End Function
Check SafeDiv(6, 3) & " " & SafeDiv(1, 0) & " " & SafeDiv("x", 1) & " " & SafeDiv(0, 0), _
      "2 err11 err13 err6", "a function that turns its own errors into values"

' A procedure with its own On Error Resume Next still hands its error back to the caller.
Function Fails()
  On Error Resume Next
  Err.Raise 7
  Fails = Err.Number
End Function
Sub Swallows()
  On Error Resume Next
  Err.Raise 13
End Sub

On Error Resume Next
Check Fails(), CLng(7), "the function sees its own error"
Check Err.Number, CLng(7), "the caller sees it too after the return"
Err.Clear
Swallows
Check Err.Number, CLng(13), "an error a Sub resumed past is still in Err afterwards"
Err.Clear

Err.Number = 11
Check Err.Description, "", "setting the number alone leaves no text"
Err.Clear

' An error in Class_Initialize leaves the variable as it was.
Class Faulty
  Private Sub Class_Initialize()
    Err.Raise 1234, "Faulty", "init failed"
  End Sub
End Class
Dim obj
Set obj = Nothing
Set obj = New Faulty
Check Err.Number, CLng(1234), "the error of Class_Initialize reaches the caller"
CheckTrue obj Is Nothing, "the object was not assigned"
Err.Clear

' Errors inside With: the statement is skipped, the block goes on.
Class Holder
  Public Value
End Class
Dim h, seen
Set h = New Holder
seen = ""
With h
  .Value = 1 / 0
  seen = seen & Err.Number & ";"
  Err.Clear
  .Missing = 3
  seen = seen & Err.Number & ";"
  Err.Clear
  .Value = "ok"
End With
CheckEach Array("seen", "11;438;", "h.Value", "ok")

' Eval and Execute report their errors to the caller's handler.
Dim x
x = Eval("1 +")
Check Err.Number, CLng(1023), "a compile error in Eval"
Check Err.Description, "Expected expression", "its text"
Err.Clear
Execute "y = 10 / 0"
Check Err.Number, CLng(11), "a run-time error in Execute"
Err.Clear
On Error GoTo 0

' Eval gives back a value that is not text as it is; Execute wants text; an object stands for
' its default value; GetRef wants a name as text.
Class CodeHolder
  Public Default Function Code()
    Code = "1 + 1"
  End Function
End Class
Dim codeObj
Set codeObj = New CodeHolder
Check Eval(codeObj), 2, "Eval of an object runs its default value"
Check Eval(42), 42, "Eval of a number is the number"
CheckTrue IsNull(Eval(Null)), "Eval of Null"
CheckErrors Array("Dim r1 : r1 = Eval(Nothing)", 91, "Execute 42", 13, "ExecuteGlobal True", 13, _
  "Dim g1 : Set g1 = GetRef(123)", 13, "Dim g2 : Set g2 = GetRef(Empty)", 13, _
  "Dim g3 : Set g3 = GetRef("""")", 5, "Dim r2 : r2 = Eval(New Holder)", 438, _
  "Execute New Holder", 438)
