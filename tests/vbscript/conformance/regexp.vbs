' VBScript.RegExp: its pattern rules, Execute, Matches, SubMatches and Replace.

' --- VBScript.RegExp reads its patterns by its own rules, not PCRE's: what those rules lack is
' refused with the pattern errors or read literally, and IgnoreCase folds letters beyond ASCII.
Dim re, p, ms, m, t
Set re = New RegExp
CheckEach Array("re.Pattern", "", "re.Multiline", False, "re.Global", False, "re.IgnoreCase", False)

' Syntax from other regular-expression dialects.
For Each p In Array("(?<name>a)", "(?<=a)b", "(?<!a)b", "(?i)a", "(?>a)", "(?#note)a", _
                    "(?P<n>a)", "(?|a)", "a)", "ab\")
  re.Pattern = p
  CheckError "x = re.Test(""ab"")", 5017, "refused: " & p
Next
For Each p In Array("a++", "a*+", "a?+", "a{2}+", "a**", "^*", "$+", "\b*", "a|*", "(*)", "x{1}{2}")
  re.Pattern = p
  CheckError "x = re.Test(""ab"")", 5018, "unexpected quantifier: " & p
Next
re.Pattern = "[ab"
CheckError "x = re.Test(""ab"")", 5019, "open class"
re.Pattern = "((a)"
CheckError "x = re.Test(""ab"")", 5020, "open group"
re.Pattern = "[b-a]"
CheckError "x = re.Test(""ab"")", 5021, "reversed range"

' Escapes PCRE knows but VBScript reads as the letter itself; braces that are no quantifier.
re.Pattern = "\p{L}"
CheckEach Array("re.Test(""p{L}"")", True, "re.Test(""x"")", False)
re.Pattern = "^\Qa\E$"
Check re.Test("QaE"), True, "\Q and \E are letters"
re.Pattern = "^a{$"
Check re.Test("a{"), True, "a lone brace is itself"
re.Pattern = "^x{a}$"
Check re.Test("x{a}"), True, "braces around a letter are themselves"
re.Pattern = "^a{,2}$"
Check re.Test("a{,2}"), True, "{,n} is no quantifier"
re.Pattern = "^\z\A$"
Check re.Test("zA"), True, "\z and \A are letters"
re.Pattern = "^[[:alpha:]]$"
CheckEach Array("re.Test(""a"")", False, "re.Test("":]"")", True)

' Character escapes.
re.Pattern = "^\x41\u0042\103\0\cJ\v$"
Check re.Test("ABC" & Chr(0) & vbLf & vbVerticalTab), True, "hex, unicode, octal, control, \v"
re.Pattern = "^\xZ\u12$"
Check re.Test("xZu12"), True, "incomplete \x and \u are the letters"
re.Pattern = "^[\b]$"
Check re.Test(Chr(8)), True, "[\b] is a backspace"
re.Pattern = "^\8$"
Check re.Test("8"), True, "\8 without groups is the digit"
re.Pattern = "^(a)\1\11$"
Check re.Test("aaa1"), True, "\1 names a group, \11 with one group is \1 then 1"
re.Pattern = "^\11$"
Check re.Test(Chr(9)), True, "\11 without groups is a tab"
re.Pattern = "^[]$"
Check re.Test(""), False, "[] matches nothing"
re.Pattern = "^[^]$"
Check re.Test(vbLf), True, "[^] matches any character"
re.Pattern = "[\d-z]"
CheckError "x = re.Test(""ab"")", 5021, "a shorthand in a range"
re.Pattern = "^[a-]+$"
Check re.Test("a-"), True, "a dash at the end is itself"

' "." stops only at a line feed; \s \d \w and \b know ASCII only.
re.Pattern = "^.$"
CheckEach Array("re.Test(vbCr)", True, "re.Test(vbLf)", False)
re.Pattern = "^\w+$"
CheckEach Array("re.Test(""abc_09"")", True, "re.Test(""caf"" & ChrW(233))", False)
re.Pattern = "\s"
Check re.Test(ChrW(160)), False, "no-break space is no \s"
re.Pattern = "^\d$"
Check re.Test(ChrW(&H663)), False, "\d is ASCII digits only"

' IgnoreCase beyond ASCII, in literals and classes.
re.IgnoreCase = True
re.Pattern = "^" & ChrW(233) & "t" & ChrW(233) & "$"
Check re.Test(ChrW(201) & "T" & ChrW(201)), True, "e acute folds"
re.Pattern = "^[" & ChrW(224) & "-" & ChrW(254) & "]+$"
Check re.Test(ChrW(192) & ChrW(201)), True, "a range of Latin-1 letters folds"
re.Pattern = "^" & ChrW(&H3C3) & "$"
Check re.Test(ChrW(&H3A3)), True, "Greek sigma folds"
re.Pattern = "^[^" & ChrW(233) & "]$"
Check re.Test(ChrW(201)), False, "a negated class folds too"
re.IgnoreCase = False
re.Pattern = "^" & ChrW(233) & "$"
Check re.Test(ChrW(201)), False, "case counts without IgnoreCase"

' Multiline: ^ and $ also next to CR and LF.
re.Multiline = True
re.Global = True
re.Pattern = "^\w+$"
Check re.Execute("ab" & vbCrLf & "cd" & vbLf & "ef").Count, CLng(3), "lines ended by CR LF and LF"
re.Multiline = False
Check re.Execute("ab" & vbCrLf & "cd").Count, CLng(0), "without Multiline $ is the very end"
re.Pattern = "b$"
Check re.Test("ab" & vbLf), False, "$ does not match before a final line feed"

' Arguments convert as COM converts them to text.
re.Pattern = "1"
Check re.Replace(True, "x"), "-x", "True is -1"
re.Pattern = "\d"
CheckEach Array("re.Replace(""a5"", False)", "a0", "re.Replace(123, 4.5)", "4.54.54.5")
re.Pattern = True
Check re.Pattern, "-1", "a boolean pattern"
CheckErrors Array("x = re.Replace(Null, ""x"")", 13, "x = re.Test(Null)", 13, _
  "x = re.Execute(Null)", 13)

' An object as the replacement is called for each match with the match, the sub-matches, the
' position and the whole text; what it returns goes in as it is.
Function qvUpper(m, g1, pos, src)
  qvUpper = UCase(m) & pos & "$1"
End Function
Class qvBracket
  Public Default Function Apply(m, pos, src)
    Apply = "[" & m & "@" & pos & "/" & Len(src) & "]"
  End Function
End Class
re.Pattern = "(b)"
re.Global = True
Check re.Replace("abcb", GetRef("qvUpper")), "aB1$1cB3$1", "a GetRef function replaces"
re.Global = False
Check re.Replace("abcb", GetRef("qvUpper")), "aB1$1cb", "only the first without Global"
re.Pattern = "c"
re.Global = True
Check re.Replace("abcbc", New qvBracket), "ab[c@2/5]b[c@4/5]", "a class's default method replaces"

' --- VBScript.RegExp with JavaScript's pattern rules: Execute, Matches, SubMatches, Replace with
' the dollar forms, the options, and the error of a bad pattern.
Dim re_2, ms_2, m_2, total
Set re_2 = New RegExp
re_2.Pattern = "(\w+)@(\w+)\.com"
re_2.Global = True
Set ms_2 = re_2.Execute("mail ann@site.com, bob@web.com")
Check ms_2.Count, CLng(2), "Count"
Set m_2 = ms_2(0)
CheckEach Array("m_2.FirstIndex", CLng(5), "m_2.Length", CLng(12), "m_2.Value", "ann@site.com", _
  "m_2.SubMatches(1)", "site", "m_2.SubMatches.Count", CLng(2))
total = ""
For Each m_2 In ms_2
  total = total & m_2 & ";"
Next
CheckEach Array("total", "ann@site.com;bob@web.com;", _
  "re_2.Replace(""ann@site.com"", ""$2 <$1>"")", "site <ann>")
re_2.Pattern = "b"
CheckEach Array("re_2.Replace(""abc"", ""[$&|$`|$']"")", "a[b|a|c]c", _
  "re_2.Replace(""abc"", ""$$"")", "a$c")
re_2.Pattern = "o"
re_2.Global = False
Check re_2.Replace("foo", "0"), "f0o", "Replace the first only"
' Bad patterns name their fault where the engine has a word for it.
Set reBad = New RegExp
reBad.Pattern = "a{3,1}"
CheckError "x = reBad.Test(""a"")", 5017, "a quantifier whose bounds are reversed"
On Error Resume Next
reBad.Pattern = "*abc"
x = reBad.Test("a")
Check Err.Description, "Unexpected quantifier", "text of a misplaced quantifier"
On Error GoTo 0
reBad.Pattern = "a+"
Check reBad.Test("caa"), True, "a good pattern after bad ones"

' --- RegExp details that scripts depend on: a match's default value, word boundaries, empty
' matches and patterns.
Set re = New RegExp
re.Pattern = "(\d+)-(\d+)"
Set m = re.Execute("x 12-34 and 56-78")(0)
CheckEach Array("m & """"", "12-34", "TypeName(m)", "IMatch2")
re.Pattern = "\bis\b"
re.Global = True
Check re.Execute("this is it").Count, CLng(1), "word boundaries"
re.Pattern = "x*"
Check re.Replace("abc", "-"), "-a-b-c-", "empty matches"
re.Pattern = ""
Check re.Test("anything"), True, "empty pattern matches"

' --- A back reference to a group that took no part, and $ forms that name no group.
Function qvRx(pattern, text)
  Dim r : Set r = New RegExp
  r.Pattern = pattern : r.Global = True
  qvRx = r.Test(text)
End Function
Function qvRxReplace(pattern, text, replacement)
  Dim r : Set r = New RegExp
  r.Pattern = pattern : r.Global = True
  qvRxReplace = r.Replace(text, replacement)
End Function
CheckEach Array("qvRx(""(a)?\1b"", ""b"")", True, _
  "qvRxReplace(""b"", ""abc"", ""$3$0$"")", "a$3$0$c", "qvRxReplace(""o"", ""foo boo"", ""0"")", "f00 b00", _
  "qvRxReplace(""(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)(l)"", ""abcdefghijkl"", ""$12$10$1"")", "lja")
