' After a dot any word is a name.
Class Chain
    Private following As Chain
    Sub Constructor(n As Chain)
        following = n
    End Sub
    Function Step1() As Chain
        Return Self.following
    End Function
End Class
Dim last As New Chain(Nil)
Dim first As New Chain(last)
Print first.Step1 Is last, last.Step1 Is Nil ' expect: True True
' Words that mean something in certain places only are names elsewhere.
Dim step As Integer = 2
Dim event As String = "e"
Dim get As Integer = 3
For i As Integer = 1 To 3 Step step
    Print i
Next
' expect: 1
' expect: 3
Print event, get ' expect: e 3
