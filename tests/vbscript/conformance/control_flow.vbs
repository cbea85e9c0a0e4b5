' If, loops and Exit in their block and single-line forms.
x = 0
If x = 0 Then x = 1 Else x = 2
Check x, 1, "single-line If"
If x = 0 Then x = 5 Else x = 6: y = 7
Check x, 6, "single-line Else"
Check y, 7, "statements after Else belong to it"
If x = 6 Then
  r = "a"
ElseIf x = 7 Then
  r = "b"
Else
  r = "c"
End If
Check r, "a", "block If"
If x = 99 Then
  r = "a"
ElseIf x > 5 Then
  r = "b"
End If
Check r, "b", "ElseIf"
If Null Then r = "null" Else r = "not"
Check r, "not", "Null condition takes the Else branch"
If "True" Then r = "t"
Check r, "t", "text condition"
' For.
s = ""
For i = 1 To 5 Step 2
  s = s & i
Next
Check s, "135", "For with Step"
Check i, 7, "counter after the loop"
s = ""
For i = 5 To 1 Step -1
  s = s & i
Next
Check s, "54321", "negative Step"
n = 0
For i = 1 To 0
  n = n + 1
Next
Check n, 0, "empty range"
Check i, 1, "counter of an empty range"
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
Check i, 4, "Exit For"
Check TypeName(i), "Integer", "counter type follows the start"
For k = 1 To 2
  For j = 1 To 10
    If j = 2 Then Exit For
  Next
Next
Check j, 2, "Exit For leaves the inner loop only"
Check k, 3, "outer loop ran on"
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
Dim grid(1, 1)
grid(0, 0) = 1 : grid(1, 0) = 2 : grid(0, 1) = 3 : grid(1, 1) = 4
s = ""
For Each v In grid
  s = s & v
Next
Check s, "1234", "For Each over two dimensions, first index fastest"
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
