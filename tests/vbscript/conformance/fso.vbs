' Scripting.FileSystemObject: path functions, files, folders and text streams.

' --- FileSystemObject details scripts written for Windows rely on: the path functions keep the
' separators they are given, text streams split lines at line feeds only, Unicode files stay
' Unicode when appended to, and the error numbers of the file operations.
Dim fso, root, ts, i, t
Set fso = CreateObject("Scripting.FileSystemObject")

' Path text, worked out without touching the disk.
CheckEach Array("fso.GetParentFolderName(""a\b\c"")", "a\b", _
  "fso.GetParentFolderName(""a/b/c"")", "a/b", "fso.GetParentFolderName(""a/b//\\"")", "a", _
  "fso.GetParentFolderName(""C:\\x"")", "C:\", "fso.GetParentFolderName(""ac:\x"")", "ac:", _
  "fso.GetParentFolderName(""name"")", "", "fso.GetFileName(""a\"")", "a", _
  "fso.GetFileName(""C:"")", "", "fso.GetFileName(""/\"")", "", _
  "fso.GetBaseName(""a/a.b.c"")", "a.b", "fso.GetBaseName("".a"")", "", _
  "fso.GetExtensionName(""a/b.tar.gz"")", "gz", "fso.GetExtensionName(""a/b"")", "", _
  "fso.GetDriveName(""C:\a.txt"")", "C:", "fso.GetDriveName(""o:"")", "o:", _
  "fso.GetDriveName(""\\srv\share\x"")", "\\srv\share", "fso.GetDriveName(""OO:"")", "", _
  "fso.GetDriveName(""/usr/lib"")", "", _
  "fso.BuildPath(""C:\path"", ""..\n.tmp"")", "C:\path\..\n.tmp", _
  "fso.BuildPath(""C:\path"", ""\n.tmp"")", "C:\path\n.tmp", _
  "fso.BuildPath(""C:\path\"", ""\n.tmp"")", "C:\path\n.tmp", _
  "fso.BuildPath(""C:\path\"", ""\\n.tmp"")", "C:\path\\n.tmp", _
  "fso.BuildPath(""C:"", ""n.tmp"")", "C:n.tmp", "fso.BuildPath(""/usr"", ""lib"")", "/usr/lib", _
  "Left(fso.GetTempName, 3) & Right(fso.GetTempName, 4)", "rad.tmp", _
  "Len(fso.GetTempName)", CLng(12))

root = fso.BuildPath(fso.GetSpecialFolder(2).Path, "obj_fso_" & fso.GetTempName())
fso.CreateFolder root

' Lines end at LF (with a CR before it); a lone CR is part of the line.
Set ts = fso.CreateTextFile(root & "/lines.txt")
ts.Write "first line" & vbCrLf & "second" & vbLf & vbLf & vbCr & "t" & vbCr & vbCr & "e " & vbCr & "st" & vbLf & "last"
ts.Close
Set ts = fso.OpenTextFile(root & "/lines.txt")
CheckEach Array("ts.ReadLine", "first line", "ts.ReadLine", "second", "ts.ReadLine", "", _
  "ts.ReadLine", vbCr & "t" & vbCr & vbCr & "e " & vbCr & "st", "ts.Line", CLng(5), _
  "ts.ReadLine", "last", "ts.AtEndOfStream", True)
CheckErrors Array("x = ts.ReadLine", 62, "x = ts.ReadAll", 62, "x = ts.Read(1)", 62, _
  "ts.Write ""x""", 54)
ts.Close
Set ts = fso.OpenTextFile(root & "/lines.txt")
CheckError "x = ts.Read(-1)", 5, "a negative count"
Check ts.Read(0), "", "Read(0)"
ts.SkipLine
CheckEach Array("ts.Read(3)", "sec", "ts.Column", CLng(4))
ts.Close

' Appending with the default format continues a Unicode file in Unicode; reading follows its
' byte-order mark whatever format is asked for.
Set ts = fso.CreateTextFile(root & "/u.txt", True, True)
ts.Write "ab"
ts.Close
Set ts = fso.OpenTextFile(root & "/u.txt", 8, False, -2)
ts.Write "c"
ts.Close
CheckEach Array("fso.GetFile(root & ""/u.txt"").Size", CLng(8), _
  "fso.OpenTextFile(root & ""/u.txt"", 1, False, -1).ReadAll", "abc", _
  "fso.OpenTextFile(root & ""/u.txt"").ReadAll", "abc")

