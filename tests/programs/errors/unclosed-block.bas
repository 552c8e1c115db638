Sub Go()
    While True ' expect parse error: The While that begins here is not closed; its end, 'Wend', is missing.
        Print 1
End Sub
For i As Integer = 1 To 3
    If i = 2 Then ' expect parse error: The If that begins here is not closed; its end, 'End If', is missing.
        Print 2
Next
Do ' expect parse error: The Do that begins here is not closed; its end, 'Loop', is missing.
Print 3
