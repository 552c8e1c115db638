' Top-level variables are seen by routines; names of a block end with it.
Dim total As Integer = 1
Sub AddTo(n As Integer)
    total = total + n
End Sub
AddTo 4
Print total ' expect: 5
If True Then
    Dim inside As String = "a"
    Print inside ' expect: a
End If
If True Then
    Dim inside As Integer = 2
    Print inside ' expect: 2
End If
For i As Integer = 1 To 2
    Dim fresh As Integer
    fresh = fresh + i
    Print fresh
Next
' expect: 1
' expect: 2
Sub Own()
    Dim total As String = "own"
    Print total ' expect: own
End Sub
Own
