' Eval, Execute and ExecuteGlobal: which names they see and where new names go.
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
CheckError "x = Eval(""1 +"")", 1023, "a syntax error in Eval"
CheckError "Execute ""If"" ", 1023, "a syntax error in Execute"
CheckError "x = Eval(""1 / 0"")", 11, "a run-time error in Eval"
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
CheckError "Set dynBad = Eval(""1 + 1"")", 424, "Set from Eval of a number"
CheckError "dynVal = Eval(""dynDict"")", 450, "Let from Eval of an object without a plain default"
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
CheckError "dupRan = True : Dim dupA : Dim dupA", 1041, "Dim twice"
CheckError "Dim dupB" & vbCrLf & "If True Then" & vbCrLf & "Dim dupB" & vbCrLf & "End If", 1041, "Dim twice, once nested"
CheckError "Const dupC = 1 : Dim dupC", 1041, "Const and Dim"
Check dupRan, False, "refused code does not run"
' Separate pieces of code may declare the same name again, and procedures have their own level.
CheckError "Dim dupD", 0, "Dim once"
CheckError "Dim dupD", 0, "Dim again in later code"
CheckError "Dim dupE : Sub DupUse() : Dim dupE : End Sub", 0, "a local may share a global's name"
