Class Item
    Number As Integer
    Sub Constructor(n As Integer)
        Number = n
    End Sub
End Class
Class Special Inherits Item
End Class
Dim items() As Item
items.Append New Item(1)
items.Append New Special(2)
For Each one As Item In items
    Print one.Number, one IsA Special
Next
' expect: 1 False
' expect: 2 True
Dim made() As Item = Array(New Item(5), New Item(6))
Print made(1).Number ' expect: 6
made(1).Number = 8
Print made(1).Number ' expect: 8
Dim nothing(1) As Item
Print nothing(0) Is Nil ' expect: True
Function Make(n As Integer) As Item()
    Dim list() As Item
    For i As Integer = 1 To n
        list.Append New Item(i * 10)
    Next
    Return list
End Function
Print Make(3)(2).Number ' expect: 30
Print items.IndexOf(items(1)) ' expect: 1
Dim variants() As Variant = Array(1, "a", 2.5, Nil)
Print variants.Count, variants(1), variants(3) = Nil ' expect: 4 a True
