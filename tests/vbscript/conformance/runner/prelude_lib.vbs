' A helper loaded with --prelude whose procedure fails when the script calls it.
Function Halve(x)
  Halve = x / 0
End Function
