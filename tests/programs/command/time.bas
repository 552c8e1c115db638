Dim before As Double = Microseconds
Sleep 50
App.DoEvents
Dim passed As Double = Microseconds - before
Print passed >= 50000, passed < 5000000 ' expect: True True
Print Ticks > 0 ' expect: True
