' Class members as Windows binds them: properties with several arguments, default members
' that are Subs, Functions or Property Gets, calls on the result of New, the function name as
' an object inside its own function, and members of fields that hold arrays.
Dim obj, x, y, calls

Class Params
  Public Log, Held
  Public Property Let Pair(k, v)
    Log = k & "=" & v
  End Property
  Public Property Let Three(a, b, c)
    Log = a & b & c
  End Property
  Public Property Set Slot(k, o)
    Set Held = o
    Log = k
  End Property
  Public Property Get Sum(a, b)
    Sum = a + b
  End Property
End Class
Set obj = New Params
obj.Pair("old") = "new"
Check obj.Log, "old=new", "Property Let with an index argument"
obj.Three(1, 2) = 3
Check obj.Log, "123", "Property Let with two index arguments"
Set obj.Slot("k") = obj
Check obj.Log, "k", "Property Set with an index argument"
CheckTrue obj.Held Is obj, "Property Set stores the object"
Check obj.Sum(3, 4), 7, "Property Get with two arguments"
Set obj.Held = Nothing

Class SubDefault
  Public Default Sub Run(a)
    calls = "run " & a
  End Sub
End Class
Set obj = New SubDefault
obj(2)
Check calls, "run 2", "a default Sub is what obj(2) calls"
obj.Run 3
Check calls, "run 3", "and it still has its name"

Class FuncDefault
  Public Default Function Value(i)
    Value = i * 10
  End Function
End Class
Set obj = New FuncDefault
Check obj(4), 40, "a default Function"
x = obj(5) + 1
Check x, 51, "default Function in an expression"

Class GetDefault
  Public v
  Public Default Property Get Value()
    Value = v
  End Property
End Class
Set obj = New GetDefault
obj.v = 0
Check CBool(obj), False, "an object converts through its default property"
obj.v = 1
x = 0
If obj Then x = 1
Check x, 1, "an object as an If condition uses its default property"
x = obj
Check x, 1, "assigning an object without Set takes its default value"

Class Counter
  Public n
  Public Sub Bump()
    n = n + 1
  End Sub
  Public Function Self()
    Set Self = Me
  End Function
End Class
Check (New Counter).Self().n, Empty, "member of a call on New"
Call (New Counter).Bump()
Call (New Counter).Bump
x = (New Counter).n
Check x, Empty, "field read on a fresh object"

Function MakeCounter(start, ByRef after)
  Set MakeCounter = New Counter
  MakeCounter.n = start
  MakeCounter.Bump
  after = MakeCounter.n
End Function
Set obj = MakeCounter(5, y)
Check obj.n, 6, "the function name used as the object it returns"
Check y, 6, "and read back inside the function"

Function Recur(stop_now)
  If stop_now Then Exit Function
  Recur = 2
  Dim seen
  seen = Recur
  Check seen, 2, "the function name without arguments reads the result"
  Recur = 1
  Call Recur(True)
End Function
Check Recur(False), 1, "a recursive call does not touch the caller's result"

Class Holder
  Public items(3)
  Public grid(2, 4)
  Private hidden
  Public Sub Fill()
    items(0) = "a"
  End Sub
End Class
Set obj = New Holder
obj.Fill
Check UBound(obj.items), CLng(3), "UBound of an array field"
Check UBound(obj.grid, 2), CLng(4), "second bound of an array field"
Check obj.items(0), "a", "element of an array field"
obj.items(1) = "b"
Check obj.items(1), "b", "assigning an element of an array field"
On Error Resume Next
obj.hidden = 1
Check Err.Number, CLng(438), "a Private field is not a member from outside"
Err.Clear
x = obj.hidden
Check Err.Number, CLng(438), "nor for reading"
On Error GoTo 0

' A method named like the class, Me passed out, and Class_Initialize called by name.
Class Looped
  Public v
  Private Sub Class_Initialize()
    v = "init"
  End Sub
  Public Sub Test(other)
    CheckTrue Me Is other, "Me is the object the caller holds"
  End Sub
End Class
Set obj = New Looped
obj.Test obj
obj.v = "changed"
On Error Resume Next
obj.Class_Initialize
Check Err.Number, CLng(438), "a Private Class_Initialize can not be called from outside"
On Error GoTo 0
Check obj.v, "changed", "so nothing ran"

Class PublicInit
  Public v
  Public Sub Class_Initialize()
    v = "init"
  End Sub
End Class
Set obj = New PublicInit
obj.v = "changed"
obj.Class_Initialize
Check obj.v, "init", "a Public Class_Initialize may be called again"

' With on an object made by New, and on Nothing with an empty body.
With New Counter
  .n = 4
  .Bump
  Check .n, 5, "With New"
End With
With Nothing
End With
