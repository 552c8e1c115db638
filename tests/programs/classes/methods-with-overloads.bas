Class Printer
    Function Show(n As Integer) As String
        Return "i" & n
    End Function
    Function Show(s As String) As String
        Return "s" + s
    End Function
    Function Show(v As Variant, n As Integer) As String
        Return "v" & v & n
    End Function
End Class
Class Better Inherits Printer
    Function Show(n As Integer) As String
        Return "better " + Super.Show(n)
    End Function
End Class
Dim p As Printer = New Better
Print p.Show(1), p.Show("a"), p.Show(2.5, 1) ' expect: better i1 sa v2.51
Dim v As Variant = "text"
Print p.Show(v) ' expect: stext
v = 3
Print p.Show(v) ' expect: better i3
Dim o As Object = p
Dim ov As Variant = p
Print ov.Show("x") ' expect: sx
