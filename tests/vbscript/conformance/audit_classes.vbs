' Classes: properties, default members, construction and destruction order, Me and object identity.
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
Set t1 = New Tracked
Check trace, "init,", "Class_Initialize runs on New"
Check t1.Name, "unnamed", "Initialize sets fields"
t1.Name = "one"
Set t2 = t1
Set t1 = Nothing
Check trace, "init,", "a second reference keeps the object"
Set t2 = Nothing
Check trace, "init,term one,", "the last release runs Class_Terminate"
trace = ""
Sub UseLocal()
  Dim local
  Set local = New Tracked
  local.Name = "local"
  trace = trace & "body,"
End Sub
UseLocal
Check trace, "init,body,term local,", "a local object ends with its procedure"
trace = ""
Set t3 = New Tracked
t3.Name = "old"
Set t3 = New Tracked
Check trace, "init,init,term old,", "replacing a reference: the new object is built before the old one ends"
Set t3 = Nothing
trace = ""
Class Account
  Private mBalance
  Private mOwner
  Private Sub Class_Initialize()
    mBalance = 0
  End Sub
  Public Property Get Balance()
    Balance = mBalance
  End Property
  Public Property Let Balance(v)
    If v < 0 Then Err.Raise 5, "Account", "negative"
    mBalance = v
  End Property
  Public Property Get Owner()
    Set Owner = mOwner
  End Property
  Public Property Set Owner(o)
    Set mOwner = o
  End Property
  Public Default Function Describe(prefix)
    Describe = prefix & mBalance
  End Function
  Public Function Self()
    Set Self = Me
  End Function
  Public Sub Deposit(n)
    Balance = Balance + n
  End Sub
  Private Function Secret()
    Secret = 42
  End Function
End Class
Set acct = New Account
acct.Balance = 10
Check acct.Balance, 10, "Property Let then Get"
acct.Deposit 5
Check acct.Balance, 15, "a method calls the class's own properties"
Check acct("Total: "), "Total: 15", "default function"
Check acct.Self Is acct, True, "Me is the same object"
Set acct.Owner = New Tracked
Check TypeName(acct.Owner), "Tracked", "Property Set then Get"
Check TypeName(acct), "Account", "TypeName of an instance"
Check VarType(acct), 9, "VarType of an instance"
CheckError "acct.Secret", 438, "a private member is not visible"
CheckError "acct.Missing = 1", 438, "no such member"
On Error Resume Next
acct.Balance = -1
Check Err.Number, CLng(5), "an error raised in Property Let"
Check Err.Source, "Account", "keeps its source"
Check Err.Description, "negative", "and its description"
On Error GoTo 0
Check acct.Balance, 15, "the failed Let changed nothing"
Class Bag
  Public Items
  Public Default Property Get Item(i)
    Item = Items(i)
  End Property
End Class
Set b = New Bag
b.Items = Array("a", "b")
Check b(1), "b", "default Property Get with an argument"
Check b.Items(0), "a", "array held in a public field"
Class Node
  Public Value
  Public NextNode
End Class
Set n1 = New Node
Set n2 = New Node
n1.Value = 1
n2.Value = 2
Set n1.NextNode = n2
Check n1.NextNode.Value, 2, "chained member access"
n1.NextNode.Value = 20
Check n2.Value, 20, "assignment through a chain"
Check TypeName(n2.NextNode), "Empty", "an unset field is Empty"
Check IsObject(n1.NextNode), True, "a field holding an object"
Dim e
Check TypeName(e), "Empty", "a declared variable starts Empty"
Set e = Nothing
Check TypeName(e), "Nothing", "Set to Nothing"
Check e Is Nothing, True, "Is Nothing"
CheckError "Set x = 5", 424, "Set with a non-object"
