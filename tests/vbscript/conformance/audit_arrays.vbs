' Arrays: bounds, ReDim Preserve, several dimensions, Erase, copies and For Each.
Dim a(2)
Check UBound(a), CLng(2), "UBound"
Check LBound(a), CLng(0), "LBound"
CheckError "a(3) = 1", 9, "past the end"
CheckError "a(-1) = 1", 9, "before the start"
Check TypeName(a), "Variant()", "fixed array name"
Check TypeName(a(0)), "Empty", "elements start Empty"
Dim d()
CheckError "x = UBound(d)", 9, "UBound of an undimensioned array"
ReDim d(2)
d(0) = "x" : d(2) = "z"
ReDim Preserve d(4)
Check d(0), "x", "Preserve keeps values"
Check UBound(d), CLng(4), "Preserve grows"
ReDim Preserve d(1)
Check UBound(d), CLng(1), "Preserve shrinks"
Check d(0), "x", "shrunk array keeps its head"
ReDim d(3)
Check TypeName(d(0)), "Empty", "ReDim without Preserve clears"
Dim m(2, 3)
Check UBound(m, 1), CLng(2), "first dimension"
Check UBound(m, 2), CLng(3), "second dimension"
CheckError "x = UBound(m, 3)", 9, "no third dimension"
CheckError "x = UBound(m, 0)", 9, "dimension 0"
m(2, 3) = "corner"
Check m(2, 3), "corner", "two indices"
CheckError "m(3, 0) = 1", 9, "first index out of range"
ReDim e(1, 1)
e(1, 1) = 7
ReDim Preserve e(1, 4)
Check e(1, 1), 7, "Preserve of the last dimension"
CheckError "ReDim Preserve e(3, 4)", 9, "Preserve cannot change an earlier dimension"
Dim f(2)
f(1) = 5
Erase f
Check TypeName(f(1)), "Empty", "Erase of a fixed array empties it"
Check UBound(f), CLng(2), "and keeps its size"
ReDim g(2)
Erase g
CheckError "x = UBound(g)", 9, "Erase of a dynamic array frees it"
Dim h(1)
h(0) = 1 : h(1) = 2
k = h
k(0) = 99
Check h(0), 1, "assignment copies the array"
s = 0
For Each v In h
  v = v * 10
  s = s + v
Next
Check s, 30, "For Each walks every element"
Check h(0), 1, "the loop variable is a copy"
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
Function MakeArray()
  MakeArray = Array(1, 2, 3)
End Function
Check MakeArray()(2), 3, "index the result of a call"
Check UBound(MakeArray), CLng(2), "array from a function"
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
