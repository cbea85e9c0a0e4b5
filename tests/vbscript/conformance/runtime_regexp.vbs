' VBScript.RegExp with JavaScript's pattern rules: Execute, Matches, SubMatches, Replace with
' the dollar forms, the options, and the error of a bad pattern.
Dim re, ms, m, total
Set re = New RegExp
re.Pattern = "(\w+)@(\w+)\.com"
re.Global = True
Set ms = re.Execute("mail ann@site.com, bob@web.com")
Check ms.Count, CLng(2), "Count"
Set m = ms(0)
Check m.FirstIndex, CLng(5), "FirstIndex"
Check m.Length, CLng(12), "Length"
Check m.Value, "ann@site.com", "Value"
Check m.SubMatches(1), "site", "SubMatches"
Check m.SubMatches.Count, CLng(2), "SubMatches.Count"
total = ""
For Each m In ms
  total = total & m & ";"
Next
Check total, "ann@site.com;bob@web.com;", "For Each over matches"
Check re.Replace("ann@site.com", "$2 <$1>"), "site <ann>", "Replace with groups"
re.Pattern = "b"
Check re.Replace("abc", "[$&|$`|$']"), "a[b|a|c]c", "Replace with $& $` $'"
Check re.Replace("abc", "$$"), "a$c", "Replace with $$"
re.Pattern = "o"
re.Global = False
Check re.Replace("foo", "0"), "f0o", "Replace the first only"
re.Pattern = "^abc$"
Check re.Test("ABC"), False, "case matters"
re.IgnoreCase = True
Check re.Test("ABC"), True, "IgnoreCase"
re.Pattern = "^\d+$"
re.Global = True
re.Multiline = True
Check re.Execute("12" & vbLf & "ab" & vbLf & "345").Count, CLng(2), "Multiline"
re.Pattern = "\u0041"
Check re.Test("A"), True, "\u escapes"
Set re2 = CreateObject("VBScript.RegExp")
Check TypeName(re2), "IRegExp2", "CreateObject"
re2.Pattern = "("
CheckError "x = re2.Test(""a"")", 5020, "unclosed group"
' Bad patterns name their fault where the engine has a word for it.
Set reBad = New RegExp
For Each badCase In Array(Array("*abc", 5018), Array("[a", 5019), Array("(a", 5020), _
                          Array("[z-a]", 5021), Array("a{3,1}", 5017))
  reBad.Pattern = badCase(0)
  CheckError "x = reBad.Test(""a"")", badCase(1), "bad pattern " & badCase(0)
Next
On Error Resume Next
reBad.Pattern = "*abc"
x = reBad.Test("a")
Check Err.Description, "Unexpected quantifier", "text of a misplaced quantifier"
On Error GoTo 0
reBad.Pattern = "a+"
Check reBad.Test("caa"), True, "a good pattern after bad ones"
