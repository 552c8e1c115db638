' And and Or look at their right side only when the left one does not decide.
Function Told(value As Boolean) As Boolean
    Print "asked"
    Return value
End Function
If False And Told(True) Then Print "no"
If True Or Told(True) Then Print "yes" ' expect: yes
If True And Told(False) Then Print "no" ' expect: asked
Dim d As Dictionary
If d <> Nil And d.Count > 0 Then Print "no"
If d Is Nil Or d.Count = 0 Then Print "empty" ' expect: empty
