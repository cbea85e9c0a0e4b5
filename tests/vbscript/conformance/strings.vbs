' The string functions: Null and Empty arguments, lengths, start positions and compare modes.

' --- String functions under vbTextCompare and with awkward arguments: Windows' locale order for
' text comparison, Null and compare-mode checks of the search and slice functions.
Dim x

' Text order: the base letter first, accents only when all base letters agree; case never.
CheckEach Array("StrComp(ChrW(233), ""f"", vbTextCompare)", -1, _
  "StrComp(ChrW(233), ""e"", vbTextCompare)", 1, _
  "StrComp(ChrW(233) & ""a"", ""eb"", vbTextCompare)", -1, _
  "StrComp(ChrW(201), ChrW(233), vbTextCompare)", 0, _
  "StrComp(""e"" & ChrW(&H301), ChrW(233), vbTextCompare)", 0, _
  "StrComp(ChrW(223), ""ss"", vbTextCompare)", 0, "StrComp(ChrW(198), ""AE"", vbTextCompare)", 0, _
  "StrComp(ChrW(248), ""p"", vbTextCompare)", -1, _
  "StrComp(ChrW(&H159), ""s"", vbTextCompare)", -1, "StrComp(""_"", ""a"", vbTextCompare)", -1, _
  "StrComp(""_"", ""A"", vbBinaryCompare)", 1, "StrComp(""~"", ""0"", vbTextCompare)", -1, _
  "StrComp(""+"", ""~"", vbTextCompare)", 1, "StrComp(""9"", ""a"", vbTextCompare)", -1, _
  "StrComp(""Z"", ""a"", vbTextCompare)", 1, "StrComp(""Z"", ""a"", vbBinaryCompare)", -1, _
  "StrComp(""co-op"", ""coop"", vbTextCompare)", 1, _
  "StrComp(""co-op"", ""cop"", vbTextCompare)", -1, _
  "StrComp(""it's"", ""its"", vbTextCompare)", 1, _
  "StrComp(""a"" & Chr(1), ""a"", vbTextCompare)", 0, _
  "StrComp(ChrW(&HFF21) & ChrW(&HFF42), ""aB"", vbTextCompare)", 0, _
  "StrComp("""", Chr(2), vbTextCompare)", 0, "StrComp(""a"" & Chr(1) & ""b"" & Chr(127), ""ab"", 1)", 0, _
  "StrComp(""abc"", ""ABD"", vbTextCompare)", -1, "StrComp(""abc"", ""AB"", vbTextCompare)", 1, _
  "StrComp(""1"", 1.0, vbTextCompare)", 0, "StrComp(Empty, ""ABC"", vbTextCompare)", -1, _
  "StrComp(""a"", ""a"", ""1"")", 0)
CheckErrors Array("x = StrComp(""a"", ""b"", 2)", 5, "x = StrComp(""a"", ""b"", -1)", 5)

' The searching functions fold case and nothing else.
CheckEach Array("InStr(1, ""R"" & ChrW(201) & ""SUM"" & ChrW(201), ChrW(233) & ""s"", vbTextCompare)", CLng(2), _
  "InStr(1, ""resume"", ChrW(233), vbTextCompare)", CLng(0), _
  "InStr(3, ""abcdefgh"", ""FG"", 1.4)", CLng(6), _
  "InStr(1, ""abc"" & Chr(0) & ""ABC"", Chr(0) & ""a"", 1)", CLng(4), _
  "InStr(20, ""abcdef"", """")", CLng(0), "InStr(4, """", """")", CLng(0))
CheckErrors Array("x = InStr(2, ""abcd"", ""abcd"", 10)", 5, _
  "x = InStr(2, ""abcd"", ""abcd"", Null)", 94, "x = InStr(Null, ""abcd"", ""abcd"")", 94)
