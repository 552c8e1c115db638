Dim x As Integer = 5
If x = 5 Then Print "five" ' expect: five
If x = 6 Then Print "six" Else Print "not six" ' expect: not six
If x = 5 Then Print "a" : Print "b"
' expect: a
' expect: b
If x > 10 Then
    Print "large"
ElseIf x > 3 Then
    Print "middle" ' expect: middle
ElseIf x > 4 Then
    Print "never"
Else
    Print "small"
End If
If x = 5 Then
    If x = 6 Then
        Print "no"
    Else
        Print "nested" ' expect: nested
    End If
End If
If x = 1 Then Print "1" Else If x = 5 Then Print "chained" Else Print "other" ' expect: chained
Print If(x = 5, "yes", "no") ' expect: yes
Print If(x = 6, 1, 2.5) ' expect: 2.5
If x Then Print "not zero" ' expect: not zero
Dim v As Variant = True
If v Then Print "variant" ' expect: variant
