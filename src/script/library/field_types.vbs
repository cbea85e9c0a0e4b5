' Tests on column types. A type is an ADO data type number, as a field's FldType holds it.

' The class of a type: 1 number, 2 date and time, 3 text, 4 Boolean, 5 GUID, 6 anything else
' (binary, long binary, variants). The engine's FieldTypeClass gives the same answers.
Function qvFieldTypeClass(fldType)
  Select Case CLng(fldType)
    Case 2, 3, 4, 5, 6, 16, 20, 131
      qvFieldTypeClass = 1
    Case 7, 133, 134, 135
      qvFieldTypeClass = 2
    Case 129, 130, 200, 201, 202, 203
      qvFieldTypeClass = 3
    Case 11
      qvFieldTypeClass = 4
    Case 72
      qvFieldTypeClass = 5
    Case Else
      qvFieldTypeClass = 6
  End Select
End Function

Function qvIsNumberType(fldType)
  qvIsNumberType = (qvFieldTypeClass(fldType) = 1)
End Function

Function qvIsDateType(fldType)
  qvIsDateType = (qvFieldTypeClass(fldType) = 2)
End Function

Function qvIsTextType(fldType)
  qvIsTextType = (qvFieldTypeClass(fldType) = 3)
End Function

Function qvIsBooleanType(fldType)
  qvIsBooleanType = (qvFieldTypeClass(fldType) = 4)
End Function

Function qvIsGuidType(fldType)
  qvIsGuidType = (qvFieldTypeClass(fldType) = 5)
End Function

' Memo and long binary columns: no search, no sorting, no key.
Function qvIsLongType(fldType)
  Select Case CLng(fldType)
    Case 201, 203, 205
      qvIsLongType = True
    Case Else
      qvIsLongType = False
  End Select
End Function

' Binary columns, which a page shows as a link or an image rather than as text.
Function qvIsBinaryType(fldType)
  Select Case CLng(fldType)
    Case 128, 204, 205
      qvIsBinaryType = True
    Case Else
      qvIsBinaryType = False
  End Select
End Function
