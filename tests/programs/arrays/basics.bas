Dim a(3) As Integer
Print Ubound(a), a(0), a.Count ' expect: 3 0 4
a(3) = 9
Print a(3) ' expect: 9
Dim b() As String
Print Ubound(b), b.LastIndex ' expect: -1 -1
b.Append "x"
b.Add("z")
b.Insert(1, "y")
Print Join(b, "") ' expect: xyz
b.Remove(0)
Print b(0), b.Count ' expect: y 2
Redim a(1)
Print Ubound(a) ' expect: 1
Redim a(5)
Print a(5), a.Count ' expect: 0 6
b.ResizeTo(0)
b.RemoveAll
Print b.Count ' expect: 0
Dim c() As Integer = Array(1, 2, 3)
Dim d() As Integer = c
d(0) = 100
Print c(0) ' expect: 100
d = c.Clone
d(0) = 1
Print c(0), c.IndexOf(3), c.IndexOf(42), c.Contains(2) ' expect: 100 2 -1 True
Print c.Pop, c.Count ' expect: 3 2
Print Array(1, 2.5)(1), Array("a", 1)(0) ' expect: 2.5 a
Append(c, 7)
Print c(2) ' expect: 7
