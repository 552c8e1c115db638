Function What(n As Integer) As String
    Return "integer"
End Function
Function What(n As Double) As String
    Return "double"
End Function
Function What(s As String) As String
    Return "string"
End Function
Function What(s As String, n As Integer) As String
    Return "both"
End Function
Function What(d As Dictionary) As String
    Return "dictionary"
End Function
Print What(1), What(1.5), What("a"), What("a", 1), What(Nil), What(New Dictionary)
' expect: integer double string both dictionary dictionary
