' Array variables and array values: what Dim with parentheses fixes, what ReDim may change,
' copies on assignment and For Each, elements passed by reference.
Dim fixedArr(2), dynArr(), plain, x, y, n

' A variable declared with parentheses holds its array for good.
On Error Resume Next
fixedArr(0) = "kept"
fixedArr = Array(1, 2)
Check Err.Number, CLng(13), "assigning to a fixed array variable"
Check fixedArr(0), "kept", "the fixed array is unchanged"
Err.Clear
ReDim fixedArr(5)
Check Err.Number, CLng(10), "ReDim of a fixed array"
Check UBound(fixedArr), CLng(2), "and it keeps its size"
Err.Clear
ReDim Preserve fixedArr(5)
Check Err.Number, CLng(10), "ReDim Preserve of a fixed array"
Err.Clear
ReDim fixedArr("many")
Check Err.Number, CLng(10), "a fixed array refuses ReDim before its bound is read"
Err.Clear
plain = Array(1)
ReDim plain("abc")
Check Err.Number, CLng(13), "ReDim with a text bound"
Err.Clear
plain = Array(1)
ReDim Preserve plain(1, 1)
Check Err.Number, CLng(9), "ReDim Preserve may not add a dimension"
On Error GoTo 0

' Dim name() makes a dynamic array that ReDim sizes.
ReDim dynArr(3)
dynArr(3) = "last"
ReDim Preserve dynArr(4)
Check dynArr(3), "last", "Preserve keeps the elements"
Check UBound(dynArr), CLng(4), "new bound"
ReDim Preserve dynArr(1)
Check UBound(dynArr), CLng(1), "Preserve may shrink"
ReDim plain(-1)
Check UBound(plain), CLng(-1), "an empty array has upper bound -1"
ReDim plain(1, 3)
plain(1, 3) = "corner"
ReDim Preserve plain(1, 5)
Check plain(1, 3), "corner", "Preserve on the last dimension of two"
Check UBound(plain, 2), CLng(5), "last dimension grown"

' ReDim may create the variable, even under a procedure.
Sub MakesOwn()
  ReDim madeHere(2)
  madeHere(2) = "x"
  Check UBound(madeHere), CLng(2), "ReDim of an undeclared name"
End Sub
MakesOwn

' Inside a function its name is the result variable for ReDim and element stores too.
Function Squares(count)
  Dim i
  ReDim Squares(count - 1)
  For i = 0 To count - 1
    Squares(i) = i * i
  Next
End Function
x = Squares(4)
Check UBound(x), CLng(3), "ReDim of the function's own name"
Check x(3), 9, "elements stored through the function's name"

' Assignment copies an array; so does passing it in parentheses.
x = Array(1, 2)
y = x
x(0) = "changed"
Check y(0), 1, "assignment copies the array"
Sub SetFirst(a)
  a(0) = "set"
End Sub
x = Array(1)
SetFirst x
Check x(0), "set", "an array passes by reference"
x = Array(1)
SetFirst (x)
Check x(0), 1, "an array in parentheses passes a copy"
x = Array(Array(1))
SetFirst x(0)
Check x(0)(0), "set", "an array element that is an array passes by reference"
Sub SetArg(v)
  v = "set"
End Sub
x = Array(1)
SetArg x(0)
Check x(0), "set", "an array element passes by reference"
x = Array(1)
SetArg (x(0))
Check x(0), 1, "an element in parentheses passes a copy"

' For Each walks a copy of the array, multi-dimensional ones in storage order.
x = Array(1, 2, 3)
n = 0
For Each y In x
  x(2) = "changed"
  n = n + y
Next
Check n, 6, "For Each walks the array as it was"
ReDim plain(1, 2)
For y = 0 To 2
  plain(0, y) = y * 2
  plain(1, y) = y * 2 + 1
Next
n = ""
For Each y In plain
  n = n & y
Next
Check n, "012345", "For Each goes down the first dimension first"
n = 0
For Each y In dynArr
  n = n + 1
Next
Check n, 2, "For Each over a dynamic array"

' Indexing results directly, and nested arrays.
x = Array(Array(3, 4))
Check x(0)(1), 4, "element of an element"
Check Array(5, 6)(1), 6, "index on the result of a call"

' An element passed to a call that fails is let go: the array may be resized afterwards.
ReDim dynArr(2)
On Error Resume Next
NoSuchProcedure dynArr(1)
Check Err.Number, CLng(13), "calling an unknown name"
Err.Clear
ReDim dynArr(5)
Check Err.Number, CLng(0), "the array is not left locked"
On Error GoTo 0
Check UBound(dynArr), CLng(5), "and takes its new size"

' Stores any number of levels down a nested array change the array where it lives.
Dim jag, inner, levelCalls
jag = Array(Array(1, 2), Array(3, Array(4, 5)))
inner = jag(1)(1)
jag(1)(1)(0) = 40
Check jag(1)(1)(0), 40, "three levels deep"
Check inner(0), 4, "a copy taken earlier keeps its own values"
jag(1)(1)(1) = Array(7, Array(8, 9))
jag(1)(1)(1)(1)(0) = 80
Check jag(1)(1)(1)(1)(0), 80, "five levels deep"
Check jag(0)(1) & jag(1)(0), "23", "the other elements stay"
Dim fixedJag(1)
fixedJag(1) = Array(Array("a", "b"))
fixedJag(1)(0)(1) = "B"
Check fixedJag(1)(0)(1), "B", "under a fixed-size array"
Set jag(0)(0) = CreateObject("Scripting.Dictionary")
jag(0)(0)("k") = "v"
Check jag(0)(0)("k"), "v", "an object two levels down takes the store"
Function NextLevel()
  levelCalls = levelCalls + 1
  NextLevel = 1
End Function
jag(1)(NextLevel())(NextLevel() - 1) = 41
Check jag(1)(1)(0), 41, "indexes computed by calls"
Check levelCalls, 2, "each index evaluated once"
On Error Resume Next
jag(1)(1)(9) = 0
Check Err.Number, CLng(9), "out of range deep down"
Err.Clear
jag(0)(1)(0) = 0
Check Err.Number, CLng(13), "indexing a number"
Err.Clear
ReDim Preserve jag(3)
Check Err.Number, CLng(0), "no lock is left behind"
On Error GoTo 0
Check UBound(jag), CLng(3), "and the array takes its new size"
