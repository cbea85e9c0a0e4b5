' The validation functions of the system library, loaded into the "Validate" module. The
' generator runs every function of that module, in this order, before it writes anything,
' and stops at the first that gives False. Each one that fails says why in PROJ.ProjErr.
' Only validation functions may stand here: every procedure of this module is run.

Function qvValidateDestination()
  If Trim(PROJ.Destination) = "" Then
    PROJ.ProjErr = "Quorvex: No destination folder! Please set the folder the application is written to (Destination)."
    qvValidateDestination = False
  Else
    qvValidateDestination = True
  End If
End Function

Function qvValidateTemplate()
  If Trim(PROJ.Template) = "" Then
    PROJ.ProjErr = "Quorvex: No template package! Please set the path of the template package (Template)."
    qvValidateTemplate = False
  Else
    qvValidateTemplate = True
  End If
End Function

Function qvValidateTables()
  Dim t
  qvValidateTables = False
  If IsObject(DB) Then
    If Not DB Is Nothing Then
      For Each t In DB.Tables
        If t.TblGen Then
          qvValidateTables = True
          Exit Function
        End If
      Next
    End If
  End If
  PROJ.ProjErr = "Quorvex: No table to generate! Please switch on generation (TblGen) for at least one table or view."
End Function

' A lookup names its table and columns by hand: one the project doesn't have would stop every
' page of the field's table with the database's words, so the run stops here and names it.
' The columns are checked only in a table whose columns were read. (No helpers: every
' procedure of this module runs as a check.)
Function qvValidateLookups()
  Dim t, f, lt, c, names, i, found, missing
  qvValidateLookups = True
  If Not IsObject(DB) Then Exit Function
  If DB Is Nothing Then Exit Function
  For Each t In DB.Tables
    If t.TblGen Then
      For Each f In t.Fields
        If f.FldGenerate And Trim(f.FldTagLnkTbl) <> "" And Trim(f.FldTagLnkFld) <> "" Then
          Set lt = Nothing
          For Each c In DB.Tables
            If StrComp(c.TblName, Trim(f.FldTagLnkTbl), vbTextCompare) = 0 Then Set lt = c
          Next
          missing = ""
          If lt Is Nothing Then
            missing = "the table " & Trim(f.FldTagLnkTbl)
          ElseIf lt.TblLoaded Then
            names = Array(f.FldTagLnkFld, f.FldTagLnkDisplay, f.FldTagLnkDisp2)
            For i = 0 To UBound(names)
              If Trim(names(i)) <> "" And missing = "" Then
                found = False
                For Each c In lt.Fields
                  If StrComp(c.FldName, Trim(names(i)), vbTextCompare) = 0 Then found = True
                Next
                If Not found Then missing = "the column " & Trim(names(i)) & " of " & lt.TblName
              End If
            Next
          End If
          If missing <> "" Then
            PROJ.ProjErr = "Quorvex: The lookup of field " & f.FldName & " of " & t.TblName & _
                           " names " & missing & ", which the project doesn't have!"
            qvValidateLookups = False
            Exit Function
          End If
        End If
      Next
    End If
  Next
End Function
