' Script classes: fields, methods, properties, the default member, Me, New/Nothing/Is and
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
Check p.Sum(), 7, "method"
Check p.Sum, 7, "method without parentheses"
p.Move 1, 1
Check p.X, 4, "Sub with arguments"
Check p.Y, 5, "Me.member inside the class"
Check p.Secret, "s!", "Property Get"
p.Secret = "t"
Check p.Secret, "t!", "Property Let"
Check TypeName(p), "Point", "TypeName of an instance"
Check p.Self() Is p, True, "Set to Me"
CheckError "x = p.secret2", 438, "unknown member"
CheckError "Set q = New Point : x = q.secretField", 438, "no such member"
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

Set b = New Box
b("a") = 1
b.Item("b") = 2
Check b("a"), 1, "default property with an argument"
Check b.Item("b"), 2, "named default property"
Check b.Count, CLng(2), "property of the class"
Set b.Holder = New Point
Check TypeName(b.Holder), "Point", "Property Set"
Check IsObject(b), True, "IsObject"
Check b Is Nothing, False, "not Nothing"
Set n = Nothing
Check n Is Nothing, True, "Is Nothing"
CheckError "Set n = Nothing : x = n.X", 424, "member of Nothing"
CheckError "Set x = New NoSuchClass", 506, "unknown class"
CheckError "Set x = 5", 424, "Set needs an object"
Class WithDefaultFunction
  Public Default Function Run(a)
    Run = a * 10
  End Function
End Class
Set w = New WithDefaultFunction
Check w(4), 40, "default function"
' An object's default value in expressions.
Class Valued
  Public Default Property Get Value()
    Value = 42
  End Property
End Class
Set v = New Valued
Check v + 1, 43, "default property in arithmetic"
x = v
Check x, 42, "Let of an object takes its default value"
Check TypeName(x), "Integer", "the value, not the object"
