' args: one "two words" --three ""
Print App.Arguments.Count ' expect: 4
For Each a As String In App.Arguments
    Print "[" + a + "]"
Next
' expect: [one]
' expect: [two words]
' expect: [--three]
' expect: []
Print App.Arguments(1), App.ExecutableFile.Name ' expect: two words arguments.bas
