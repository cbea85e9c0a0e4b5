' A matrix class with a two-argument default property, and how arguments travel: ByRef into
' procedures (also from inside another call's argument list), ByVal, parentheses.
Class Matrix
  Private cells(), mRows, mCols
  Public Sub Init(r, c)
    mRows = r : mCols = c
    ReDim cells(r - 1, c - 1)
  End Sub
  Public Default Property Get Item(r, c)
    Item = cells(r, c)
  End Property
  Public Property Let Item(r, c, v)
    cells(r, c) = v
  End Property
  Public Property Get Rows()
    Rows = mRows
  End Property
  Public Property Get Cols()
    Cols = mCols
  End Property
  Public Function Multiply(other)
    Dim res, i, j, k, s
    Set res = New Matrix
    res.Init mRows, other.Cols
    For i = 0 To mRows - 1
      For j = 0 To other.Cols - 1
        s = 0
        For k = 0 To mCols - 1
          s = s + cells(i, k) * other(k, j)
        Next
        res(i, j) = s
      Next
    Next
    Set Multiply = res
  End Function
  Public Function ToString()
    Dim i, j, s
    For i = 0 To mRows - 1
      If i > 0 Then s = s & "/"
      For j = 0 To mCols - 1
        If j > 0 Then s = s & " "
        s = s & cells(i, j)
      Next
    Next
    ToString = s
  End Function
  Public Function Self()
    Set Self = Me
  End Function
End Class

Dim a, b
Set a = New Matrix
a.Init 2, 2
a(0, 0) = 1 : a(0, 1) = 2 : a(1, 0) = 3 : a(1, 1) = 4
Set b = a.Multiply(a)
CheckEach Array("b.ToString()", "7 10/15 22", "b(1, 1)", 22, "a.Self().Self().Rows", 2, _
  "a.Self Is a", True)
CheckError "Dim m3 : Set m3 = New Matrix : m3.Init 1, 1 : m3(0) = 1", 450, "a default property given too few arguments"

Sub Bump(ByRef n)
  n = n + 1
End Sub
Function Tag(x)
  x = x & "+"
  Tag = x
End Function
Function Id(x)
  Id = x
End Function

Class Counter
  Public N
  Public Items
End Class

Dim c, arr(2), s1, g
Set c = New Counter
c.N = 1
Bump c.N
Check c.N, 1, "an object's member is passed by value"

' A call inside another call's arguments still passes its own arguments ByRef.
s1 = "s"
Check Id(Tag(s1)) & " " & s1, "s+ s+", "a function called in an argument list"
s1 = "s"
Check Join(Array(Tag(s1), s1), ","), "s+,s+", "arguments are read left to right, after the earlier call"
s1 = "s"
Check Tag((s1)) & " " & s1, "s+ s", "unless the argument is in parentheses"
g = Array(10, 20, 30)
arr(1) = 2
CheckEach Array("Id(g(arr(1)))", 30, "Id(Id(Tag(arr(1))))", "2+", "arr(1)", "2+")
ReDim Preserve g(5)
Check UBound(g), CLng(5), "arrays read while arguments are built are not left locked"

c.Items = Array(1, 2, 3)
c.Items(1) = 20
Check c.Items(1), 20, "an element of an array held in a public member"

' Inside a function its bare name is the value being returned, also as an argument.
Function Accumulate(v)
  Accumulate = v
  Accumulate = Id(Accumulate) + Len(CStr(Accumulate))
End Function
Function Grown()
  Grown = 10
  Bump Grown
  Call Bump(Grown)
End Function
CheckEach Array("Accumulate(50)", CLng(52), "Grown()", 12)
