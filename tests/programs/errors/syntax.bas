Dim = 5 ' expect parse error: Expected a variable's name but found '='.
Print (1 + 2 ' expect parse error: Expected ',' or ')' but found the end of the line.
x = = 3 ' expect parse error: Expected a value but found '='.
If 1 = 1 Then
    Print 1 2 ' expect parse error: Expected the end of the statement but found the number 2.
End If
Next ' expect parse error: 'Next' stands here without the block that it belongs to.
Dim s As String = "open ' expect parse error: The text that begins here has no closing quote on its line.
5 + 5 ' expect parse error: Expected the end of the statement but found '+'.
Print 12abc ' expect parse error: '12abc' is neither a number nor a name.
Print &hXY ' expect parse error: Expected a value but found '&'.
Print "a" ? "b" ' expect parse error: '?' means nothing here.
Exit Planet ' expect parse error: Exit leaves For, While, Do, Sub or Function, not 'Planet'.
Dim If As Integer ' expect parse error: Expected a variable's name, but 'If' is a word of the language.
