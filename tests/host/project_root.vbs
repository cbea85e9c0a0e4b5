' A host's whole round with the project root: settings read and written by name with the
' accessors' conversions, extensions, lists walked with For Each, a database loaded, and the
' project saved and read back into a second root.
' Arguments: the folder of this script, the Chinook SQLite file, the project file to write.
Option Explicit
Dim fso : Set fso = CreateObject("Scripting.FileSystemObject")
Dim checks : checks = fso.OpenTextFile(WScript.Arguments(0) & "/check.vbs").ReadAll()
ExecuteGlobal checks

Dim tyx : Set tyx = CreateObject("TyxClass.Tyx")
Check "type", TypeName(tyx), "Tyx"
Check "no project yet", tyx.ProjInit, False
Check "no database yet", tyx.DBCnt, CInt(0)
Check "version", Len(tyx.EngineVersion) > 0, True

tyx.AddProj "Shop"
Check "started", tyx.ProjInit, True
Check "name", tyx.ProjName, "Shop"

' Settings take their type from the accessor, whatever the script hands them.
tyx.RecPerPage = "25"
Check "integer setting", tyx.RecPerPage, CInt(25)
tyx.SmtpServerPort = 2525.4
Check "long setting", tyx.SmtpServerPort, CLng(2525)
tyx.ExportCsv = "true"
Check "boolean setting", tyx.ExportCsv, True
tyx.Properties.Item("CSS").Value = "site.css"
Check "through the bag", tyx.CSS, "site.css"
tyx.lhWnd = 77
Check "hwnd is lhWnd", tyx.hwnd, CLng(77)

On Error Resume Next
tyx.RecPerPage = "many"
Check "no integer", Err.Number, CLng(13)
Err.Clear
tyx.NoSuchSetting = 1
Check "unknown member", Err.Number, CLng(438)
Err.Clear
Dim missing : Set missing = tyx.db
Check "db before a load", Err.Number <> 0, True
Err.Clear
Dim absent : Set absent = CreateObject("TyxClass.NoSuchClass")
Check "unknown class", Err.Number, CLng(429)
On Error GoTo 0
Check "failed set keeps value", tyx.RecPerPage, CInt(25)

Dim count, p
count = 0
For Each p In tyx.Properties
  count = count + 1
Next
Check "settings walked", count, 99

Check "add extension", tyx.AddExtension("Charts", "/packs/charts.zip"), True
Check "add another", tyx.AddExtension("Maps", "/packs/maps.zip"), True
Check "replace template", tyx.AddExtension("Charts", "/packs/charts2.zip"), True
Check "empty name", tyx.AddExtension("", "/x.zip"), False
Check "extension count", tyx.Extensions.Count, CLng(2)
Dim e, names
For Each e In tyx.Extensions
  names = names & e.Name & "=" & e.Template & ";"
Next
Check "extensions walked", names, "Charts=/packs/charts2.zip;Maps=/packs/maps.zip;"
Check "delete extension", tyx.DeleteExtension("Maps"), True
Check "delete again", tyx.DeleteExtension("Maps"), False

tyx.LoadDB "", "CONNECTIONSTRING", "", "", False, "", "", _
    "Provider=SQLite;Data Source=" & WScript.Arguments(1), ""
Check "load error", tyx.ProjErr, ""
Check "one database", tyx.DBCnt, CInt(1)
Dim t, tables
count = 0
For Each t In tyx.db.Tables
  count = count + 1
  If t.TblName = "Invoice" Then tables = t.Fields.Count
Next
Check "tables walked", count, CInt(11)
Check "invoice fields", tables, CLng(9)
tyx.db.Tables.Item("Invoice").TblCaption = "Bills"

tyx.Save WScript.Arguments(2)
Check "saved", fso.FileExists(WScript.Arguments(2)), True

Dim again : Set again = CreateObject("TyxClass.Tyx")
again.Load WScript.Arguments(2)
Check "load back", again.ProjErr, ""
Check "name back", again.ProjName, "Shop"
Check "integer back", again.RecPerPage, CInt(25)
Check "boolean back", again.ExportCsv, True
Check "extension back", again.Extensions.Item("Charts").Template, "/packs/charts2.zip"
Check "table back", again.db.Tables.Item("Invoice").TblCaption, "Bills"
Check "tables back", again.db.Tables.Count, CLng(11)

tyx.DeleteProj
Check "ended", tyx.ProjInit, False
Check "no database after", tyx.DBCnt, CInt(0)
Check "empty after", tyx.RecPerPage, CInt(0)
WScript.Echo "project root ok"
