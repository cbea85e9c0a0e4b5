' Script classes: fields, methods, properties, default members, construction and destruction,
' Me and object identity.

' --- Script classes: fields, methods, properties, the default member, Me, New/Nothing/Is and
' the moments Class_Initialize and Class_Terminate run.
Dim events
Class Point
  Public X, Y
  Private hidden
  Private Sub Class_Initialize()
    X = 0 : Y = 0 : hidden = "s"
    events = events & "init;"
  End Sub
  Private Sub Class_Terminate()
    events = events & "term;"
  End Sub
  Public Function Sum()
    Sum = X + Y
  End Function
  Public Sub Move(dx, dy)
    X = X + dx
    Me.Y = Me.Y + dy
  End Sub
  Public Property Get Secret()
    Secret = hidden & "!"
  End Property
  Public Property Let Secret(v)
    hidden = v
  End Property
  Public Function Self()
    Set Self = Me
  End Function
End Class

Class Box
  Private items_
  Private Sub Class_Initialize()
    Set items_ = CreateObject("Scripting.Dictionary")
  End Sub
  Public Default Property Get Item(k)
    Item = items_(k)
  End Property
  Public Property Let Item(k, v)
    items_(k) = v
  End Property
  Public Property Set Holder(o)
    Set items_("holder") = o
  End Property
  Public Property Get Holder()
    Set Holder = items_("holder")
  End Property
  Public Property Get Count()
    Count = items_.Count
  End Property
End Class

events = ""
Set p = New Point
Check events, "init;", "Class_Initialize runs on New"
p.X = 3
p.Y = 4
CheckEach Array("p.Sum()", 7, "p.Sum", 7)
p.Move 1, 1
CheckEach Array("p.X", 4, "p.Y", 5, "p.Secret", "s!")
p.Secret = "t"
CheckEach Array("p.Secret", "t!", "TypeName(p)", "Point", "p.Self() Is p", True)
CheckErrors Array("x = p.secret2", 438, "Set q = New Point : x = q.secretField", 438)
Set q = Nothing
events = ""
Set p2 = p
Set p = Nothing
Check events, "", "a second reference keeps the instance"
Set p2 = Nothing
Check events, "term;", "Class_Terminate runs when the last reference goes"
Sub MakeOne()
  Dim local
  Set local = New Point
End Sub
events = ""
MakeOne
Check events, "init;term;", "a local instance ends with its procedure"
Class Noisy
  Private Sub Class_Terminate() : Err.Raise 5 : End Sub
End Class
Set p2 = New Noisy : Set p2 = Nothing
Check Err.Number, CLng(0), "an error in Class_Terminate stays there"

Set b = New Box
b("a") = 1
b.Item("b") = 2
CheckEach Array("b(""a"")", 1, "b.Item(""b"")", 2, "b.Count", CLng(2))
Set b.Holder = New Point
CheckEach Array("TypeName(b.Holder)", "Point", "IsObject(b)", True, "b Is Nothing", False)
b.Holder.X = 20
Check b.Holder.X, 20, "a member written through a chain of members"
Set n = Nothing
Check n Is Nothing, True, "Is Nothing"
CheckErrors Array("Set n = Nothing : x = n.X", 424, "Set x = New NoSuchClass", 506, _
  "Set x = 5", 424)
' An object's default value in expressions.
Class Valued
  Public Default Property Get Value()
    Value = 42
  End Property
End Class
Set v = New Valued
Check v + 1, 43, "default property in arithmetic"
x = v
CheckEach Array("x", 42, "TypeName(x)", "Integer")

' --- Classes: properties, default members, construction and destruction order, Me and object identity.
Dim trace
trace = ""
Class Tracked
  Public Name
  Private Sub Class_Initialize()
    trace = trace & "init,"
    Name = "unnamed"
  End Sub
  Private Sub Class_Terminate()
    trace = trace & "term " & Name & ","
  End Sub
End Class
trace = ""
Set t3 = New Tracked
t3.Name = "old"
Set t3 = New Tracked
Check trace, "init,init,term old,", "replacing a reference: the new object is built before the old one ends"
Set t3 = Nothing
trace = ""
' Inside its class a property is called by its bare name, Get and Let alike.
Class Account
  Private mBalance
  Public Property Get Balance() : Balance = mBalance : End Property
  Public Property Let Balance(v) : mBalance = v : End Property
  Public Sub Deposit(n) : Balance = Balance + n : End Sub
End Class
Set acct = New Account
acct.Balance = 10
acct.Deposit 5
Check acct.Balance, 15, "a property used by its bare name inside the class"

' --- Class members as Windows binds them: properties with several arguments, default members
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
CheckEach Array("obj.Log", "k", "obj.Held Is obj", True, "obj.Sum(3, 4)", 7)
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
CheckEach Array("obj.n", 6, "y", 6)

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
CheckEach Array("UBound(obj.items)", CLng(3), "UBound(obj.grid, 2)", CLng(4), _
  "obj.items(0)", "a")
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
