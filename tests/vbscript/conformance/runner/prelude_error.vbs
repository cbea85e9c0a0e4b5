' The failure inside the prelude's procedure is reported under the prelude's name.
Dim r
r = Halve(3)
