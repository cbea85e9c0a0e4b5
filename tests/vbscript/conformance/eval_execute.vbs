' Eval, Execute and ExecuteGlobal: which names and scope they see and where new names go.

' --- Eval, Execute and ExecuteGlobal: which names they see and where new names go.
x = 5
Check Eval("x * 2"), 10, "Eval sees globals"
Check Eval("1 + 2 = 3"), True, "= in Eval compares"
Execute "x = 7"
Check x, 7, "Execute assigns"
Function Local()
  Dim y
  y = 3
  Local = Eval("y + 1")
  Execute "y = y * 10"
  Local = Local & "," & y
End Function
Check Local(), "4,30", "Eval and Execute see the procedure's locals"
Sub DefineGlobal()
  ExecuteGlobal "Dim fromInside : fromInside = ""yes"""
End Sub
DefineGlobal
Check fromInside, "yes", "ExecuteGlobal defines at global level"
ExecuteGlobal "Function Made(a) : Made = a & ""!"" : End Function"
Check Made("hi"), "hi!", "ExecuteGlobal defines procedures"
Execute "Sub MadeToo() : madeFlag = 1 : End Sub"
MadeToo
Check IsEmpty(madeFlag), True, "a procedure's undeclared name is its own local"
Class Calc
  Public Factor
  Public Function Apply(v)
    Apply = Eval("v * Factor")
  End Function
End Class
Set c = New Calc
c.Factor = 3
Check c.Apply(4), 12, "Eval in a method sees the fields"
CheckErrors Array("x = Eval(""1 +"")", 1023, "Execute ""If"" ", 1023, "x = Eval(""1 / 0"")", 11)
Check Eval("""a"" & ""b"""), "ab", "strings in Eval"
Check TypeName(Eval("Empty")), "Empty", "Eval of Empty"
' Eval hands an object back as it is, so Set can take it: the usual way to make an instance of
' a class named at run time.
Class Dyn
  Public V
  Public Function Self()
    Set Self = Eval("Me")
  End Function
End Class
dynName = "Dyn"
Set dynObj = Eval("New " & dynName)
Check TypeName(dynObj), "Dyn", "Set from Eval of New"
dynObj.V = 7
CheckTrue dynObj.Self() Is dynObj, "Set from Eval of Me"
Set dynDict = CreateObject("Scripting.Dictionary")
Set dynSame = Eval("dynDict")
CheckTrue dynSame Is dynDict, "Set from Eval of a variable"
Set dynNone = Eval("Nothing")
CheckTrue dynNone Is Nothing, "Set from Eval of Nothing"
Check Eval("dynObj.V"), 7, "Eval of a member still gives its value"
CheckErrors Array("Set dynBad = Eval(""1 + 1"")", 424, "dynVal = Eval(""dynDict"")", 450)
' A compile error inside Execute or Eval still says it is a compilation error.
On Error Resume Next
Execute "x = 1 +"
Check Err.Number, CLng(1023), "compile error number in Execute"
Check Err.Source, "Microsoft VBScript compilation error", "compile error source in Execute"
Err.Clear
x = Eval("(1")
Check Err.Source, "Microsoft VBScript compilation error", "compile error source in Eval"
Err.Clear
x = 1 / 0
Check Err.Source, "Microsoft VBScript runtime error", "run-time error source"
On Error GoTo 0
' A name declared twice at one level is refused, and nothing of that code runs.
dupRan = False
CheckErrors Array("dupRan = True : Dim dupA : Dim dupA", 1041, _
  "Dim dupB" & vbCrLf & "If True Then" & vbCrLf & "Dim dupB" & vbCrLf & "End If", 1041, _
  "Const dupC = 1 : Dim dupC", 1041)
Check dupRan, False, "refused code does not run"
' Separate pieces of code may declare the same name again, and procedures have their own level.
CheckErrors Array("Dim dupD", 0, "Dim dupD", 0, _
  "Dim dupE : Sub DupUse() : Dim dupE : End Sub", 0)

' --- Eval, Execute and ExecuteGlobal: which scope they write; a With block's object read once.
Check TypeName(Eval("1 + 1")), "Integer", "Eval keeps the type"
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
CheckEach Array("GlobalExecute()", "local", "loc", "global", "madeGlobal", 9)
ExecuteGlobal "Class MadeClass : Public V : End Class"
Set mc = New MadeClass
mc.V = 1
Check mc.V, 1, "a class defined at run time"
Execute "a1 = 1" & vbCrLf & "a2 = a1 + 1"
Check a2, 2, "several lines"
Execute "b1 = 1 : b2 = 2"
Check b1 + b2, 3, "several statements"
' With.
Class Box
  Public W, H, Inner
End Class
Set bx = New Box
Function MakeBox()
  calls = calls + 1
  Set MakeBox = bx
End Function
calls = 0
With MakeBox()
  .W = 4
  .H = 5
End With
CheckEach Array("calls", 1, "bx.W * bx.H", 20)
For i = 1 To 2
  With bx
    .W = i
    If i = 1 Then Exit For
  End With
Next
Check bx.W, 1, "Exit For out of a With"
' Execute inside a class method sees the instance's members.
Class Scoped
  Public V
  Public Sub SetByExecute()
    Execute "V = 42"
  End Sub
End Class
Set sc = New Scoped
sc.SetByExecute
Check sc.V, 42, "Execute in a method writes the field"
Execute "Set madeByExecute = New Scoped"
Check TypeName(madeByExecute), "Scoped", "Set inside Execute"
Check Eval("sc Is Nothing"), False, "Is inside Eval"
Function GiveScoped()
  Set GiveScoped = sc
End Function
Set viaRef = GetRef("GiveScoped")()
Check viaRef Is sc, True, "an object through GetRef"

' --- A second Dim of an array name in later code finds the array already there.
ExecuteGlobal "Dim laterArray(3)"
CheckErrors Array("Dim laterArray(5)", 13, "Dim laterArray", 0)
Check UBound(laterArray), CLng(3), "the first array stays"
' Compile errors of the code given to Eval and Execute keep their own numbers.
CheckError "Execute ""5 * 4""", 1024, "an expression is no statement"
