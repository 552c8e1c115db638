Print "before" ' expect: before
Return 7
Print "after"
' expect exit: 7