CheckEach Array("InStr(2, Null, ""abcd"", 0)", Null, _
  "InStrRev(""abcd"", ""Ab"", -1, 1)", CLng(1), "InStrRev(""abcd"", ""bc"", 2.6)", CLng(2), _
  "InStrRev(1234, 34)", CLng(3))
CheckErrors Array("x = InStrRev(""abcd"", Null)", 94, "x = InStrRev(Null, ""abcd"", 2, 0)", 94, _
  "x = InStrRev(""abcd"", ""abcd"", 2, 10)", 5)
x = Split("abcZdefZghi", "z", 3, 1)
Check UBound(x), CLng(2), "Split text compare"
CheckErrors Array("x = Split(""a-b"", ""-"", -1, 2)", 5, "x = Split(""a-b"", ""-"", Null)", 94)
x = Filter(Array("Apple", "b" & ChrW(201), "cherry"), ChrW(233), True, vbTextCompare)
Check UBound(x), CLng(0), "Filter text compare folds accented capitals"
CheckError "x = Filter(Array(""a""), ""a"", True, 3)", 5, "Filter compare mode out of range"

' Replace refuses Null anywhere, the text included.
CheckErrors Array("x = Replace(Null, ""x"", ""y"")", 94, _
  "x = Replace(""xx"", ""x"", ""y"", 1, 1, 8)", 5, _
  "x = Replace(""xx"", ""x"", ""y"", 1, Null)", 94)
CheckEach Array("Replace(""xxx"", """", ""y"", 2)", "xx", _
  "Replace(""aa testAA(aA)"", ""Aa"", ""!"", 1, -1, 1)", "! test!(!)")

' Mid reads a Null length before anything else.
CheckErrors Array("x = Mid(""test"", ""a"", Null)", 94, "x = Mid(""test"", 0, Null)", 94, _
  "x = Mid(""test"", ""a"", 1)", 13, "x = Mid(""test"", Empty, 1)", 5, _
  "x = Mid(Null, -1, -1)", 5)
Check Mid(Null, 1, 1), Null, "Mid Null text"

' Case mapping of letters beyond ASCII.
CheckEach Array("UCase(ChrW(233) & ChrW(255) & ChrW(223))", ChrW(201) & ChrW(376) & ChrW(223), _
  "LCase(ChrW(201) & ChrW(376) & ChrW(&H160))", ChrW(233) & ChrW(255) & ChrW(&H161), _
  "UCase(True)", "TRUE")

' --- String functions at their edges: Null and Empty arguments, zero and negative lengths, start positions and compare modes.
CheckEach Array("Left(""abc"", 0)", "", "Left(""abc"", 10)", "abc")
CheckError "x = Left(""abc"", -1)", 5, "Left negative"
CheckEach Array("TypeName(Left(Null, 1))", "Null", "Left(123, 2)", "12", _
  "Right(""abc"", 2)", "bc", "Right(""abc"", 5)", "abc", "Mid(""abcdef"", 2, 3)", "bcd", _
  "Mid(""abc"", 2)", "bc", "Mid(""abc"", 4)", "", "Mid(""abc"", 2, 0)", "")
CheckErrors Array("x = Mid(""abc"", 0)", 5, "x = Mid(""abc"", 1, -1)", 5)
CheckEach Array("TypeName(Mid(Null, 1))", "Null", "Len(Empty)", CLng(0), _
  "TypeName(Len(Null))", "Null", "Len(12.5)", CLng(4), "TypeName(Len(""a""))", "Long", _
  "InStr(""abc"", """")", CLng(1), "InStr("""", ""a"")", CLng(0), _
  "InStr(2, ""abcabc"", ""a"")", CLng(4), "InStr(1, ""ABC"", ""b"", 1)", CLng(2), _
  "InStr(1, ""ABC"", ""b"", 0)", CLng(0), "InStr(3, ""abc"", """")", CLng(3), _
  "InStr(10, ""abc"", ""a"")", CLng(0), "TypeName(InStr(Null, ""a""))", "Null", _
  "TypeName(InStr(""a"", Null))", "Null")
