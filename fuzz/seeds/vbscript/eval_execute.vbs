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
