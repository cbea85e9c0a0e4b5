' An uncaught "Object required" names the variable that held no object.
Dim p
p.Name = 1
