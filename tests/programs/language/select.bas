Function Kind(n As Integer) As String
    Select Case n
    Case 1, 2, 3
        Return "few"
    Case 4 To 9
        Return "some"
    Case Is > 100
        Return "very many"
    Case < 0
        Return "below"
    Case Else
        Return "many"
    End Select
End Function
Print Kind(2), Kind(4), Kind(9), Kind(10), Kind(101), Kind(-5) ' expect: few some some many very many below
Select Case "Disc"
Case "tape", "disc"
    Print "text" ' expect: text
End Select
Dim o As Object = New Dictionary
Select Case o
Case IsA Date
    Print "date"
Case IsA Dictionary
    Print "dictionary" ' expect: dictionary
Else
    Print "other"
End Select
Select Case 5
Case 1
    Print "no"
End Select
Select Case 2.5
Case 2 To 3
    Print "between" ' expect: between
End Select
