Dim n As Integer = "5" ' expect parse error: The value of 'n' must be an Integer, not a String; Val reads a number from a text.
Dim s As String = 5 ' expect parse error: The value of 's' must be a String, not an Integer; Str makes a text of a number.
Dim d As Dictionary = New Date ' expect parse error: The value of 'd' must be a Dictionary, not a Date.
Dim b As UInt8 = 300 ' expect parse error: The number 300 does not fit into a UInt8.
Dim t As Boolean = 1 ' expect parse error: The value of 't' must be a Boolean, not an Integer.
Print 1 + "a" ' expect parse error: '+' adds two numbers or joins two texts (use & to join others), not an Integer and a String.
Print "a" * 2 ' expect parse error: '*' takes two numbers, not a String and an Integer.
Print "a" < 1 ' expect parse error: These can't be compared: a String and an Integer.
If "a" Then Print 1 ' expect parse error: A condition must be a Boolean, not a String.
Dim o As Object
d = o ' expect parse error: The assigned value must be a Dictionary, not an object; if it is one, convert it: Dictionary(value).
n = Nil ' expect parse error: The assigned value must be an Integer, not Nil.
Print Not "a" ' expect parse error: Not takes a Boolean or an integer, not a String.
