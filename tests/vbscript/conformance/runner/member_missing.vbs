' An uncaught error names the member the object does not have.
Set d = CreateObject("Scripting.Dictionary")
d.NoSuchMember
