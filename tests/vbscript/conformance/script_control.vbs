' The script control made from a script: code, evaluation, procedures, modules, objects added
' to it, its error object, Reset and its time limit.
Dim sc, d, m
Set sc = CreateObject("MSScriptControl.ScriptControl")
sc.Language = "VBScript"
Check sc.Language, "VBScript", "Language"
sc.AddCode "Function Add(a, b) : Add = a + b : End Function" & vbCrLf & "Dim g : g = 10"
Check sc.Run("Add", 2, 3), 5, "Run passes its arguments"
Check sc.Eval("g * 2"), 20, "Eval sees the code's variables"
sc.ExecuteStatement "g = g + 1"
Check sc.Eval("g"), 11, "ExecuteStatement changes them"
Check sc.Procedures.Count, CLng(1), "Procedures.Count"
Check sc.Procedures(1).Name, "Add", "a procedure's Name"
Check sc.Procedures("add").NumArgs, CLng(2), "a procedure's NumArgs by name"
Check sc.Procedures(1).HasReturnValue, True, "a Function has a return value"

' An object added to the control is a name in its code.
Set d = CreateObject("Scripting.Dictionary")
sc.AddObject "dict", d
sc.ExecuteStatement "dict.Add ""k"", 5"
Check d("k"), 5, "the control's code reaches the object"

' Errors reach the calling script and stay described on the control's Error object.
On Error Resume Next
sc.AddCode "x = (1 +"
Check Err.Number, CLng(1023), "a compile error in AddCode"
Check sc.Error.Number, CLng(1023), "Error.Number"
Check sc.Error.Description, "Expected expression", "Error.Description"
Check sc.Error.Line, CLng(1), "Error.Line"
Check sc.Error.Text, "x = (1 +", "Error.Text"
Err.Clear
sc.Eval "1 / 0"
Check Err.Number, CLng(11), "a run-time error in Eval"
Check sc.Error.Source, "Microsoft VBScript runtime error", "Error.Source"
sc.Error.Clear
Check sc.Error.Number, CLng(0), "Error.Clear"
Err.Clear
sc.Run "NoSuchProcedure"
CheckTrue Err.Number <> 0, "Run of an unknown procedure fails"
On Error GoTo 0

' Modules: the global one first, named ones with their own procedures.
Set m = sc.Modules.Add("Extra")
m.AddCode "Function F() : F = ""in extra"" : End Function"
Check sc.Modules.Count, CLng(2), "Modules.Count"
Check sc.Modules(1).Name, "Global", "the global module comes first"
Check sc.Modules("Extra").Run("F"), "in extra", "Run in a named module"
Check m.Procedures.Count, CLng(1), "a module's procedures"

' Reset drops code and modules.
sc.Reset
Check sc.Modules.Count, CLng(1), "Reset keeps only the global module"
Check sc.Procedures.Count, CLng(0), "and no procedures"

' A time limit stops the control's code; the calling script may go on.
sc.Timeout = 100
Check sc.Timeout, CLng(100), "Timeout"
On Error Resume Next
sc.ExecuteStatement "Do : Loop"
CheckTrue Err.Number <> 0, "an endless loop in the control is stopped"
On Error GoTo 0
sc.AddCode "Function Still() : Still = ""usable"" : End Function"
Check sc.Run("Still"), "usable", "the control works after a time-out"
