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
