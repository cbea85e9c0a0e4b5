' String functions under vbTextCompare and with awkward arguments: Windows' locale order for
' text comparison, Null and compare-mode checks of the search and slice functions.
Option Explicit
Dim x

' Text order: the base letter first, accents only when all base letters agree; case never.
Check StrComp(ChrW(233), "f", vbTextCompare), -1, "accented e sorts before f"
Check StrComp(ChrW(233), "e", vbTextCompare), 1, "accented e sorts after plain e"
Check StrComp(ChrW(233) & "a", "eb", vbTextCompare), -1, "base letters decide before accents"
Check StrComp(ChrW(201), ChrW(233), vbTextCompare), 0, "case of an accented letter ignored"
Check StrComp("e" & ChrW(&H301), ChrW(233), vbTextCompare), 0, "combining accent equals the composed letter"
Check StrComp(ChrW(223), "ss", vbTextCompare), 0, "sharp s reads as ss"
Check StrComp(ChrW(198), "AE", vbTextCompare), 0, "ae ligature reads as ae"
Check StrComp(ChrW(248), "p", vbTextCompare), -1, "o with stroke sorts among the o's"
Check StrComp(ChrW(&H159), "s", vbTextCompare), -1, "r with caron sorts among the r's"
Check StrComp("_", "a", vbTextCompare), -1, "underscore before letters in text order"
Check StrComp("_", "A", vbBinaryCompare), 1, "underscore after capitals in code order"
Check StrComp("~", "0", vbTextCompare), -1, "punctuation before digits"
Check StrComp("+", "~", vbTextCompare), 1, "plus sorts after the other punctuation"
Check StrComp("9", "a", vbTextCompare), -1, "digits before letters"
Check StrComp("Z", "a", vbTextCompare), 1, "letters by alphabet, not by code"
Check StrComp("Z", "a", vbBinaryCompare), -1, "binary is code order"
Check StrComp("co-op", "coop", vbTextCompare), 1, "hyphen only breaks a tie"
Check StrComp("co-op", "cop", vbTextCompare), -1, "hyphen is skipped before the tie"
Check StrComp("it's", "its", vbTextCompare), 1, "apostrophe only breaks a tie"
Check StrComp("a" & Chr(1), "a", vbTextCompare), 0, "control characters count for nothing"
Check StrComp("abc", "ABD", vbTextCompare), -1, "plain text"
Check StrComp("abc", "AB", vbTextCompare), 1, "longer text after its prefix"
Check StrComp("1", 1.0, vbTextCompare), 0, "numbers compare as their text"
Check StrComp(Empty, "ABC", vbTextCompare), -1, "Empty is the empty text"
Check StrComp("a", "a", "1"), 0, "compare mode given as text"
CheckError "x = StrComp(""a"", ""b"", 2)", 5, "vbDatabaseCompare is refused"
CheckError "x = StrComp(""a"", ""b"", -1)", 5, "negative compare mode"

' The searching functions fold case and nothing else.
Check InStr(1, "R" & ChrW(201) & "SUM" & ChrW(201), ChrW(233) & "s", vbTextCompare), CLng(2), "InStr folds accented capitals"
Check InStr(1, "resume", ChrW(233), vbTextCompare), CLng(0), "InStr keeps accents apart"
Check InStr(3, "abcdefgh", "FG", 1.4), CLng(6), "compare mode rounds"
Check InStr(1, "abc" & Chr(0) & "ABC", Chr(0) & "a", 1), CLng(4), "a NUL is an ordinary character"
Check InStr(20, "abcdef", ""), CLng(0), "empty needle past the end"
Check InStr(4, "", ""), CLng(0), "empty needle in empty text"
CheckError "x = InStr(2, ""abcd"", ""abcd"", 10)", 5, "InStr compare mode out of range"
CheckError "x = InStr(2, ""abcd"", ""abcd"", Null)", 94, "InStr Null compare mode"
CheckError "x = InStr(Null, ""abcd"", ""abcd"")", 94, "InStr Null start"
Check InStr(2, Null, "abcd", 0), Null, "InStr Null text"
Check InStrRev("abcd", "Ab", -1, 1), CLng(1), "InStrRev text compare"
Check InStrRev("abcd", "bc", 2.6), CLng(2), "InStrRev start rounds"
Check InStrRev(1234, 34), CLng(3), "InStrRev of a number"
CheckError "x = InStrRev(""abcd"", Null)", 94, "InStrRev refuses Null text"
CheckError "x = InStrRev(Null, ""abcd"", 2, 0)", 94, "InStrRev refuses Null text at any start"
CheckError "x = InStrRev(""abcd"", ""abcd"", 2, 10)", 5, "InStrRev compare mode out of range"
x = Split("abcZdefZghi", "z", 3, 1)
Check UBound(x), CLng(2), "Split text compare"
CheckError "x = Split(""a-b"", ""-"", -1, 2)", 5, "Split compare mode out of range"
CheckError "x = Split(""a-b"", ""-"", Null)", 94, "Split Null count"
x = Filter(Array("Apple", "b" & ChrW(201), "cherry"), ChrW(233), True, vbTextCompare)
Check UBound(x), CLng(0), "Filter text compare folds accented capitals"
CheckError "x = Filter(Array(""a""), ""a"", True, 3)", 5, "Filter compare mode out of range"

' Replace refuses Null anywhere, the text included.
CheckError "x = Replace(Null, ""x"", ""y"")", 94, "Replace Null text"
CheckError "x = Replace(""xx"", ""x"", ""y"", 1, 1, 8)", 5, "Replace compare mode out of range"
CheckError "x = Replace(""xx"", ""x"", ""y"", 1, Null)", 94, "Replace Null count"
Check Replace("xxx", "", "y", 2), "xx", "Replace with an empty find keeps the tail"
Check Replace("aa testAA(aA)", "Aa", "!", 1, -1, 1), "! test!(!)", "Replace text compare"

' Mid reads a Null length before anything else.
CheckError "x = Mid(""test"", ""a"", Null)", 94, "Mid Null length before a bad start"
CheckError "x = Mid(""test"", 0, Null)", 94, "Mid Null length before a zero start"
CheckError "x = Mid(""test"", ""a"", 1)", 13, "Mid start no number"
CheckError "x = Mid(""test"", Empty, 1)", 5, "Mid Empty start"
CheckError "x = Mid(Null, -1, -1)", 5, "Mid Null text, bad start"
Check Mid(Null, 1, 1), Null, "Mid Null text"

' Case mapping of letters beyond ASCII.
Check UCase(ChrW(233) & ChrW(255) & ChrW(223)), ChrW(201) & ChrW(376) & ChrW(223), "UCase accents, y diaeresis, sharp s"
Check LCase(ChrW(201) & ChrW(376) & ChrW(&H160)), ChrW(233) & ChrW(255) & ChrW(&H161), "LCase accents"
Check UCase(True), "TRUE", "UCase of a Boolean"
