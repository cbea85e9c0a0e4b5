' Lexical and statement syntax, and the literal forms with the types VBScript gives them.

' --- Lexical and statement syntax that Windows accepts: comparison operator spellings, '&' next
' to names that start with h or o, separators and continuations in odd places, statements on
' the same line as the words that open or close a block, reserved-looking names.
Option Explicit : : Dim opt

Dim a, b, c, hx, ho, n, s, obj

' =< and => are <= and >=; >< is <>.
CheckEach Array("3 => 2", True, "2 =< 2", True, "2 >< 2", False, "2 >< 3", True)

' & right before a name beginning with h or o is concatenation, not a radix prefix.
hx = "H" : ho = "O"
CheckEach Array("""a"" &hx", "aH", """a"" &ho", "aO", "(&h01Or&h02)", 3, _
  "TypeName(&h10&)", "Integer", "TypeName(&hFFFF&)", "Long", "&hFFFF", -1, _
  "TypeName(&hFFFFFFFF&)", "Integer", "10.", CDbl(10), "TypeName(10.)", "Double", _
  "1e-99999", CDbl(0))
Check .5e1, CDbl(5), "leading point with exponent"

' Continuations right after an operator, and before the '='.
a =_
  3
a _
  = 4
Check a, 4, "continuation around ="

' Single-line If forms.
a = 0
If True Then a = 1 : b = 2
Check a + b, 3, "single-line If with two statements"
a = 0
If False Then a = 1 : a = 2
Check a, 0, "both statements belong to the If"
If False Then a = 1 Else a = 5 : b = 6
Check a + b, 11, "Else takes the rest of the line"
If False Then :
If False Then a = 9 : If True Then a = 10
Check a, 5, "an If nested in a skipped single-line If is skipped"
If False Then a = 1 Else a = 2 End If
Check a, 2, "a single-line If may end with End If"

' Block If with statements on the Else / ElseIf line.
If False Then
  a = 0
Else a = 7
End If
Check a, 7, "statement on the Else line"
If False Then
  a = 0
ElseIf True Then a = 8
End If
Check a, 8, "statement on the ElseIf line"
If False Then
  a = 0
Else
: a = 9
End If
Check a, 9, "colon before the first statement of Else"

' Loops written on one line or with stray separators.
n = 0
While n < 3 : n = n + 1 : Wend
Check n, 3, "While on one line"
n = 0
Do: :: n = n + 2 ::: : Loop Until n = 4
Check n, 4, "Do on one line with empty statements"
n = 0
Do :If n = 6 Then
    Exit Do
  End If
  n = n + 3
Loop
Check n, 6, "If right after Do:"
Dim arr(8)
For n = 1 To 8: arr(n) = n * 2: Next
Check arr(8), 16, "For on one line"
n = 0
For a = 1 To 5 :
:
:  : Exit For
  n = 1
Next
Check n, 0, "Exit For after separators"

' Select Case: statements after Case on the same line, with or without ':'.
Function Pick(v)
  Select Case v
    Case 0: Pick = "zero"
    Case 1  Pick = "one"
    Case 2
      Pick = "two"
    Case 3
    Case Else Pick = "other"
  End Select
End Function
CheckEach Array("Pick(0)", "zero", "Pick(1)", "one", "Pick(2)", "two", "Pick(3)", Empty, _
  "Pick(9)", "other")
Select Case 2: Case 5, 6: a = 0
  Case 2, 4
    a = "two"
  Case Else: a = "else"
End Select
Check a, "two", "Select on one line with the first Case"
Select Case 0 : Case 1 : Case Else : End Select
a = False
Select Case 1  :

  :Case 3, 4 :
  Case Else:

    a = True
End Select
Check a, True, "blank lines and separators between Cases"

' End Sub / End Function / End Property / End Class may follow a statement directly.
Sub SetA() a = "one line" End Sub
SetA
Check a, "one line", "a Sub on one line"
Function Twice(v)
  Twice = v * 2 End Function
Check Twice(4), 8, "End Function after a statement"
Class OneLiner
  Public v End Class
Class Spaced : : Dim w
:
  Private Sub Class_Initialize : w = 1
  End Sub ::
  Property Get Value() :
    Value = w
  End Property ::
  Public Function Add(ByVal d) :: :
    w = w + d
    Add = w End Function : End Class : :: Set obj = New Spaced
Check obj.Value, 1, "Class_Initialize on the header line"
Check obj.Add(4), 5, "separators around class members"
Sub Separated : :
:
End Sub : a = "after"
Separated
Check a, "after", "statement after End Sub on its line"

' Words that are reserved elsewhere serve as names.
Sub UseNames()
  Dim default, error, explicit, step, property
  default = 1 : error = 2 : explicit = 3 : step = 4 : property = 5
  Check default + error + explicit + step + property, 15, "Default, Error, Explicit, Step, Property as variables"
  For property = 1 To 2
  Next
  Check property, 3, "Property as a loop counter"
