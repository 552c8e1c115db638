' input: Ann
' input: 42
' input: rest
' input: of it
Dim name As String = Input("Name? ")
Print "Hello " + name
' expect: Name? Hello Ann
Print Val(StdIn.ReadLine) + 1 ' expect: 43
Print StdIn.EOF ' expect: False
Print ReplaceAll(StdIn.ReadAll, EndOfLine, "/") ' expect: rest/of it/
Print StdIn.EOF, "[" + StdIn.ReadLine + "]" ' expect: True []
