Module Tools
    Const Factor = 3
    Count As Integer = 10
    Function Triple(n As Integer) As Integer
        Count += 1
        Return n * Factor
    End Function
End Module
Print Tools.Triple(4), Tools.Count, Tools.Factor ' expect: 12 11 3
Tools.Count = 1
Print Tools.Count ' expect: 1
