Dim i As Integer
While i < 3
    i = i + 1
Wend
Print i ' expect: 3
While True
    i = i + 1
    If i > 5 Then Exit While
End While
Print i ' expect: 6
Do
    i = i - 1
Loop Until i = 0
Print i ' expect: 0
Do While i < 2
    i += 1
Loop
Print i ' expect: 2
Do Until i = 4
    i += 1
Loop
Print i ' expect: 4
Do
    i += 1
    If i Mod 2 = 0 Then Continue Do
    If i > 8 Then Exit Do
Loop
Print i ' expect: 9
Do
    i += 1
Loop While i < 3
Print i ' expect: 10
