Dim d As New Date(2024, 2, 28, 12, 30, 0)
d.Day = d.Day + 2
Print d.SQLDate ' expect: 2024-03-01
Print d.SQLDateTime ' expect: 2024-03-01 12:30:00
Dim other As New Date(2024, 3, 1)
Print other < d, d > other ' expect: True True
Print "at " & other ' expect: at 2024-03-01 00:00:00
