' A stack built from linked nodes, a queue over a growing array and a pair of nodes that
' point at each other: Nothing checks, default members and when Class_Terminate runs.
Dim freed
freed = ""

Class Node
  Public Value
  Public NextNode
  Private Sub Class_Initialize()
    Set NextNode = Nothing
  End Sub
  Private Sub Class_Terminate()
    freed = freed & Value & ";"
  End Sub
End Class

Class Stack
  Private mTop, mCount
  Private Sub Class_Initialize()
    Set mTop = Nothing
    mCount = 0
  End Sub
  Public Sub Push(v)
    Dim n
    Set n = New Node
    n.Value = v
    Set n.NextNode = mTop
    Set mTop = n
    mCount = mCount + 1
  End Sub
  Public Function Pop()
    If mTop Is Nothing Then Err.Raise vbObjectError + 1, "Stack", "Stack empty"
    Pop = mTop.Value
    Set mTop = mTop.NextNode
    mCount = mCount - 1
  End Function
  Public Property Get Count()
    Count = mCount
  End Property
  Public Property Get IsEmpty()
    IsEmpty = mTop Is Nothing
  End Property
  Public Default Function Peek()
    Peek = mTop.Value
  End Function
End Class

Class Queue
  Private items(), head, tail
  Private Sub Class_Initialize()
    ReDim items(1)
    head = 0 : tail = 0
  End Sub
  Sub Enqueue(v)
    If tail > UBound(items) Then ReDim Preserve items(UBound(items) * 2 + 1)
    If IsObject(v) Then Set items(tail) = v Else items(tail) = v
    tail = tail + 1
  End Sub
  Function Dequeue()
    If IsObject(items(head)) Then Set Dequeue = items(head) Else Dequeue = items(head)
    items(head) = Empty
    head = head + 1
  End Function
  Property Get Size()
    Size = tail - head
  End Property
  Property Get Capacity()
    Capacity = UBound(items) + 1
  End Property
End Class

Dim s
Set s = New Stack
s.Push "a" : s.Push "b" : s.Push "c"
CheckEach Array("s.Count", 3, "s.Peek & s() & s", "ccc", "s.Pop()", "c", "freed", "c;", _
  "s.Pop & s.Count & s.IsEmpty", "b1False")
Set s = Nothing
Check freed, "c;b;a;", "dropping the stack frees the rest of the chain"

Dim empty1
Set empty1 = New Stack
On Error Resume Next
empty1.Pop
Check Err.Number - vbObjectError, CLng(1), "Pop on an empty stack"
Check Err.Description, "Stack empty", "its message"
Err.Clear
On Error GoTo 0

Dim q, i, nn
Set q = New Queue
For i = 1 To 5
  q.Enqueue i * 10
Next
Set nn = New Node
nn.Value = "queued"
q.Enqueue nn
Set nn = Nothing
CheckEach Array("q.Capacity", CLng(8), "q.Size", 6, "q.Dequeue + q.Dequeue", 30)
Do While q.Size > 1
  q.Dequeue
Loop
freed = ""
Dim last
Set last = q.Dequeue
CheckEach Array("TypeName(last) & "" "" & last.Value", "Node queued", "freed", "")
Set last = Nothing
Check freed, "queued;", "now it is freed"

' Two nodes pointing at each other; breaking the link lets both go.
Dim a1, a2
freed = ""
Set a1 = New Node : a1.Value = "one"
Set a2 = New Node : a2.Value = "two"
Set a1.NextNode = a2
Set a2.NextNode = a1
CheckEach Array("a1.NextNode Is a2", True, "a1.NextNode.NextNode Is a1", True, _
  "Not (a1 Is a2)", True)
Set a1.NextNode = Nothing
Set a1 = Nothing
Check freed, "", "the second node still holds the first"
Set a2 = Nothing
Check freed, "two;one;", "releasing the second frees both"

Function MakeNode(v)
  Set MakeNode = New Node
  MakeNode.Value = v
End Function
freed = ""
CheckEach Array("MakeNode(""temp"").Value", "temp", "freed", "temp;")

' Property Let receives an object as it is; Set needs a Property Set.
Class Slot
  Public Got
  Public Property Let Content(v)
    Got = IsObject(v)
  End Property
End Class
Dim slotObj
Set slotObj = New Slot
slotObj.Content = New Node
CheckTrue slotObj.Got, "Property Let was given the object itself"
On Error Resume Next
Set slotObj.Content = New Node
Check Err.Number, CLng(438), "Set of a property that has only Property Let"
Err.Clear
On Error GoTo 0
