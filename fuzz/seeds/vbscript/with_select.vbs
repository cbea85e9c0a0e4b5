' With blocks and Select Case.
Class Rec
  Public Name, Size, Child
End Class
Set r = New Rec
With r
  .Name = "rec"
  .Size = 3
  Set .Child = New Rec
  With .Child
    .Name = "child"
  End With
  Check .Name & "/" & .Child.Name, "rec/child", "nested With"
End With
Check r.Size, 3, "With assigned through the object"
Set d = CreateObject("Scripting.Dictionary")
With d
  .Add "a", 1
  .Add "b", 2
  Check .Count, CLng(2), "With on a host object"
  Check .Item("b"), 2, "member call with arguments"
End With
Function Kind(v)
  Select Case v
    Case 1, 2, 3
      Kind = "small"
    Case 10
      Kind = "ten"
    Case Else
      Kind = "other"
  End Select
End Function
Check Kind(2), "small", "a list"
Function Letter(v)
  Select Case v
    Case "a", "b"
      Letter = "ab"
    Case "x"
      Letter = "x"
  End Select
End Function
Check Letter("x"), "x", "text cases"
Check Letter("b"), "ab", "a list of texts"
CheckError "x = Kind(""text"")", 13, "a text against number literals"
Check Kind(10), "ten", "a later case"
Check Kind(99), "other", "Case Else"
Check Kind(Null), "other", "Null matches no case"
Function FirstMatch(v)
  FirstMatch = ""
  Select Case True
    Case v > 10: FirstMatch = "big"
    Case v > 5: FirstMatch = "medium"
  End Select
End Function
Check FirstMatch(20), "big", "the first matching case wins"
Check FirstMatch(7), "medium", "Case with an expression"
Check FirstMatch(1), "", "no case, no Else"
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
Check Count(1), "one", "Exit Function inside a case"
Check Count(2), "not one", "falls through to after End Select"
