Set args = WScript.Arguments
WScript.Echo args.Count & " " & args(1)
WScript.Echo args.Named.Count & " " & args.Named("out") & " " & IsEmpty(args.Named("v")) & " " & args.Named.Exists("V") & " " & args.Named.Exists("x")
WScript.Echo args.Unnamed.Count & " " & args.Unnamed(0) & " " & args.Unnamed(1)
WScript.Echo
WScript.Echo "a", "b"
WScript.Quit 3
