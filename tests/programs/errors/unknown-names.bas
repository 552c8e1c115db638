Dim total As Integer
Print totl ' expect parse error: There is no 'totl'; perhaps 'total' is meant.
totla = 3 ' expect parse error: There is no 'totla'; perhaps 'total' is meant.
Dim x As Integr ' expect parse error: There is no type 'Integr'; perhaps 'Integer' is meant.
Foo 1, 2 ' expect parse error: There is no 'Foo'.
Print Leftt("a", 1) ' expect parse error: There is no 'Leftt'; perhaps 'Left' is meant.
Dim y As Integer = Zzz(1) + 1 ' expect parse error: There is no 'Zzz'.
Print y + x
StdErr.Wrte "a" ' expect parse error: StdErr has no 'Wrte'; perhaps 'Write' is meant.
Dim total As String ' expect parse error: The name 'total' is declared twice.
