' Eval, Execute and ExecuteGlobal: which scope they read and write; With blocks.
g = 1
Check Eval("g + 1"), 2, "Eval reads globals"
Check Eval("g = 1"), True, "= inside Eval compares"
Check TypeName(Eval("1 + 1")), "Integer", "Eval keeps the type"
Execute "g = 5"
Check g, 5, "Execute at global level assigns globals"
Function LocalEval()
  Dim loc
  loc = 7
  LocalEval = Eval("loc * 2")
End Function
Check LocalEval(), 14, "Eval sees locals"
Function LocalExecute()
  Dim loc
  Execute "loc = 3"
  Execute "created = 4"
  LocalExecute = loc & "|" & created
End Function
Check LocalExecute(), "3|4", "Execute writes the procedure's scope"
Function GlobalExecute()
  Dim loc
  loc = "local"
  ExecuteGlobal "loc = ""global"" : madeGlobal = 9"
  GlobalExecute = loc
End Function
Check GlobalExecute(), "local", "ExecuteGlobal leaves the locals"
Check loc, "global", "and writes the global of that name"
Check madeGlobal, 9, "ExecuteGlobal makes globals"
Function DefineFunction()
  ExecuteGlobal "Function Made(x) : Made = x * 3 : End Function"
End Function
DefineFunction
Check Made(2), 6, "ExecuteGlobal defines procedures for everyone"
Execute "Function MadeHere() : MadeHere = ""here"" : End Function"
Check MadeHere(), "here", "Execute at global level defines procedures"
ExecuteGlobal "Class MadeClass : Public V : End Class"
Set mc = New MadeClass
mc.V = 1
Check mc.V, 1, "a class defined at run time"
Execute "a1 = 1" & vbCrLf & "a2 = a1 + 1"
Check a2, 2, "several lines"
Execute "b1 = 1 : b2 = 2"
Check b1 + b2, 3, "several statements"
CheckError "x = Eval(""1 +"")", 1023, "a syntax error in Eval"
CheckError "Execute ""If"" ", 1023, "an incomplete statement in Execute"
' With.
Class Box
  Public W, H, Inner
End Class
Set bx = New Box
With bx
  .W = 2
  .H = 3
  Set .Inner = New Box
  With .Inner
    .W = 10
  End With
  Check .W * .H, 6, "members inside With"
End With
Check bx.Inner.W, 10, "nested With"
Function MakeBox()
  calls = calls + 1
  Set MakeBox = bx
End Function
calls = 0
With MakeBox()
  .W = 4
  .H = 5
End With
Check calls, 1, "the With object is read once"
Check bx.W * bx.H, 20, "assignments through a With on a call"
Set d = CreateObject("Scripting.Dictionary")
With d
  .Add "k", 1
  .Item("k") = .Item("k") + 1
End With
Check d("k"), 2, "With on a built-in object"
For i = 1 To 2
  With bx
    .W = i
    If i = 1 Then Exit For
  End With
Next
Check bx.W, 1, "Exit For out of a With"
' Eval and Execute inside a class method see the instance's members.
Class Scoped
  Public V
  Public Sub SetByExecute()
    Execute "V = 42"
  End Sub
  Public Function ReadByEval()
    ReadByEval = Eval("Me.V + 1")
  End Function
End Class
Set sc = New Scoped
sc.SetByExecute
Check sc.V, 42, "Execute in a method assigns the member"
Check sc.ReadByEval(), 43, "Eval in a method reads Me"
Execute "Set madeByExecute = New Scoped"
Check TypeName(madeByExecute), "Scoped", "Set inside Execute"
Check Eval("sc Is Nothing"), False, "Is inside Eval"
Function GiveScoped()
  Set GiveScoped = sc
End Function
Set viaRef = GetRef("GiveScoped")()
Check viaRef Is sc, True, "an object through GetRef"
