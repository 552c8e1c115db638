' A comment.
// Another one.
Rem The oldest form.
Print "a" ' expect: a
Print "it's // no comment" // a comment at the end
' expect: it's // no comment
#Pragma Unused
Print "b" : Print "c" ' two statements on one line
' expect: b
' expect: c
Dim sum As Integer = 1 + _
    2 + _ ' a comment may follow the underscore
    3
Print sum ' expect: 6
