' Exit and Continue with a word mean the nearest loop of that kind, also from inside of another one.
For i As Integer = 1 To 3
    Dim n As Integer = 0
    While True
        n = n + 1
        If n = 2 And i = 1 Then Continue For
        If n = 2 And i = 2 Then Exit For
        Print i, n
    Wend
Next
' expect: 1 1
' expect: 2 1
Do
    For k As Integer = 1 To 9
        If k = 3 Then Exit Do
    Next
    Print "never"
Loop
Print "done" ' expect: done
