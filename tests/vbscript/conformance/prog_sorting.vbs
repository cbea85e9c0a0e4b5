' Sorting routines over arrays grown with ReDim Preserve: mixed numbers and numeric text,
' strings in binary order, and a matrix resized in its last dimension.
Sub BubbleSort(arr)
  Dim i, j, t
  For i = UBound(arr) - 1 To 0 Step -1
    For j = 0 To i
      If arr(j) > arr(j + 1) Then t = arr(j): arr(j) = arr(j + 1): arr(j + 1) = t
    Next
  Next
End Sub

Sub QuickSort(a, lo, hi)
  Dim p, i, j, t
  If lo >= hi Then Exit Sub
  p = a((lo + hi) \ 2): i = lo: j = hi
  Do While i <= j
    Do While a(i) < p: i = i + 1: Loop
    Do While a(j) > p: j = j - 1: Loop
    If i <= j Then t = a(i): a(i) = a(j): a(j) = t: i = i + 1: j = j - 1
  Loop
  QuickSort a, lo, j
  QuickSort a, i, hi
End Sub

Sub InsertionSortBy(arr, compare)
  Dim i, j, cur
  For i = 1 To UBound(arr)
    cur = arr(i)
    j = i - 1
    Do While j >= 0
      If compare(arr(j), cur) <= 0 Then Exit Do
      arr(j + 1) = arr(j)
      j = j - 1
    Loop
    arr(j + 1) = cur
  Next
End Sub

Function ByLength(a, b)
  ByLength = Len(a) - Len(b)
  If ByLength = 0 Then ByLength = StrComp(a, b, vbTextCompare)
End Function

' Growing an array one element at a time; strings stay strings, so "10" and "2" compare
' with the numbers as text does with numbers: a number is less than any string.
Dim arr(), n, v
n = 0
For Each v In Array(5, 3, "10", 9, 1.5, "2", 7)
  ReDim Preserve arr(n)
  arr(n) = v
  n = n + 1
Next
Check UBound(arr), CLng(6), "ReDim Preserve grew the array"
BubbleSort arr
Check Join(arr, ","), "1.5,3,5,7,9,10,2", "numbers first, then the strings in text order"

Dim nums
nums = Array(5, 3, 10, 9, 1.5, 2, 7, -1, 0, 3)
QuickSort nums, 0, UBound(nums)
Check Join(nums, ","), "-1,0,1.5,2,3,3,5,7,9,10", "quick sort of numbers"

Dim words
words = Split("pear,Apple,banana,apple,Cherry", ",")
QuickSort words, 0, UBound(words)
Check Join(words, ","), "Apple,Cherry,apple,banana,pear", "binary order puts capitals first"
InsertionSortBy words, GetRef("ByLength")
Check Join(words, ","), "pear,Apple,apple,banana,Cherry", "a comparison passed as a GetRef callback"

' A matrix kept dynamic so its last dimension can grow without losing the data.
Dim m(), i, j
ReDim m(2, 3)
For i = 0 To 2
  For j = 0 To 3
    m(i, j) = i * 10 + j
  Next
Next
ReDim Preserve m(2, 5)
CheckEach Array("UBound(m, 2)", CLng(5), "m(2, 3)", 23, "IsEmpty(m(1, 5))", True)
CheckErrors Array("ReDim Preserve m(3, 5)", 9, _
  "Dim fixedArr(3) : ReDim Preserve fixedArr(5)", 10)
ReDim m(1)
Check UBound(m), CLng(1), "ReDim without Preserve may change the rank"
