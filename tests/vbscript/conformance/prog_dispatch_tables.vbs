' Callbacks through GetRef kept in arrays and a Dictionary, a classifier of values built from
' nested Select Case, and nested With blocks over objects held in other objects.
Function Twice(x)
  Twice = x * 2
End Function
Function Square(x)
  Square = x * x
End Function
Dim announced
Sub Announce(msg)
  announced = announced & "<" & msg & ">"
End Sub

Function MapArr(arr, fn)
  Dim r(), i
  ReDim r(UBound(arr))
  For i = 0 To UBound(arr)
    r(i) = fn(arr(i))
  Next
  MapArr = r
End Function

Function Compose(value, fns)
  Dim f
  Compose = value
  For Each f In fns
    Compose = f(Compose)
  Next
End Function

Dim f, g, handlers
Set f = GetRef("Square")
Check Join(MapArr(Array(1, 2, 3), GetRef("Twice")), ","), "2,4,6", "a callback passed straight in"
CheckEach Array("Join(MapArr(Array(1, 2, 3), f), "","")", "1,4,9", "TypeName(f)", "Object")
Check Compose(3, Array(GetRef("Twice"), GetRef("Square"), GetRef("Twice"))), 72, "callbacks in an array"
Set g = GetRef("Announce")
announced = ""
g "hello"
Call g("world")
Check announced, "<hello><world>", "a Sub through GetRef"
Set handlers = CreateObject("Scripting.Dictionary")
handlers.Add "sq", GetRef("Square")
handlers.Add "dbl", GetRef("Twice")
Check handlers("sq")(5) + handlers.Item("dbl")(5), 35, "callbacks looked up by name"
CheckError "Set nf = GetRef(""NoSuchProc"")", 5, "GetRef of an unknown name"

Function Classify(v)
  Select Case True
    Case IsNull(v): Classify = "null"
    Case IsEmpty(v): Classify = "empty"
    Case IsArray(v): Classify = "array"
    Case IsNumeric(v)
      Select Case True
        Case v < 0: Classify = "negative"
        Case v = 0: Classify = "zero"
        Case v < 10, v = 11: Classify = "small"
        Case Else: Classify = "big"
      End Select
    Case Else
      Select Case LCase(v)
        Case "a", "e", "i", "o", "u": Classify = "vowel"
        Case "b", "c", "d": Classify = "bcd"
        Case Else: Classify = "other"
      End Select
  End Select
End Function

Dim v, out
out = ""
For Each v In Array(Null, Empty, -3, 0, 5, 11, 10, "7", " 8 ", "E", "c", "z", Array(1), True)
  out = out & Classify(v) & " "
Next
Check out, "null empty negative zero small small big small small vowel bcd other array negative ", _
      "nested Select Case; True is -1"

' Select Case compares as = does: numeric text matches a number literal.
out = ""
Select Case "10"
  Case 10: out = out & "num"
  Case Else: out = out & "none"
End Select
Select Case 1.5 + 1.5
  Case 2, 3: out = out & "-list"
End Select
Select Case "B"
  Case "b": out = out & "-lower"
  Case "B": out = out & "-upper"
End Select
Check out, "num-list-upper", "Select Case matching"

Class Point
  Public X, Y
End Class
Class Shape
  Public Name, Origin, Corners
  Private Sub Class_Initialize()
    Set Origin = New Point
    Corners = Array(New Point, New Point)
  End Sub
End Class

Dim sh, seen
Set sh = New Shape
With sh
  .Name = "box"
  With .Origin
    .X = 3
    .Y = 4
    seen = .X + .Y & " " & sh.Name
  End With
  .Name = .Name & "!"
  With .Corners(1)
    .X = 7
  End With
  seen = seen & " " & .Name & " " & .Origin.X & " " & .Corners(1).X
End With
Check seen, "7 box box! 3 7", "nested With blocks"
Dim pts(2), i
For i = 0 To 2
  Set pts(i) = New Point
  With pts(i)
    .X = i
    .Y = i * i
  End With
Next
Check pts(2).Y + pts(1).X, 5, "With over array elements"

' In the Else or ElseIf part of a block If, End If may close the block on the line of the
' last statement.
Dim branch
If False Then
  branch = "then"
Else branch = "else" End If
Check branch, "else", "Else with its statement and End If on one line"
If False Then
  branch = "then"
ElseIf True Then branch = "elseif" End If
Check branch, "elseif", "ElseIf with its statement and End If on one line"
If False Then
  branch = "then"
Else
  branch = "else block" End If
Check branch, "else block", "the last statement of an Else block followed by End If"
CheckError "If True Then" & vbLf & " branch = 0 End If", 1025, "but not in the Then part"
CheckError "If False Then" & vbLf & "ElseIf True Then" & vbLf & " branch = 0 End If", 1025, _
  "nor in an ElseIf block whose statements start on the next line"
CheckError "If False Then" & vbLf & " branch = 0" & vbLf & "Else End If", 1024, _
  "End If straight after Else has no statement to follow"
