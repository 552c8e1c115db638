Sub Go(a As Integer, Optional b As Integer = 1)
End Sub
Go ' expect parse error: 'Go' takes at least 1 argument, not 0.
Go 1, 2, 3 ' expect parse error: 'Go' takes at most 2 arguments, not 3.
Go "a" ' expect parse error: 'a' of 'Go' must be an Integer, not a String; Val reads a number from a text.
Sub Ref(ByRef n As Integer)
End Sub
Ref 5 ' expect parse error: This can't be assigned to.
Dim d As Double
Ref d ' expect parse error: 'n' of 'Ref' is ByRef and needs a variable of type Int32, not Double.
Function F(s As String) As Integer
    Return s ' expect parse error: The value of Return must be an Integer, not a String; Val reads a number from a text.
End Function
Sub NoValue()
    Return 1 ' expect parse error: A Sub gives nothing back; make it a Function, or write Return alone.
End Sub
Print NoValue() ' expect parse error: This call gives no value: it is a Sub.
Const C = 1
C = 2 ' expect parse error: 'C' is a constant and can't be assigned to.
Const V = F("a") ' expect parse error: 'F' can't be called here: a constant is computed from constants.
Print Left("a") ' expect parse error: 'Left' takes 2 arguments, not 1.
