' The forms of a call: with and without Call, parentheses around the name, around the only
' argument (a copy) or around the first of several, and calls through GetRef.
Dim x, y, log

Function SetFirst(a)
  a(0) = "set"
  SetFirst = 1
End Function
Sub Bump(n)
  n = n + 1
End Sub

x = Array(0)
Call (((SetFirst))) (x)
Check x(0), "set", "Call with the name in parentheses passes by reference"
x = Array(0)
Call (SetFirst) ((x))
Check x(0), 0, "and doubled parentheses pass a copy"
x = Array(0)
y = (SetFirst)(x)
Check y, 1, "a parenthesised function name called in an expression"
Check x(0), "set", "with its argument by reference"
y = ((x))(0)
Check y, "set", "indexing a parenthesised array name"

y = 1
Bump (y)
Check y, 1, "one argument in parentheses without Call is a copy"
Call Bump(y)
Check y, 2, "with Call it is by reference"
Bump y
Check y, 3, "without parentheses by reference"

' After the name, a parenthesised first argument may go on with members and more arguments.
Class Box
  Public v
  Public Function Self()
    Set Self = Me
  End Function
End Class
Sub Note(a, b)
  log = a & "," & b
End Sub
Set x = New Box
x.v = "inner"
Note (x).Self().v, "second"
Check log, "inner,second", "first argument starting with a parenthesis"
Note (1 + 2) * 2, 3
Check log, "6,3", "parenthesised part of the first argument"
Class Shower
  Public Sub Show(a, b)
    log = a & ";" & b
  End Sub
End Class
Dim holder(0)
Set holder(0) = New Shower
holder(0).Show (2), 3
Check log, "2;3", "a method of an element called with a parenthesised first argument"

' GetRef with parameters, called with and without Call.
Function Join3(a, b, c)
  Join3 = a & b & c
End Function
Set y = GetRef("Join3")
Check y(1, 2, 3), "123", "a GetRef reference takes the arguments"
Set y = GetRef("Bump")
x = 5
y x
Check x, 6, "a GetRef Sub passes by reference"

' New RegExp is the built-in object even when the script has a class of that name.
Class RegExp
  Public Property Get Global()
    Global = "script class"
  End Property
End Class
Set x = New RegExp
Check x.Global, False, "New RegExp"
