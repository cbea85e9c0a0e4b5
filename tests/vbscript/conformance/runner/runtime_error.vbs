' An uncaught run-time error, reported as cscript reports it.
x = 1
y = x / 0
