Dim n() As Integer = Array(3, 1, 2)
n.Sort
Print n.Join(",") ' expect: 1,2,3
n.Reverse
Print n.Join(",") ' expect: 3,2,1
Dim s() As String = Array("pear", "Apple", "fig")
s.Sort
Print Join(s) ' expect: Apple fig pear
Dim d() As Double = Array(2.5, -1, 3)
d.Sort
Print d.Join(" ") ' expect: -1 2.5 3
