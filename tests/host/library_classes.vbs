' The library's other creatable classes, each made by its ProgID and used a little: proof that
' the object a script gets is the working class, not a shell.
' Arguments: the folder of this script.
Option Explicit
Dim fso : Set fso = CreateObject("Scripting.FileSystemObject")
Dim checks : checks = fso.OpenTextFile(WScript.Arguments(0) & "/check.vbs").ReadAll()
ExecuteGlobal checks

Dim parser : Set parser = CreateObject("TyxClass.TyParser")
parser.Parse "a<!--##=x##-->b"
Check "blocks", parser.Count, CLng(3)

Dim bag : Set bag = CreateObject("TyxClass.TyProperties")
Check "bag add", bag.Add("Size", "Long"), True
bag("Size").Value = "12"
Check "bag count", bag.Count, CLng(1)

Dim list : Set list = CreateObject("TyxClass.CSuperCollection")
list.Add "one", "k1"
list.Add "two", "k2"
Dim item, joined
For Each item In list
  joined = joined & item
Next
Check "collection walked", joined, "onetwo"
Check "by key", list("k2"), "two"

' Every ProgID in any case is the C++ suite's (cli/host_classes_test.cpp); WScript makes them too.
Check "through WScript", TypeName(WScript.CreateObject("TyxClass.Tyx")), "Tyx"
WScript.Echo "library classes ok"
