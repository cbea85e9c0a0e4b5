' CreateObject and GetObject: the standard classes by ProgID in any case, and the errors for
' what cannot be made here.
Dim o
Set o = CreateObject("scripting.dictionary")
Check TypeName(o), "Dictionary", "ProgIDs ignore case"
Set o = CreateObject("VBScript.RegExp")
Check TypeName(o), "IRegExp2", "VBScript.RegExp"
CheckError "Set o = CreateObject(""No.SuchClass"")", 429, "an unknown ProgID"
On Error Resume Next
Set o = CreateObject("No.SuchClass")
Check Err.Description, "ActiveX component can't create object", "a handled error reads the plain text"
Err.Clear
Set o = GetObject(, "Scripting.Dictionary")
Check Err.Description, "ActiveX component can't create object", "no running object"
Err.Clear
On Error GoTo 0
CheckError "Set o = GetObject(""winmgmts:\\.\root\cimv2"")", 429, "no monikers"
Set o = GetObject("", "Scripting.Dictionary")
Check TypeName(o), "Dictionary", "GetObject with an empty path makes a new object"
CheckError "Set o = CreateObject(""Scripting.Dictionary"", ""otherhost"")", 462, "a remote server"
