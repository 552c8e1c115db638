Class Person
    Name As String
    Age As Integer = 30
    Private secret As String = "s"
    Tags() As String
    Data As New Dictionary
    Const Kind = "human"
    Shared Count As Integer
    Sub Constructor(n As String, Optional a As Integer = 18)
        Name = n
        Self.Age = a
        Count += 1
    End Sub
    Sub Constructor()
        Me.Name = "nobody"
        Person.Count = Person.Count + 1
    End Sub
    Function Describe() As String
        Return Name + " is " & Age & Secret1
    End Function
    Private Function Secret1() As String
        Return "(" + secret + ")"
    End Function
    Shared Function Total() As Integer
        Return Count
    End Function
End Class
Dim p As New Person("Ann", 20)
Print p.Describe ' expect: Ann is 20(s)
Dim q As Person = New Person
Print q.Name, q.Age ' expect: nobody 30
q.Tags.Append "x"
Print q.Tags.Count, p.Tags.Count, q.Tags(0) ' expect: 1 0 x
p.Data.Value("k") = 1
Print p.Data.Count, q.Data.Count ' expect: 1 0
Print Person.Kind, Person.Count, Person.Total, p.Kind ' expect: human 2 2 human
Person.Count = 10
Print Person.Total() ' expect: 10
Print p Is p, p Is q, p = q, p <> q ' expect: True False False True
