Print Chr(65) + Chr(228) + Chr(8364), Asc("A"), Asc("€"), Asc("") ' expect: Aä€ 65 8364 0
Print LenB(ChrB(200)), AscB(ChrB(200)) ' expect: 1 200
Print Chr(34) + EndOfLine + "next"
' expect: "
' expect: next
Try
    Print Chr(-1)
Catch e As OutOfBoundsException
    Print e.Message ' expect: there is no character with the number -1
End Try
