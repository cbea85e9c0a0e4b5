' Records as class instances: a fluent initializer returning Me, sorting objects by a property
' named at run time through Eval, grouping into a Dictionary of arrays, and totals per group.
Class Employee
  Public Name, Salary, Dept
  Public Function Init(n, s, d)
    Name = n : Salary = s : Dept = d
    Set Init = Me
  End Function
  Public Function ToString()
    ToString = Name & " (" & Dept & ") " & FormatCurrency(Salary, 0)
  End Function
End Class

Function NewEmp(n, s, d)
  Set NewEmp = (New Employee).Init(n, s, d)
End Function

Sub SortBy(arr, prop)
  Dim i, j, t
  For i = 0 To UBound(arr) - 1
    For j = i + 1 To UBound(arr)
      If Eval("arr(j)." & prop) < Eval("arr(i)." & prop) Then
        Set t = arr(i) : Set arr(i) = arr(j) : Set arr(j) = t
      End If
    Next
  Next
End Sub

Function Names(arr)
  Dim e
  For Each e In arr
    Names = Names & e.Name & ","
  Next
End Function

Dim staff(4)
Set staff(0) = NewEmp("Zoe", 52000, "IT")
Set staff(1) = NewEmp("adam", 61000.5, "HR")
Set staff(2) = NewEmp("Bob", 48000, "IT")
Set staff(3) = NewEmp("carl", 75000, "Ops")
Set staff(4) = NewEmp("Dana", 61000.5, "HR")

SortBy staff, "Name"
Check Names(staff), "Bob,Dana,Zoe,adam,carl,", "sorted by name, capitals first"
SortBy staff, "Salary"
CheckEach Array("Names(staff)", "Bob,Zoe,Dana,adam,carl,", _
  "staff(0).ToString()", "Bob (IT) $48,000", "staff(2).ToString()", "Dana (HR) $61,001")

Dim byDept, e, a, k, report, total
Set byDept = CreateObject("Scripting.Dictionary")
For Each e In staff
  If Not byDept.Exists(e.Dept) Then byDept.Add e.Dept, Array()
  a = byDept(e.Dept)
  ReDim Preserve a(UBound(a) + 1)
  Set a(UBound(a)) = e
  byDept(e.Dept) = a
Next
report = ""
For Each k In byDept.Keys
  total = 0
  For Each e In byDept(k)
    total = total + e.Salary
  Next
  report = report & k & ":" & (UBound(byDept(k)) + 1) & ":" & total & ":" & _
           FormatNumber(total / (UBound(byDept(k)) + 1), 2) & ";"
Next
CheckEach Array("report", "IT:2:100000:50,000.00;HR:2:122001:61,000.50;Ops:1:75000:75,000.00;", _
  "byDept.Items()(1)(0).Name", "Dana", "TypeName(byDept(""IT""))", "Variant()")

' A public field that holds a plain value cannot be indexed from outside.
CheckErrors Array("Dim idxProbe : idxProbe = staff(0).Name(0)", 438, _
  "staff(0).Salary(1) = 5", 438)
