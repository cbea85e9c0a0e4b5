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
CheckEach Array("sc.Procedures.Count", CLng(1), "sc.Procedures(1).Name", "Add", _
  "sc.Procedures(""add"").NumArgs", CLng(2), "sc.Procedures(1).HasReturnValue", True)

' An object added to the control is a name in its code.
Set d = CreateObject("Scripting.Dictionary")
sc.AddObject "dict", d
sc.ExecuteStatement "dict.Add ""k"", 5"
Check d("k"), 5, "the control's code reaches the object"

' Errors reach the calling script and stay described on the control's Error object.
On Error Resume Next
sc.AddCode "x = (1 +"
Check Err.Number, CLng(1023), "a compile error in AddCode"
CheckEach Array("sc.Error.Number", CLng(1023), "sc.Error.Description", "Expected expression", _
  "sc.Error.Line", CLng(1), "sc.Error.Text", "x = (1 +")
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
CheckEach Array("sc.Modules.Count", CLng(2), "sc.Modules(1).Name", "Global", _
  "sc.Modules(""Extra"").Run(""F"")", "in extra", "m.Procedures.Count", CLng(1))

' Reset drops code and modules.
sc.Reset
CheckEach Array("sc.Modules.Count", CLng(1), "sc.Procedures.Count", CLng(0))

' A time limit stops the control's code; the calling script may go on.
sc.Timeout = 100
Check sc.Timeout, CLng(100), "Timeout"
On Error Resume Next
sc.ExecuteStatement "Do : Loop"
CheckTrue Err.Number <> 0, "an endless loop in the control is stopped"
On Error GoTo 0
sc.AddCode "Function Still() : Still = ""usable"" : End Function"
Check sc.Run("Still"), "usable", "the control works after a time-out"
