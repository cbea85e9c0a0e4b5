WScript.Echo "one", 2, True
WScript.Echo WScript.Arguments.Count & ":" & WScript.Arguments(1)
WScript.Quit 0
WScript.Echo "never"
