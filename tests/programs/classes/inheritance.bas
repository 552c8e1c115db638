Class Shape
    Name As String = "shape"
    Sub Constructor(n As String)
        Name = n
    End Sub
    Function Area() As Double
        Return 0
    End Function
    Function Text() As String
        Return Name + ": " & Area
    End Function
End Class
Class Square Inherits Shape
    Side As Double
    Sub Constructor(s As Double)
        Super.Constructor("square")
        Side = s
    End Sub
    Function Area() As Double
        Return Side * Side
    End Function
    Function Text() As String
        Return "<" + Super.Text + ">"
    End Function
End Class
Class Unit Inherits Square
    Sub Constructor()
        Super.Constructor(1)
    End Sub
End Class
Dim shapes() As Shape = Array(New Shape("dot"), New Square(2), New Unit)
For Each s As Shape In shapes
    Print s.Text
Next
' expect: dot: 0
' expect: <square: 4>
' expect: <square: 1>
Print shapes(1) IsA Square, shapes(0) IsA Square, shapes(2) IsA Shape ' expect: True False True
Print Square(shapes(1)).Side ' expect: 2
Try
    Print Square(shapes(0)).Side
Catch e As IllegalCastException
    Print e.Message ' expect: the value is of type Shape, not Square
End Try
