' Engine and locale information, TypeName and VarType of each kind of value.

' --- Engine and locale information, and what TypeName and VarType say of each kind of value.
Option Explicit
Dim x, previous

Check ScriptEngine, "VBScript", "ScriptEngine"
Check ScriptEngineMajorVersion, CLng(5), "major version"
Check ScriptEngineMinorVersion, CLng(8), "minor version"
Check TypeName(ScriptEngineBuildVersion), "Long", "build version is a Long"

' SetLocale returns the locale it replaces and takes names in any case.
previous = GetLocale()
Check previous, CLng(1033), "the engine starts in 1033"
Check SetLocale("de-DE"), CLng(1033), "SetLocale returns the old locale"
Check GetLocale(), CLng(1031), "German by name"
Check SetLocale("en-gb"), CLng(1031), "then British English"
Check GetLocale(), CLng(2057), "British English by name"
Check SetLocale(1036), CLng(2057), "a locale by number"
Check GetLocale(), CLng(1036), "French by number"
SetLocale 0
CheckError "x = SetLocale(Null)", 94, "SetLocale(Null)"
SetLocale previous

Class Plain
End Class

Check TypeName(Empty), "Empty", "TypeName Empty"
Check TypeName(Null), "Null", "TypeName Null"
Check TypeName(1), "Integer", "TypeName Integer"
Check TypeName(32768), "Long", "TypeName Long"
Check TypeName(1.5), "Double", "TypeName Double"
Check TypeName(CCur(1.5)), "Currency", "TypeName Currency"
Check TypeName(True), "Boolean", "TypeName Boolean"
Check TypeName(#1/1/2000#), "Date", "TypeName Date"
Check TypeName(""), "String", "TypeName String"
Check TypeName(Nothing), "Nothing", "TypeName Nothing"
Check TypeName(New Plain), "Plain", "TypeName of a class"
Check TypeName(Split("a b")), "Variant()", "TypeName of Split's array"
Check TypeName(CreateObject("Scripting.Dictionary")), "Dictionary", "TypeName Dictionary"

Check VarType(Empty), vbEmpty, "VarType Empty"
Check VarType(Null), vbNull, "VarType Null"
Check VarType(1), vbInteger, "VarType Integer"
Check VarType(32768), vbLong, "VarType Long"
Check VarType(CSng(1)), vbSingle, "VarType Single"
Check VarType(1.5), vbDouble, "VarType Double"
Check VarType(CCur(1)), vbCurrency, "VarType Currency"
Check VarType(#1/1/2000#), vbDate, "VarType Date"
Check VarType("a"), vbString, "VarType String"
Check VarType(New Plain), vbObject, "VarType of an object"
Check VarType(Nothing), vbObject, "VarType Nothing"
Check VarType(True), vbBoolean, "VarType Boolean"
Check VarType(CByte(1)), vbByte, "VarType Byte"
Check VarType(Array()), vbArray + vbVariant, "VarType of an array"
Check TypeName(VarType(1)), "Integer", "VarType answers an Integer"

Check IsNumeric("1e3"), True, "IsNumeric exponent"
Check IsNumeric("&H10"), True, "IsNumeric hex"
Check IsNumeric("$1"), True, "IsNumeric currency sign"
Check IsNumeric("1,000"), True, "IsNumeric thousands"
Check IsNumeric("(1)"), True, "IsNumeric parentheses"
Check IsNumeric("1 2"), False, "IsNumeric two numbers"
Check IsNumeric("1e400"), False, "IsNumeric too big"
Check IsNumeric(Nothing), False, "IsNumeric Nothing"

' Constants keep Windows' types: the vbMsgBox flags and colours are Longs even when small.
Check vbDatabaseCompare, 2, "vbDatabaseCompare"
Check vbMsgBoxHelpButton, CLng(16384), "vbMsgBoxHelpButton is a Long"
Check vbMsgBoxSetForeground, CLng(65536), "vbMsgBoxSetForeground"
Check vbRed, CLng(255), "vbRed is a Long"
Check vbBlack, CLng(0), "vbBlack is a Long"
Check vbObjectError, CLng(-2147221504), "vbObjectError"
Check vbSystemModal, 4096, "vbSystemModal is an Integer"
Check vbUseDefault, -2, "vbUseDefault"
Check vbFirstFullWeek, 3, "vbFirstFullWeek"
Check vbVerticalTab, Chr(11), "vbVerticalTab"
Check vbFormFeed, Chr(12), "vbFormFeed"
