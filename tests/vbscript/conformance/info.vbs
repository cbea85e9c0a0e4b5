' Engine and locale information, TypeName and VarType of each kind of value.

' --- Engine and locale information, and what TypeName and VarType say of each kind of value.
Option Explicit
Dim x

CheckEach Array("ScriptEngine", "VBScript", "ScriptEngineMajorVersion", CLng(5), _
  "ScriptEngineMinorVersion", CLng(8), "TypeName(ScriptEngineBuildVersion)", "Long")

CheckError "x = SetLocale(Null)", 94, "SetLocale(Null)"

Class Plain
End Class

CheckEach Array("TypeName(Empty)", "Empty", "TypeName(Null)", "Null", "TypeName(1)", "Integer", _
  "TypeName(32768)", "Long", "TypeName(1.5)", "Double", "TypeName(CCur(1.5))", "Currency", _
  "TypeName(True)", "Boolean", "TypeName(#1/1/2000#)", "Date", "TypeName("""")", "String", _
  "TypeName(New Plain)", "Plain", "TypeName(Split(""a b""))", "Variant()", _
  "TypeName(CreateObject(""Scripting.Dictionary""))", "Dictionary")

CheckEach Array("VarType(Empty)", vbEmpty, "VarType(Null)", vbNull, "VarType(1)", vbInteger, _
  "VarType(32768)", vbLong, "VarType(CSng(1))", vbSingle, "VarType(1.5)", vbDouble, _
  "VarType(CCur(1))", vbCurrency, "VarType(#1/1/2000#)", vbDate, "VarType(""a"")", vbString, _
  "VarType(New Plain)", vbObject, "VarType(Nothing)", vbObject, "VarType(True)", vbBoolean, _
  "VarType(CByte(1))", vbByte, "VarType(Array())", vbArray + vbVariant, _
  "TypeName(VarType(1))", "Integer")

CheckEach Array("IsNumeric(""$1"")", True, "IsNumeric(""1,000"")", True, "IsNumeric(""(1)"")", True, _
  "IsNumeric(""1 2"")", False, "IsNumeric(""1e400"")", False, "IsNumeric(Nothing)", False)

' Constants keep Windows' types: the vbMsgBox flags and colours are Longs even when small.
CheckEach Array("vbDatabaseCompare", 2, "vbMsgBoxHelpButton", CLng(16384), _
  "vbMsgBoxSetForeground", CLng(65536), "vbBlack", CLng(0), "vbObjectError", CLng(-2147221504), _
  "vbSystemModal", 4096, "vbFirstFullWeek", 3, "vbVerticalTab", Chr(11), "vbFormFeed", Chr(12))
