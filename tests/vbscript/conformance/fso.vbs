' Scripting.FileSystemObject: path functions, files, folders and text streams.

' --- FileSystemObject details scripts written for Windows rely on: the path functions keep the
' separators they are given, text streams split lines at line feeds only, Unicode files stay
' Unicode when appended to, and the error numbers of the file operations.
Dim fso, root, ts, i, t
Set fso = CreateObject("Scripting.FileSystemObject")

' Path text, worked out without touching the disk.
Check fso.GetParentFolderName("a\b\c"), "a\b", "parent keeps backslashes"
Check fso.GetParentFolderName("a/b/c"), "a/b", "parent keeps slashes"
Check fso.GetParentFolderName("a/b//\\"), "a", "trailing separators go"
Check fso.GetParentFolderName("C:\\x"), "C:\", "a drive keeps its separator"
Check fso.GetParentFolderName("ac:\x"), "ac:", "only a one-letter drive"
Check fso.GetParentFolderName("name"), "", "no parent"
Check fso.GetFileName("a\"), "a", "file name before a trailing separator"
Check fso.GetFileName("C:"), "", "a drive has no file name"
Check fso.GetFileName("/\"), "", "the root has no file name"
Check fso.GetBaseName("a/a.b.c"), "a.b", "base name drops the last extension"
Check fso.GetBaseName(".a"), "", "a name that is all extension"
Check fso.GetExtensionName("a/b.tar.gz"), "gz", "extension"
Check fso.GetExtensionName("a/b"), "", "no extension"
Check fso.GetDriveName("C:\a.txt"), "C:", "drive name"
Check fso.GetDriveName("o:"), "o:", "lower-case drive name"
Check fso.GetDriveName("\\srv\share\x"), "\\srv\share", "network share"
Check fso.GetDriveName("OO:"), "", "not a drive"
Check fso.GetDriveName("/usr/lib"), "", "Linux paths have no drive"
Check fso.BuildPath("C:\path", "..\n.tmp"), "C:\path\..\n.tmp", "BuildPath joins with a backslash"
Check fso.BuildPath("C:\path", "\n.tmp"), "C:\path\n.tmp", "BuildPath, name with separator"
Check fso.BuildPath("C:\path\", "\n.tmp"), "C:\path\n.tmp", "BuildPath, both with separators"
Check fso.BuildPath("C:\path\", "\\n.tmp"), "C:\path\\n.tmp", "BuildPath drops only one"
Check fso.BuildPath("C:", "n.tmp"), "C:n.tmp", "BuildPath after a bare drive"
Check fso.BuildPath("/usr", "lib"), "/usr/lib", "BuildPath on Linux paths"
Check Left(fso.GetTempName, 3) & Right(fso.GetTempName, 4), "rad.tmp", "GetTempName"
Check Len(fso.GetTempName), CLng(12), "GetTempName length"

root = fso.BuildPath(fso.GetSpecialFolder(2).Path, "obj_fso_" & fso.GetTempName())
fso.CreateFolder root

' Lines end at LF (with a CR before it); a lone CR is part of the line.
Set ts = fso.CreateTextFile(root & "/lines.txt")
ts.Write "first line" & vbCrLf & "second" & vbLf & vbLf & vbCr & "t" & vbCr & vbCr & "e " & vbCr & "st" & vbLf & "last"
ts.Close
Set ts = fso.OpenTextFile(root & "/lines.txt")
Check ts.ReadLine, "first line", "CR LF ends a line"
Check ts.ReadLine, "second", "LF ends a line"
Check ts.ReadLine, "", "an empty line"
Check ts.ReadLine, vbCr & "t" & vbCr & vbCr & "e " & vbCr & "st", "lone CRs stay"
Check ts.Line, CLng(5), "Line counts line feeds"
Check ts.ReadLine, "last", "the last line without an end"
Check ts.AtEndOfStream, True, "at the end"
CheckError "x = ts.ReadLine", 62, "ReadLine past the end"
CheckError "x = ts.ReadAll", 62, "ReadAll past the end"
CheckError "x = ts.Read(1)", 62, "Read past the end"
CheckError "ts.Write ""x""", 54, "writing a stream opened for reading"
ts.Close
Set ts = fso.OpenTextFile(root & "/lines.txt")
CheckError "x = ts.Read(-1)", 5, "a negative count"
Check ts.Read(0), "", "Read(0)"
ts.SkipLine
Check ts.Read(3), "sec", "Read after SkipLine"
Check ts.Column, CLng(4), "Column"
ts.Close

' Appending with the default format continues a Unicode file in Unicode.
Set ts = fso.CreateTextFile(root & "/u.txt", True, True)
ts.Write "ab"
ts.Close
Set ts = fso.OpenTextFile(root & "/u.txt", 8, False, -2)
ts.Write "c"
ts.Close
Check fso.GetFile(root & "/u.txt").Size, CLng(8), "BOM and three UTF-16 units"
Check fso.OpenTextFile(root & "/u.txt", 1, False, -1).ReadAll, "abc", "read back as Unicode"

Set ts = fso.OpenTextFile(root & "/made.txt", 1, True)
Check ts.AtEndOfStream, True, "reading with the create flag makes an empty file"
ts.Close
Check fso.FileExists(root & "/made.txt"), True, "the made file stays"
Set ts = fso.OpenTextFile(root & "/w.txt", 2, True)
CheckError "x = ts.ReadAll", 54, "reading a stream opened for writing"
CheckError "x = ts.AtEndOfStream", 54, "AtEndOfStream while writing"
ts.Close
Set ts = fso.OpenTextFile(root & "/w.txt", 8)
CheckError "x = ts.Read(1)", 54, "reading a stream opened for appending"
ts.Close

' Errors of the file operations.
CheckError "fso.CreateTextFile root & ""/missing/x.txt""", 76, "CreateTextFile in a missing folder"
CheckError "fso.CreateTextFile root & ""/w.txt"", False", 58, "CreateTextFile without overwrite"
CheckError "fso.CreateFolder root", 58, "CreateFolder of an existing folder"
CheckError "Set f = fso.GetFile(root & ""/nothere"")", 53, "GetFile of a missing file"
CheckError "Set f = fso.GetFile(root)", 53, "GetFile of a folder"
CheckError "Set f = fso.GetFolder(root & ""/nothere"")", 76, "GetFolder of a missing folder"
CheckError "fso.CopyFile root & ""/nothere"", root & ""/x""", 53, "CopyFile of a missing file"
CheckError "fso.CopyFolder root & ""/nothere"", root & ""/x""", 76, "CopyFolder of a missing folder"
CheckError "fso.CopyFolder root & ""/w.txt"", root & ""/x""", 76, "CopyFolder of a file"
CheckError "fso.DeleteFile root & ""/nothere""", 53, "DeleteFile of a missing file"
CheckError "fso.DeleteFolder root & ""/nothere""", 76, "DeleteFolder of a missing folder"
CheckError "x = fso.OpenTextFile(root & ""/nothere"")", 53, "OpenTextFile of a missing file"
CheckError "x = fso.OpenTextFile(root & ""/w.txt"", 3)", 5, "an unknown mode"
CheckError "x = fso.GetStandardStream(3)", 5, "an unknown standard stream"

' Wildcards copy every match into a folder.
fso.CreateFolder root & "/src1"
fso.CreateFolder root & "/src2"
fso.CreateFolder root & "/dst"
fso.CopyFile root & "/*.txt", root & "/dst/"
Check fso.FileExists(root & "/dst/lines.txt") And fso.FileExists(root & "/dst/u.txt"), True, "CopyFile with a wildcard"
fso.CopyFolder root & "/src*", root & "/dst"
Check fso.FolderExists(root & "/dst/src1") And fso.FolderExists(root & "/dst/src2"), True, "CopyFolder with a wildcard"
CheckError "fso.CopyFile root & ""/*.none"", root & ""/dst/""", 53, "a wildcard that matches nothing"
fso.DeleteFile root & "/dst/*.txt"
Check fso.FileExists(root & "/dst/u.txt"), False, "DeleteFile with a wildcard"

' A folder lists its files in upper-case order.
For Each i In Array("B.txt", "a.txt", "C.txt")
  fso.CreateTextFile(root & "/dst/" & i).Close
Next
t = ""
For Each i In fso.GetFolder(root & "/dst").Files
  t = t & i.Name & ";"
Next
Check t, "a.txt;B.txt;C.txt;", "Files in upper-case order"
Set files = fso.GetFolder(root & "/dst").Files
fso.CreateTextFile(root & "/dst/D.txt").Close
Check files.Count, CLng(4), "a Files collection sees files made after it"

' CopyFolder: onto a file, into an existing folder, with wildcards, and without overwrite.
Dim src, dst
src = root & "\c_src1"
dst = root & "\c_dst"
fso.CreateFolder src
fso.CreateTextFile(dst).Close
CheckError "fso.CopyFolder src, dst", 58, "CopyFolder onto a file"
CheckError "fso.CopyFile src, dst", 53, "CopyFile of a folder"
fso.DeleteFile dst
fso.CopyFolder src, dst
fso.CopyFolder src, dst
Check fso.FolderExists(dst & "\c_src1"), False, "CopyFolder onto a folder copies its contents"
fso.CopyFolder src, dst & "\"
Check fso.FolderExists(dst & "\c_src1"), True, "CopyFolder into dst\ makes dst\src"
fso.DeleteFolder dst
CheckError "fso.CopyFolder root & ""\c_src*"", dst", 76, "wildcards into a missing folder"
fso.CreateTextFile(src & "\c_src1").Close
fso.CopyFolder src, dst, False
CheckError "fso.CopyFolder src, dst, False", 58, "CopyFolder without overwrite"
CheckError "fso.CopyFolder src, dst, True", 0, "CopyFolder with overwrite"

Check TypeName(fso.GetStandardStream(1)), "TextStream", "GetStandardStream"
Check fso.GetFile(root & "/lines.txt").Type, "Text Document", "the type of a text file"
fso.CopyFile root & "/lines.txt", root & "/lines.xyz"
Check fso.GetFile(root & "/lines.xyz").Type, "XYZ File", "the type of an unknown extension"
Check fso.GetFileVersion(root & "/lines.xyz"), "", "a file without a version"
fso.DeleteFolder root
Check fso.FolderExists(root), False, "DeleteFolder"

' --- Scripting.FileSystemObject on real files in a fresh temporary folder: text streams in UTF-8
' and Unicode, folders, copying and deleting, and the error numbers.
Dim fso_2, root_2, ts_2, f
Set fso_2 = CreateObject("Scripting.FileSystemObject")
root_2 = fso_2.BuildPath(fso_2.GetSpecialFolder(2).Path, "runtime_fso_" & fso_2.GetTempName())
fso_2.CreateFolder root_2
Check fso_2.FolderExists(root_2), True, "CreateFolder"

Set ts_2 = fso_2.CreateTextFile(root_2 & "\a.txt")
ts_2.WriteLine "héllo"
ts_2.Write "x"
ts_2.Close
Set ts_2 = fso_2.OpenTextFile(root_2 & "/a.txt")
Check ts_2.ReadLine, "héllo", "ReadLine"
Check ts_2.Line, CLng(2), "Line"
Check ts_2.ReadAll, "x", "ReadAll"
Check ts_2.AtEndOfStream, True, "AtEndOfStream"
ts_2.Close
Set ts_2 = fso_2.OpenTextFile(root_2 & "/a.txt", 8)
ts_2.Write "y"
ts_2.Close
Check fso_2.GetFile(root_2 & "/a.txt").Size, CLng(10), "UTF-8 size after appending"

Set ts_2 = fso_2.CreateTextFile(root_2 & "/u.txt", True, True)
ts_2.Write "€"
ts_2.Close
Check fso_2.GetFile(root_2 & "/u.txt").Size, CLng(4), "Unicode with its BOM"
Check fso_2.OpenTextFile(root_2 & "/u.txt").ReadAll, "€", "BOM honoured on reading"

Check fso_2.GetFileName(root_2 & "\a.txt"), "a.txt", "GetFileName"
Check fso_2.GetBaseName("x/y.tar.gz"), "y.tar", "GetBaseName"
Check fso_2.GetExtensionName("x\y.TXT"), "TXT", "GetExtensionName"
Check fso_2.GetParentFolderName("a\b\c.txt"), "a\b", "GetParentFolderName"
Check fso_2.BuildPath("a", "b"), "a/b", "BuildPath"

fso_2.CreateFolder root_2 & "/sub"
fso_2.CopyFile root_2 & "/*.txt", root_2 & "/sub/"
Set f = fso_2.GetFolder(root_2 & "/sub")
Check f.Files.Count, CLng(2), "CopyFile with wildcards"
Check f.Name, "sub", "Folder.Name"
fso_2.MoveFile root_2 & "/sub/a.txt", root_2 & "/sub/b.txt"
Check fso_2.FileExists(root_2 & "/sub/b.txt"), True, "MoveFile"
fso_2.DeleteFile root_2 & "/sub/*.txt"
Check fso_2.GetFolder(root_2 & "/sub").Files.Count, CLng(0), "DeleteFile with wildcards"

CheckError "Set x = fso_2.OpenTextFile(root_2 & ""/none.txt"")", 53, "open a missing file"
CheckError "fso_2.CreateFolder root_2 & ""/sub""", 58, "CreateFolder twice"
CheckError "Set x = fso_2.GetFolder(root_2 & ""/none"")", 76, "GetFolder missing"
CheckError "Set x = fso_2.CreateTextFile(root_2 & ""/a.txt"", False)", 58, "CreateTextFile without overwrite"
CheckError "x = fso_2.OpenTextFile(root_2 & ""/a.txt"", 2).ReadLine", 54, "reading a stream for writing"

fso_2.DeleteFolder root_2
Check fso_2.FolderExists(root_2), False, "DeleteFolder"
