Raise New Date ' expect parse error: What is raised must be a RuntimeException, not a Date.
Raise ' expect parse error: 'Raise' alone raises the caught exception again; it works in a Catch block only.
Try
Catch e As Date ' expect parse error: 'Date' is not an exception.
End Try
