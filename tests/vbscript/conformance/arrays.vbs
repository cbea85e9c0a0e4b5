' Arrays: Dim, ReDim [Preserve], Erase, bounds, several dimensions, value semantics and For Each.

' --- Fixed and dynamic arrays: Dim, ReDim [Preserve], Erase, bounds, value semantics.
Dim fixed(3)
CheckEach Array("UBound(fixed)", CLng(3), "LBound(fixed)", CLng(0), "VarType(fixed)", 8204)
fixed(3) = "last"
Check fixed(3), "last", "element write and read"
CheckErrors Array("x = fixed(4)", 9, "x = fixed(-1)", 9, "ReDim fixed(5)", 10)
Dim m(2, 3)
CheckEach Array("UBound(m, 1)", CLng(2), "UBound(m, 2)", CLng(3))
m(2, 3) = 23
Check m(2, 3), 23, "two indexes"
CheckError "x = m(1)", 9, "wrong number of indexes"
Dim dyn()
CheckError "x = UBound(dyn)", 9, "an empty dynamic array has no bounds"
ReDim dyn(2)
dyn(0) = "a" : dyn(1) = "b" : dyn(2) = "c"
ReDim Preserve dyn(4)
CheckEach Array("dyn(1)", "b", "UBound(dyn)", CLng(4))
ReDim Preserve dyn(1)
CheckEach Array("UBound(dyn)", CLng(1), "dyn(1)", "b")
ReDim dyn(3)
Check IsEmpty(dyn(1)), True, "ReDim without Preserve clears"
ReDim x(2)
CheckEach Array("IsArray(x)", True, "dyn(1.5)", Empty)
dyn(2) = 7
Check dyn(2.5), 7, "2.5 rounds to 2"
' Arrays are values: assignment copies.
a = Array(1, 2, 3)
b = a
b(0) = 99
CheckEach Array("a(0)", 1, "b(0)", 99)
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
CheckEach Array("IsEmpty(fixed(3))", True, "UBound(fixed)", CLng(3))
Erase dyn
CheckError "x = UBound(dyn)", 9, "Erase of a dynamic array frees it"
' Nested arrays.
nested = Array(Array(1, 2), Array(3, 4))
Check nested(1)(0), 3, "an array in an array"
CheckError "y = 5 : x = y(0)", 13, "indexing a number"

' --- Arrays: bounds, ReDim Preserve, several dimensions, Erase, copies and For Each.
Dim aa(2)
CheckErrors Array("aa(3) = 1", 9, "aa(-1) = 1", 9)
CheckEach Array("TypeName(aa)", "Variant()", "TypeName(aa(0))", "Empty")
CheckErrors Array("x = UBound(m, 3)", 9, "x = UBound(m, 0)", 9, "m(3, 0) = 1", 9)
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
CheckEach Array("s", 30, "hh(0)", 1)
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
CheckEach Array("UBound(nested(1))", CLng(0), "UBound(Array())", CLng(-1))
Check UBound(MakeArray), CLng(1), "UBound of a call without parentheses"
ReDim cube(1, 1, 1)
cube(1, 1, 1) = "deep"
CheckEach Array("cube(1, 1, 1)", "deep", "UBound(cube, 3)", CLng(1))
b = Split("a b c")
ReDim Preserve b(4)
b(4) = "e"
Check Join(b, "|"), "a|b|c||e", "ReDim Preserve of a Split result"
CheckErrors Array("x = UBound(""abc"")", 13, "Dim notArr : x = UBound(notArr)", 13)
Check LBound(Split("")), CLng(0), "LBound of an empty Split"

' What Join refuses, and with which error: Null itself, an object without a default value,
' and a Null among the elements (there a wrong type, not an invalid use of Null).
Class NoDefaultForJoin
  Public Tag
End Class
Dim joinBox : Set joinBox = New NoDefaultForJoin
CheckErrors Array("x = Join(Null)", 94, "x = Join(joinBox)", 438, _
  "x = Join(Array(""a"", Null, ""c""), ""-"")", 13, "x = Join(Array(""a""), Null)", 94)
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
ReDim Preserve fixedArr(5)
Check Err.Number, CLng(10), "ReDim Preserve of a fixed array"
Check UBound(fixedArr), CLng(2), "and it keeps its size"
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

ReDim plain(-1)
Check UBound(plain), CLng(-1), "an empty array has upper bound -1"

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
CheckEach Array("UBound(x)", CLng(3), "x(3)", 9)

' Assignment copies an array; so does passing it in parentheses.
Sub SetFirst(a)
  a(0) = "set"
End Sub
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

' For Each walks a copy of the array.
x = Array(1, 2, 3)
n = 0
For Each y In x
  x(2) = "changed"
  n = n + y
Next
Check n, 6, "For Each walks the array as it was"

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
CheckEach Array("jag(1)(1)(0)", 40, "inner(0)", 4)
jag(1)(1)(1) = Array(7, Array(8, 9))
jag(1)(1)(1)(1)(0) = 80
CheckEach Array("jag(1)(1)(1)(1)(0)", 80, "jag(0)(1) & jag(1)(0)", "23")
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
CheckEach Array("jag(1)(1)(0)", 41, "levelCalls", 2)
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

' --- Array, Split, Join and Filter at their edges.
CheckEach Array("UBound(Array(1, ""x"", 2.5))", CLng(2), "Join(Array(1, ""x"", 2.5), ""-"")", "1-x-2.5", _
  "Join(Array(1, ""x"", 2.5))", "1 x 2.5", "UBound(Split(""a,b,,c"", "",""))", CLng(3), _
  "Join(Split(""a,b,,c"", "",""), ""|"")", "a|b||c", "UBound(Split(""""))", CLng(-1), _
  "Join(Split(""a b c"", "" "", 2), ""|"")", "a|b c", _
  "Join(Split(""aXbxc"", ""x"", -1, 1), ""|"")", "a|b|c", "Join(Split(""abc"", """"), ""|"")", "abc", _
  "UBound(Split(""a b"", "" "", 0))", CLng(-1), _
  "Join(Filter(Array(""Apple"", ""banana"", ""cherry""), ""an""), "","")", "banana", _
  "Join(Filter(Array(""Apple"", ""banana"", ""cherry""), ""A"", False), "","")", "banana,cherry", _
  "Join(Filter(Array(""Apple"", ""banana"", ""cherry""), ""A"", True, 1), "","")", "Apple,banana")
CheckErrors Array("x = UBound(""x"")", 13, "x = Split(Null)", 94)