End Sub
UseNames
Class Property
  Public Sub Property()
  End Sub
  Function Error(e)
    Error = e
  End Function
  Sub Step(default)
  End Sub
  Function Explicit(x)
    Explicit = x
  End Function
  Public Property Get Default()
    Default = "d"
  End Property
End Class
Set obj = New Property
Check obj.Error(3), 3, "a method named Error"
Check obj.Explicit(4), 4, "a method named Explicit"
Check obj.Default, "d", "a property named Default"
Class ReservedFields
  Private error, explicit, step
  Public Function Total()
    error = 1 : explicit = 2 : step = 3
    Total = error + explicit + step
  End Function
End Class
Set obj = New ReservedFields
Check obj.Total(), 6, "fields named Error, Explicit, Step"

' After a dot every word is a member name, Rem included.
Class Words
  Public [rem], [end], [if], [next]
End Class
Set obj = New Words
obj.rem = 1 : obj.end = 2 : obj.if = 3 : obj.next = 4
Check obj.rem + obj.end + obj.if + obj.next, 10, "reserved words after a dot"

' Calls without parentheses whose first argument is a comparison.
Function Both(x, y)
  Both = CStr(x) & "/" & CStr(y)
End Function
Sub Keep(x, y)
  s = Both(x, y)
End Sub
Keep 1 = 1, 2
Check s, "True/2", "a comparison as the first argument"
Keep Not 1 = 0, 3
Check s, "True/3", "Not before the first argument"
arr (0) = 2 Xor -2
Check arr(0), -4, "assignment to an element written with a space before '('"

' Rem as a statement, ':' at either end of a line.
s = "one" :
s = s & "two" :: :
:: s = s & "three"
Rem a comment of its own
s = s & "!" : Rem and one after a statement
Check s, "onetwothree!", "separators and Rem"

' Const may be declared anywhere; its value is there from the start.
Check early, "known", "a constant read before its line"
If False Then Const early = "known"
Private Const pc = 4
Public Const pubc = 5
Check pc + pubc, 9, "Private and Public Const"
Check +"text", "text", "unary plus keeps a string"
Check TypeName(+True), "Boolean", "unary plus keeps a Boolean"
Check +--+-+1, -1, "a chain of signs"

' Procedures and classes written inside a block at the script's level exist all the same.
a = ""
If False Then
Sub DefinedInIf
  a = "defined in a skipped If"
End Sub
Function OneLineInIf() OneLineInIf = "one line" End Function
Class ClassInIf
  Public v
End Class
End If
DefinedInIf
Check a, "defined in a skipped If", "a Sub inside a skipped If"
Check OneLineInIf(), "one line", "a one-line Function inside a skipped If"
Set obj = New ClassInIf
obj.v = 1
Check obj.v, 1, "a Class inside a skipped If"

' --- Literal forms and the types VBScript gives them.
Dim x, y
Check 1, CInt(1), "small whole number is Integer"
Check TypeName(32767), "Integer", "32767"
Check TypeName(-32768), "Long", "negated 32768 stays Long"
Check TypeName(2147483647), "Long", "largest Long"
Check TypeName(2147483648), "Double", "beyond Long"
Check TypeName(1E3), "Double", "exponent"
Check 1E3, CDbl(1000), "exponent value"
Check &HFF, 255, "hex"
Check TypeName(&HFFFF), "Integer", "hex Integer"
Check &HFFFF&, CLng(65535), "trailing & asks for Long"
Check TypeName(&H10000), "Long", "five hex digits"
Check &O17, 15, "octal"
Check &17, 15, "octal without O"
Check "a""b", "a" & Chr(34) & "b", "doubled quote"
Check Len(""""), CLng(1), "a lone quote"
Check TypeName(#1/2/2003#), "Date", "date literal"
Check Year(#1/2/2003#), 2003, "date literal year"
Check Month(#1/2/2003#), 1, "month/day order"
Check CInt(True), -1, "True is -1"
Dim [my var]
[my var] = 5
Check [my var], 5, "bracketed name"

' --- Code that compiles and fails, if at all, only when it runs.
CheckError "x = .Name", 505, "a member with a leading dot outside any With"
CheckError "If False Then .Name = 1", 0, "which compiles, and does nothing where it does not run"
Dim dotted, meIdx
Set dotted = CreateObject("Scripting.Dictionary")
dotted _
  .Add "k", 1
Check dotted("k"), 1, "a call statement continued onto a line that starts with a dot"
Check dotted _
  .Count, CLng(1), "an argument continued the same way"
Class MeIndexed
  Public Default Function Item(i)
    Item = i * 2
  End Function
  Public Function Twice(i)
    Twice = Me(i)
  End Function
End Class
Set meIdx = New MeIndexed
Check meIdx.Twice(21), 42, "Me(i) calls the default member"
' Hexadecimal and octal literals take the type of their value; -32768 alone is typed Long.
Check &H8000, CLng(-32768), "&H8000"
Check &O100000, CLng(-32768), "&O100000"
Check &HFFFF8000&, CLng(-32768), "&HFFFF8000&"
Check &H7FFF, 32767, "&H7FFF"
Check &H8001, CInt(-32767), "&H8001"
