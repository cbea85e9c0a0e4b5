' Scripting.FileSystemObject on real files in a fresh temporary folder: text streams in UTF-8
' and Unicode, folders, copying and deleting, and the error numbers.
Dim fso, root, ts, f
Set fso = CreateObject("Scripting.FileSystemObject")
root = fso.BuildPath(fso.GetSpecialFolder(2).Path, "runtime_fso_" & fso.GetTempName())
fso.CreateFolder root
Check fso.FolderExists(root), True, "CreateFolder"

Set ts = fso.CreateTextFile(root & "\a.txt")
ts.WriteLine "héllo"
ts.Write "x"
ts.Close
Set ts = fso.OpenTextFile(root & "/a.txt")
Check ts.ReadLine, "héllo", "ReadLine"
Check ts.Line, CLng(2), "Line"
Check ts.ReadAll, "x", "ReadAll"
Check ts.AtEndOfStream, True, "AtEndOfStream"
ts.Close
Set ts = fso.OpenTextFile(root & "/a.txt", 8)
ts.Write "y"
ts.Close
Check fso.GetFile(root & "/a.txt").Size, CLng(10), "UTF-8 size after appending"

Set ts = fso.CreateTextFile(root & "/u.txt", True, True)
ts.Write "€"
ts.Close
Check fso.GetFile(root & "/u.txt").Size, CLng(4), "Unicode with its BOM"
Check fso.OpenTextFile(root & "/u.txt").ReadAll, "€", "BOM honoured on reading"

Check fso.GetFileName(root & "\a.txt"), "a.txt", "GetFileName"
Check fso.GetBaseName("x/y.tar.gz"), "y.tar", "GetBaseName"
Check fso.GetExtensionName("x\y.TXT"), "TXT", "GetExtensionName"
Check fso.GetParentFolderName("a\b\c.txt"), "a\b", "GetParentFolderName"
Check fso.BuildPath("a", "b"), "a/b", "BuildPath"

fso.CreateFolder root & "/sub"
fso.CopyFile root & "/*.txt", root & "/sub/"
Set f = fso.GetFolder(root & "/sub")
Check f.Files.Count, CLng(2), "CopyFile with wildcards"
Check f.Name, "sub", "Folder.Name"
fso.MoveFile root & "/sub/a.txt", root & "/sub/b.txt"
Check fso.FileExists(root & "/sub/b.txt"), True, "MoveFile"
fso.DeleteFile root & "/sub/*.txt"
Check fso.GetFolder(root & "/sub").Files.Count, CLng(0), "DeleteFile with wildcards"

CheckError "Set x = fso.OpenTextFile(root & ""/none.txt"")", 53, "open a missing file"
CheckError "fso.CreateFolder root & ""/sub""", 58, "CreateFolder twice"
CheckError "Set x = fso.GetFolder(root & ""/none"")", 76, "GetFolder missing"
CheckError "Set x = fso.CreateTextFile(root & ""/a.txt"", False)", 58, "CreateTextFile without overwrite"
CheckError "x = fso.OpenTextFile(root & ""/a.txt"", 2).ReadLine", 54, "reading a stream for writing"

fso.DeleteFolder root
Check fso.FolderExists(root), False, "DeleteFolder"
