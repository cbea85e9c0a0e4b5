' VBScript.RegExp reads its patterns by its own rules, not PCRE's: what those rules lack is
' refused with the pattern errors or read literally, and IgnoreCase folds letters beyond ASCII.
Dim re, p, ms, m, t
Set re = New RegExp
Check re.Pattern, "", "Pattern starts empty"
Check re.Multiline, False, "Multiline starts False"

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
Check re.Test("p{L}"), True, "\p is the letter p"
Check re.Test("x"), False, "\p{L} is no property class"
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
Check re.Test("a"), False, "no POSIX classes"
Check re.Test(":]"), True, "[[:alpha:] is a class followed by ]"

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
Check re.Test(vbCr), True, ". matches a carriage return"
Check re.Test(vbLf), False, ". does not match a line feed"
re.Pattern = "^\w+$"
Check re.Test("abc_09"), True, "\w ASCII"
Check re.Test("caf" & ChrW(233)), False, "\w is ASCII only"
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
Check re.Replace("a5", False), "a0", "False replaces as 0"
Check re.Replace(123, 4.5), "4.54.54.5", "numbers as text"
re.Pattern = True
Check re.Pattern, "-1", "a boolean pattern"
CheckError "x = re.Replace(Null, ""x"")", 13, "Null text"
CheckError "x = re.Test(Null)", 13, "Null text to Test"
CheckError "x = re.Execute(Null)", 13, "Null text to Execute"

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
