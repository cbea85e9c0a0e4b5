x = 1 + 2 * 3
If x > 5 Then y = "big" Else y = "small"
