' Loops, Exit statements, Select Case and single-line If as scripts use them.
For i = 1 To 3 : Next
Check i, 4, "the counter ends past the limit"
For i = 1 To 0
  Check True, False, "a loop whose limit is below its start never runs"
Next
Check i, 1, "the counter keeps its start"
t = ""
For i = 10 To 1 Step -3
  t = t & i & ","
Next
Check t, "10,7,4,1,", "negative step"
Check i, -2, "after a negative step"
limit = 3
n = 0
For i = 1 To limit
  limit = 10
  n = n + 1
Next
Check n, 3, "the limit is read once"
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
n = 0
Do
  n = n + 1
  If n = 5 Then Exit Do
Loop
Check n, 5, "Exit Do"
n = 0
Do While n < 3
  n = n + 1
Loop
Check n, 3, "Do While"
n = 10
Do While n < 3
  n = n + 1
Loop
Check n, 10, "Do While tests first"
n = 10
Do
  n = n + 1
Loop While n < 3
Check n, 11, "Loop While runs once"
n = 0
Do Until n >= 4
  n = n + 1
Loop
Check n, 4, "Do Until"
n = 0
Do
  n = n + 2
Loop Until n > 5
Check n, 6, "Loop Until"
n = 0
While n < 7
  n = n + 1
Wend
Check n, 7, "While Wend"
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
' Single-line If.
a = 0 : b = 0 : c = 0
If True Then a = 1 : b = 2 Else c = 3
Check a & b & c, "120", "several statements on the Then side"
a = 0 : b = 0 : c = 0
If False Then a = 1 : b = 2 Else c = 3 : b = 4
Check a & b & c, "043", "several statements on the Else side"
If Null Then r = "then" Else r = "else"
Check r, "else", "Null condition takes Else"
If "True" Then r = "text" Else r = "no"
Check r, "text", "text condition"
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
Check Classify(2), "low", "value in a list"
Check Classify(5), "mid", "case on one line"
Function Letter(v)
  Select Case v
    Case "x", "y" : Letter = "xy"
    Case "X" : Letter = "upper"
    Case Else : Letter = "other"
  End Select
End Function
Check Letter("y"), "xy", "text in a list"
Check Letter("X"), "upper", "text cases compare in binary"
Check Letter(""), "other", "empty text"
Check Classify(Null), "other", "Null matches nothing"
Check Classify(Empty), "other", "Empty matches nothing here"
Check Classify(2.0), "low", "Double equals Integer case"
Function Band(n)
  Select Case True
    Case n < 0 : Band = "negative"
    Case n < 10 : Band = "units"
    Case n < 100 : Band = "tens"
    Case Else : Band = "large"
  End Select
End Function
Check Band(-1), "negative", "Select Case True first branch"
Check Band(50), "tens", "Select Case True middle branch"
Check Band(1000), "large", "Select Case True else"
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
