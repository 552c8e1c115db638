Dim names() As String = Array("a", "b", "c")
For Each name As String In names
    Print name
Next
' expect: a
' expect: b
' expect: c
Dim sum As Integer
For Each n As Integer In Array(1, 2, 3)
    If n = 2 Then Continue For
    sum = sum + n
Next
Print sum ' expect: 4
Dim each1 As String
For Each each1 In names
    If each1 = "b" Then Exit For
Next
Print each1 ' expect: b
For Each v As Variant In Array("x", 1)
    Print v
Next
' expect: x
' expect: 1
Dim none() As Integer
For Each n As Integer In none
    Print "never"
Next
For Each word In Split("p q")
    Print word
Next
' expect: p
' expect: q
