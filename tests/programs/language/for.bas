Dim text As String
For i As Integer = 1 To 5
    text = text & i
Next
Print text ' expect: 12345
text = ""
For i As Integer = 10 DownTo 1 Step 3
    text = text & i & " "
Next i
Print text ' expect: 10 7 4 1
text = ""
For i As Integer = 5 To 1 Step -2
    text = text & i
Next
Print text ' expect: 531
Dim k As Integer
For k = 1 To 3
Next
Print k ' expect: 4
For k = 3 To 1
    Print "never"
Next
Print k ' expect: 3
text = ""
For x As Double = 0 To 1 Step 0.25
    text = text & x & " "
Next
Print text ' expect: 0 0.25 0.5 0.75 1
Dim count As Integer
For b As UInt8 = 250 To 255
    count = count + 1
Next
Print count ' expect: 6
For i As Integer = 1 To 3
    For j As Integer = 1 To 3
        If j = 2 Then Continue
        If i = 2 Then Exit
        Print i, j
    Next
Next
' expect: 1 1
' expect: 1 3
' expect: 3 1
' expect: 3 3
