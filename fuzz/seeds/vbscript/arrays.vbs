' Fixed and dynamic arrays: Dim, ReDim [Preserve], Erase, bounds, value semantics.
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