CheckError "x = InStr(0, ""a"", ""a"")", 5, "InStr start 0"
CheckEach Array("InStrRev(""abcabc"", ""b"")", CLng(5), _
  "InStrRev(""abcabc"", ""b"", 4)", CLng(2), "InStrRev(""abc"", """")", CLng(3), _
  "InStrRev(""ABC"", ""a"", -1, 1)", CLng(1), "Replace(""aaaa"", ""a"", ""b"", 1, 2)", "bbaa", _
  "Replace(""aaaa"", ""a"", ""b"", 3)", "bb", _
  "Replace(""ABab"", ""a"", ""x"", 1, -1, 1)", "xBxb", "Replace(""abc"", """", ""x"")", "abc", _
  "Replace(""abc"", ""b"", """")", "ac", "Replace(""abab"", ""ab"", ""abab"")", "abababab")
CheckError "x = Replace(Null, ""a"", ""b"")", 94, "Replace(Null) is refused"
CheckEach Array("Replace(""abc"", ""b"", ""x"", 1, 0)", "abc", "Split(""a,b,,c"", "","")(2)", "", _
  "UBound(Split(""abc"", """"))", CLng(0), "UBound(Split(""a b  c""))", CLng(3), _
  "Split(""a,b,c"", "","", 2)(1)", "b,c", "UBound(Split(""aXbxc"", ""x"", -1, 1))", CLng(2), _
  "UBound(Split(""aXbxc"", ""x""))", CLng(1), "UBound(Split(""abc"", "",""))", CLng(0), _
  "Join(Array(""a"", ""b""))", "a b", "Join(Array(), "","")", "", _
  "Join(Array(1, 2), """")", "12", "Join(Split(""a,b"", "",""), ""-"")", "a-b")
f = Filter(Array("abc", "def", "cab"), "ab")
CheckEach Array("UBound(f)", CLng(1), "f(1)", "cab", _
  "Filter(Array(""abc"", ""def""), ""ab"", False)(0)", "def", _
  "UBound(Filter(Array(""ABC"", ""x""), ""b"", True, 1))", CLng(0), _
  "UBound(Filter(Array(""a"", ""b""), ""z""))", CLng(-1), "StrReverse(""abc"")", "cba", _
  "StrReverse("""")", "", "TypeName(LCase(Null))", "Null", "LCase(123)", "123", _
  "UCase(""aBc"")", "ABC", "Trim(""  a  "")", "a", "LTrim(""  a "")", "a ", _
  "RTrim("" a  "")", " a", "Len(Trim(vbTab & ""a""))", CLng(2), "Space(3)", "   ", _
  "Space(0)", "")
CheckError "x = Space(-1)", 5, "Space negative"
CheckEach Array("String(3, ""ab"")", "aaa", "String(3, 65)", "AAA", "String(0, ""a"")", "", _
  "StrComp(""a"", ""B"")", 1, "StrComp(""a"", ""B"", 1)", -1, "StrComp(""abc"", ""abc"")", 0, _
  "TypeName(StrComp(""a"", Null))", "Null", "TypeName(StrComp(""a"", ""b""))", "Integer", _
  "LCase(ChrW(192) & ChrW(201))", ChrW(224) & ChrW(233), "Left(""abc"", 1.5)", "ab", _
  "Left(""abc"", 2.5)", "ab")