Set ts = fso.OpenTextFile(root & "/made.txt", 1, True)
Check ts.AtEndOfStream, True, "reading with the create flag makes an empty file"
ts.Close
Check fso.FileExists(root & "/made.txt"), True, "the made file stays"
Set ts = fso.OpenTextFile(root & "/w.txt", 2, True)
CheckErrors Array("x = ts.ReadAll", 54, "x = ts.AtEndOfStream", 54)
ts.Close
Set ts = fso.OpenTextFile(root & "/w.txt", 8)
CheckError "x = ts.Read(1)", 54, "reading a stream opened for appending"
ts.Close

' Errors of the file operations.
CheckErrors Array("fso.CreateTextFile root & ""/missing/x.txt""", 76, _
  "fso.CreateTextFile root & ""/w.txt"", False", 58, "fso.CreateFolder root", 58, _
  "Set f = fso.GetFile(root & ""/nothere"")", 53, "Set f = fso.GetFile(root)", 53, _
  "Set f = fso.GetFolder(root & ""/nothere"")", 76, _
  "fso.CopyFile root & ""/nothere"", root & ""/x""", 53, _
  "fso.CopyFolder root & ""/nothere"", root & ""/x""", 76, _
  "fso.CopyFolder root & ""/w.txt"", root & ""/x""", 76, _
  "fso.DeleteFile root & ""/nothere""", 53, "fso.DeleteFolder root & ""/nothere""", 76, _
  "x = fso.OpenTextFile(root & ""/nothere"")", 53, _
  "x = fso.OpenTextFile(root & ""/w.txt"", 3)", 5, "x = fso.GetStandardStream(3)", 5)

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
CheckErrors Array("fso.CopyFolder src, dst", 58, "fso.CopyFile src, dst", 53)
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
CheckErrors Array("fso.CopyFolder src, dst, False", 58, "fso.CopyFolder src, dst, True", 0)

CheckEach Array("TypeName(fso.GetStandardStream(1))", "TextStream", _
  "fso.GetFile(root & ""/lines.txt"").Type", "Text Document")
fso.CopyFile root & "/lines.txt", root & "/lines.xyz"
CheckEach Array("fso.GetFile(root & ""/lines.xyz"").Type", "XYZ File", _
  "fso.GetFileVersion(root & ""/lines.xyz"")", "")

' Text goes out as UTF-8 with CR LF; a UTF-8 byte-order mark is read past.
Set ts = fso.CreateTextFile(root & "\a.txt")
ts.WriteLine "h" & ChrW(233) & "llo"
ts.Write "x"
ts.WriteBlankLines 2
ts.Close
Set ts = fso.OpenTextFile(root & "\a.txt")
CheckEach Array("fso.GetFile(root & ""/a.txt"").Size", CLng(13), "ts.ReadLine", "h" & ChrW(233) & "llo", _
  "ts.Line", CLng(2), "ts.Read(1)", "x", "ts.Column", CLng(2), "ts.AtEndOfLine", True)
ts.SkipLine
Check ts.ReadAll, vbCrLf, "ReadAll after SkipLine"
ts.Close
Set ts = fso.CreateTextFile(root & "/bom.txt")
ts.Write ChrW(&HFEFF) & "ok" & vbLf & "next"
ts.Close
Set ts = fso.OpenTextFile(root & "/bom.txt")
CheckEach Array("ts.ReadLine", "ok", "ts.ReadLine", "next")
ts.Close

' Files and folders as objects; MoveFile into a folder, never onto a file.
Dim f, n
fso.CreateFolder root & "/sub"
fso.CreateTextFile(root & "/sub/two.log").Write "22"
Set f = fso.GetFolder(root & "/sub")
CheckEach Array("f.Name", "sub", "f.Size", CLng(2), _
  "fso.GetFile(root & ""/sub/two.log"").ParentFolder.Path", f.Path, _
  "fso.GetAbsolutePathName(""/x/./y/../z\"")", "/x/z")
fso.MoveFile root & "/sub/two.log", root & "/"
Check fso.FileExists(root & "/two.log"), True, "MoveFile into a folder"
CheckError "fso.MoveFile root & ""/a.txt"", root & ""/two.log""", 58, "MoveFile onto a file"
n = ""
For Each f In fso.GetFolder(root).SubFolders
  n = n & f.Name & ";"
Next
Check n, "c_dst;c_src1;dst;src1;src2;sub;", "SubFolders in name order"

fso.DeleteFolder root
Check fso.FolderExists(root), False, "DeleteFolder"
