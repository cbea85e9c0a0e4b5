' Arrays: Dim, ReDim [Preserve], Erase, bounds, several dimensions, value semantics and For Each.

' --- Fixed and dynamic arrays: Dim, ReDim [Preserve], Erase, bounds, value semantics.
Dim fixed(3)
Check UBound(fixed), CLng(3), "Dim a(3) has four elements"
Check LBound(fixed), CLng(0), "lower bound 0"
Check VarType(fixed), 8204, "an array of Variants"
fixed(3) = "last"
Check fixed(3), "last", "element write and read"
CheckError "x = fixed(4)", 9, "index past the end"
CheckError "x = fixed(-1)", 9, "negative index"
CheckError "ReDim fixed(5)", 10, "a fixed array cannot be redimensioned"
Dim m(2, 3)
Check UBound(m, 1), CLng(2), "first dimension"
Check UBound(m, 2), CLng(3), "second dimension"
m(2, 3) = 23
Check m(2, 3), 23, "two indexes"
CheckError "x = m(1)", 9, "wrong number of indexes"
Dim dyn()
CheckError "x = UBound(dyn)", 9, "an empty dynamic array has no bounds"
ReDim dyn(2)
dyn(0) = "a" : dyn(1) = "b" : dyn(2) = "c"
ReDim Preserve dyn(4)
Check dyn(1), "b", "Preserve keeps the elements"
Check UBound(dyn), CLng(4), "Preserve grows"
ReDim Preserve dyn(1)
Check UBound(dyn), CLng(1), "Preserve shrinks"
Check dyn(1), "b", "what still fits stays"
ReDim dyn(3)
Check IsEmpty(dyn(1)), True, "ReDim without Preserve clears"
ReDim x(2)
Check IsArray(x), True, "ReDim creates an undeclared array"
Check dyn(1.5), Empty, "indexes round half to even"
dyn(2) = 7
Check dyn(2.5), 7, "2.5 rounds to 2"
' Arrays are values: assignment copies.
a = Array(1, 2, 3)
b = a
b(0) = 99
Check a(0), 1, "assignment copies the array"
Check b(0), 99, "the copy changed"
Sub ChangeFirst(arr)
  arr(0) = "changed"
End Sub
ChangeFirst a
Check a(0), "changed", "an array passed ByRef is the caller's array"
Sub ChangeCopy(ByVal arr)
  arr(0) = "copy"
End Sub
ChangeCopy a
Check a(0), "changed", "ByVal passes a copy"
Function MakeArray()
  MakeArray = Array("x", "y")
End Function
Check MakeArray()(1), "y", "index the result of a call"
' Erase.
Erase fixed
Check IsEmpty(fixed(3)), True, "Erase of a fixed array empties its elements"
Check UBound(fixed), CLng(3), "and keeps its size"
Erase dyn
CheckError "x = UBound(dyn)", 9, "Erase of a dynamic array frees it"
' Arrays in classes.
Class Holder
  Public items(2)
  Public Sub Fill()
    items(0) = "f"
  End Sub
End Class
Set h = New Holder
h.Fill
Check h.items(0), "f", "array field"
h.items(1) = "g"
Check h.items(1), "g", "array field written from outside"
' Nested arrays.
nested = Array(Array(1, 2), Array(3, 4))
Check nested(1)(0), 3, "an array in an array"
CheckError "y = 5 : x = y(0)", 13, "indexing a number"

' --- Arrays: bounds, ReDim Preserve, several dimensions, Erase, copies and For Each.
Dim aa(2)
CheckError "aa(3) = 1", 9, "storing past the end"
CheckError "aa(-1) = 1", 9, "storing before the start"
Check TypeName(aa), "Variant()", "fixed array name"
Check TypeName(aa(0)), "Empty", "elements start Empty"
CheckError "x = UBound(m, 3)", 9, "no third dimension"
CheckError "x = UBound(m, 0)", 9, "dimension 0"
CheckError "m(3, 0) = 1", 9, "first index out of range"
ReDim e(1, 1)
e(1, 1) = 7
ReDim Preserve e(1, 4)
Check e(1, 1), 7, "Preserve of the last dimension"
CheckError "ReDim Preserve e(3, 4)", 9, "Preserve cannot change an earlier dimension"
Dim hh(1)
hh(0) = 1 : hh(1) = 2
s = 0
For Each v In hh
  v = v * 10
  s = s + v
Next
Check s, 30, "For Each walks every element"
Check hh(0), 1, "the loop variable is a copy"
n = 0
For Each v In Array()
  n = n + 1
Next
Check n, 0, "For Each over an empty array"
Dim grid(1, 1)
grid(0, 0) = "a" : grid(1, 0) = "b" : grid(0, 1) = "c" : grid(1, 1) = "d"
t = ""
For Each v In grid
  t = t & v
Next
Check t, "abcd", "For Each goes down the first index first"
nested = Array(Array(1, 2), Array(3))
Check nested(0)(1), 2, "array of arrays"
Check UBound(nested(1)), CLng(0), "inner bounds"
Check UBound(Array()), CLng(-1), "empty Array()"
Sub Fill(arr)
  arr(0) = "filled"
End Sub
Dim p(0)
Fill p
Check p(0), "filled", "arrays pass ByRef"
Function MakeArrayOf()
  MakeArrayOf = Array(1, 2, 3)
End Function
Check MakeArrayOf()(2), 3, "index the result of a call"
Check UBound(MakeArrayOf), CLng(2), "array from a function"
ReDim z(0)
z(0) = Array(1, 2)
Check z(0)(1), 2, "array inside an element"
ReDim cube(1, 1, 1)
cube(1, 1, 1) = "deep"
Check cube(1, 1, 1), "deep", "three dimensions"
Check UBound(cube, 3), CLng(1), "third dimension"
CheckError "Dim two(1, 1) : x = two(0)", 9, "too few indices"
b = Split("a b c")
ReDim Preserve b(4)
b(4) = "e"
Check Join(b, "|"), "a|b|c||e", "ReDim Preserve of a Split result"
CheckError "x = UBound(""abc"")", 13, "UBound of text"
CheckError "Dim notArr : x = UBound(notArr)", 13, "UBound of Empty"
Check LBound(Split("")), CLng(0), "LBound of an empty Split"

' What Join refuses, and with which error: Null itself, an object without a default value,
' and a Null among the elements (there a wrong type, not an invalid use of Null).
Class NoDefaultForJoin
  Public Tag
End Class
Dim joinBox : Set joinBox = New NoDefaultForJoin
CheckError "x = Join(Null)", 94, "Join of Null"
CheckError "x = Join(joinBox)", 438, "Join of an object without a default value"
CheckError "x = Join(Array(""a"", Null, ""c""), ""-"")", 13, "Join over a Null element"
CheckError "x = Join(Array(""a""), Null)", 94, "Join with a Null separator"
Check Join(Array(7, Empty, "z"), "+"), "7++z", "Empty elements join as nothing"

' --- Array variables and array values: what Dim with parentheses fixes, what ReDim may change,
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