CheckError "x = String(2, """")", 5, "String of empty text"
CheckEach Array("Filter(Array(1, 12, 3), 1)(1)", "12", _
  "TypeName(StrComp(Null, Null))", "Null")
CheckErrors Array("x = InStrRev(""abc"", ""c"", 0)", 5, _
  "x = Replace(""abc"", ""b"", ""x"", 0)", 5)
Check Replace("abc", "b", "x", 4), "", "Replace from past the end"

' --- The string family as Windows runs it: letters beyond ASCII, the euro sign both ways
' through Windows-1252, and Escape of what is not a letter.
CheckEach Array("UCase(Empty)", "", "AscW(""€"")", 8364, "Asc(""€"")", 128, _
  "ChrW(8364)", "€")

CheckErrors Array("x = Space(2147483648)", 7, "x = String(2147483648, ""x"")", 7, _
  "x = Chr(256)", 5, "x = Left(""abc"", Null)", 94, "x = StrReverse(Null)", 94, _
  "x = Len()", 450)

' --- The byte functions cut text as its bytes, two to a character, and may leave an odd byte.
CheckEach Array("AscB(""A"")", CByte(65), "LenB(LeftB(""ABC"", 3))", CLng(3), _
  "Len(LeftB(""ABC"", 3))", CLng(1), "LenB(RightB(""ABC"", 3))", CLng(3), _
  "LenB(MidB(""ABC"", 2, 3))", CLng(3), "LenB(ChrB(65))", CLng(1), "Len(ChrB(65))", CLng(0), _
  "AscB(ChrB(200))", CByte(200), "ChrB(65) & ChrB(0)", "A", _
  "ChrB(65) & ChrB(0) & ChrB(66) & ChrB(0)", "AB", "LenB(""x"" & ChrB(65))", CLng(3), _
  "LeftB(""ABC"", 3) & ChrB(0)", "AB", "LeftB(""ABC"", 4)", "AB", "RightB(""ABC"", 2)", "C", _
  "AscB(MidB(""AB"", 3))", CByte(66), "InStrB(""ID42NAME"", ""NAME"")", CLng(9), _
  "InStrB(3, ""ID42NAME"", ""I"")", CLng(0), "IsNull(MidB(Null, 1))", True, _
  "LeftB(""ID42"", 4) & ""|"" & MidB(""ID42"", 5, 4)", "ID|42")
CheckError "x = AscB("""")", 5, "AscB of empty text"

' --- Slices, searches, Replace, case, trim, repetition and character codes at their edges.
Dim mid1
CheckEach Array("Len(""h"" & ChrW(233) & ""llo"")", CLng(5), "Len(-123)", CLng(4), _
  "LenB(""abc"")", CLng(6), "Left(""abcdef"", 3)", "abc", "Left(12345.5, 3)", "123", _
  "InStr(5, ""abc"", """")", CLng(0), _
  "InStrRev(""abc"", ""c"", 2)", CLng(0), "InStrRev(""abc"", """", 2)", CLng(2), _
  "InStrRev(""abc"", ""a"", 9)", CLng(0), "Replace(""a.b.c"", ""."", ""--"")", "a--b--c", _
  "Replace(""aXbxc"", ""x"", ""_"")", "aXb_c", "String(2, 321)", "AA", "TypeName(String(2, Null))", "Null", "Asc(ChrW(20013))", 63, _
  "AscW(ChrW(20013))", 20013, "AscW(ChrW(65535))", -1, "AscW(Chr(128))", 8364, _
  "ChrW(-1)", ChrW(65535))
CheckEach Array("Escape(""a b/c@d*_+-."" & ChrW(233) & ChrW(20013))", "a%20b/c@d*_+-.%E9%u4E2D", _
  "Unescape(""a%20b%u4E2D%zz%u12"")", "a b" & ChrW(20013) & "%zz%u12")
CheckErrors Array("x = InStr(Null, ""abc"", ""a"")", 94, _
  "x = Replace(""abc"", Null, ""b"")", 94, _
  "x = Replace(""abc"", ""a"", ""b"", 1, -2)", 5, "x = Asc(Null)", 94, "x = ChrW(65536)", 5, _
  "mid1 = ""abcdef"" : Mid(mid1, 2) = ""XY""", 501)
' Escape and Unescape undo each other over a spread of characters.
mid1 = ""
For x = 1 To &H3000 Step 7 : mid1 = mid1 & ChrW(x) : Next
Check Unescape(Escape(mid1)) = mid1, True, "Escape round trip"
