' If, loops, Exit, With blocks and Select Case in their block and single-line forms.

' --- If, loops and Exit in their block and single-line forms.
x = 0
If x = 0 Then x = 1 Else x = 2
Check x, 1, "single-line If"
If x = 1 Then
  r = "a"
ElseIf x = 2 Then
  r = "b"
Else
  r = "c"
End If
Check r, "a", "block If"
If Null Then r = "null" Else r = "not"
Check r, "not", "Null condition takes the Else branch"
If "True" Then r = "t"
Check r, "t", "text condition"
' For.
s = ""
For i = 1 To 5 Step 2
  s = s & i
Next
CheckEach Array("s", "135", "i", 7)
n = 0
For i = 1 To 0
  n = n + 1
Next
CheckEach Array("n", 0, "i", 1)
s = ""
For i = 0 To 1 Step 0.25
  s = s & i & ";"
Next
Check s, "0;0.25;0.5;0.75;1;", "fractional Step"
e = 3
n = 0
For i = 1 To e
  e = 10
  n = n + 1
Next
Check n, 3, "the end is evaluated once"
For i = 1 To 10
  If i = 4 Then Exit For
Next
CheckEach Array("i", 4, "TypeName(i)", "Integer")
' Do loops.
n = 0
Do While n < 3
  n = n + 1
Loop
Check n, 3, "Do While"
n = 0
Do Until n = 3
  n = n + 1
Loop
Check n, 3, "Do Until"
n = 10
Do
  n = n + 1
Loop While n < 3
Check n, 11, "Loop While runs once"
n = 0
Do
  n = n + 1
Loop Until n >= 4
Check n, 4, "Loop Until"
n = 0
Do
  n = n + 1
  If n = 5 Then Exit Do
Loop
Check n, 5, "Exit Do"
n = 0
While n < 4
  n = n + 1
Wend
Check n, 4, "While/Wend"
' For Each.
s = ""
For Each v In Array("a", "b", "c")
  s = s & v
Next
Check s, "abc", "For Each over an array"
Set d = CreateObject("Scripting.Dictionary")
d.Add "k1", 1
d.Add "k2", 2
s = ""
For Each v In d
  s = s & v
Next
Check s, "k1k2", "For Each over a collection"
' A For Each that runs out leaves its variable Empty; Exit For leaves the current item.
Check IsEmpty(v), True, "the variable after a collection runs out"
v = "before"
For Each v In Array(7, 8)
Next
Check IsEmpty(v), True, "the variable after an array runs out"
For Each v In Array(7, 8, 9)
  If v = 8 Then Exit For
Next
Check v, 8, "Exit For keeps the current item"
CheckError "For Each v In 5 : Next", 451, "For Each over a number"
' Nested single-line If.
If 1 = 1 Then If 2 = 2 Then r = "nested" Else r = "inner else"
Check r, "nested", "nested single-line If"

' --- Loops, Exit statements, Select Case and single-line If as scripts use them.
t = ""
For i = 10 To 1 Step -3
  t = t & i & ","
Next
CheckEach Array("t", "10,7,4,1,", "i", -2)
n = 0
For i = 1 To 5
  i = i + 1
  n = n + 1
Next
Check n, 3, "changing the counter inside the body counts"
t = ""
For i = 0.5 To 2
  t = t & i & ","
Next
Check t, "0.5,1.5,", "fractional counter"
t = ""
For i = 1 To 3
  For j = 1 To 3
    If j = 2 Then Exit For
    t = t & i & j & ","
  Next
Next
Check t, "11,21,31,", "Exit For leaves the inner loop only"
n = 10
Do While n < 3
  n = n + 1
Loop
Check n, 10, "Do While tests first"
n = 0
Do While True
  Do While True
    n = n + 1
    Exit Do
  Loop
  n = n + 10
  Exit Do
Loop
Check n, 11, "Exit Do leaves one level"
' If on a fractional condition, and the first true ElseIf.
If 0.1 Then r = "nonzero" Else r = "zero"
Check r, "nonzero", "fractional condition"
x = 5
If x > 10 Then
  r = "big"
ElseIf x > 3 Then
  r = "mid"
ElseIf x > 1 Then
  r = "small"
Else
  r = "tiny"
End If
Check r, "mid", "first true ElseIf wins"
' Select Case.
Function Classify(v)
  Select Case v
    Case 1, 2, 3
      Classify = "low"
    Case 4, 5 : Classify = "mid"
    Case Else
      Classify = "other"
  End Select
End Function
CheckEach Array("Classify(2)", "low", "Classify(5)", "mid")
Function Letter(v)
  Select Case v
    Case "x", "y" : Letter = "xy"
    Case "X" : Letter = "upper"
    Case Else : Letter = "other"
  End Select
End Function
CheckEach Array("Letter(""y"")", "xy", "Letter(""X"")", "upper", "Letter("""")", "other", _
  "Classify(Null)", "other", "Classify(Empty)", "other", "Classify(2.0)", "low")
Function Band(n)
  Select Case True
    Case n < 0 : Band = "negative"
    Case n < 10 : Band = "units"
    Case n < 100 : Band = "tens"
    Case Else : Band = "large"
  End Select
End Function
CheckEach Array("Band(-1)", "negative", "Band(50)", "tens", "Band(1000)", "large")
calls = 0
Function Counted()
  calls = calls + 1
  Counted = 2
End Function
Select Case Counted()
  Case 1
  Case 2
  Case 3
End Select
Check calls, 1, "the Select expression is read once"
hit = ""
Select Case 3
  Case 3 : hit = hit & "a"
  Case 3 : hit = hit & "b"
End Select
Check hit, "a", "only the first matching case runs"

' --- With blocks on host objects (nested ones are the dispatch program's) and Select Case.
Class Rec
  Public Child
End Class
Set r = New Rec
With r
  Set .Child = New Rec
End With
Check TypeName(r.Child), "Rec", "Set of a member inside With"
Set d = CreateObject("Scripting.Dictionary")
With d
  .Add "a", 1
  .Add "b", 2
  Check .Count, CLng(2), "With on a host object"
  Check .Item("b"), 2, "member call with arguments"
End With
CheckError "x = Classify(""text"")", 13, "a text against number literals"
n = 0
Select Case n
End Select
Check n, 0, "an empty Select"
Function Count(v)
  Select Case v
    Case 1
      Count = "one"
      Exit Function
  End Select
  Count = "not one"
End Function
CheckEach Array("Count(1)", "one", "Count(2)", "not one")
