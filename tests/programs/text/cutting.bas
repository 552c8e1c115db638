Dim s As String = "Grüße, Welt"
Print Len(s), LenB(s) ' expect: 11 13
Print Left(s, 5), Right(s, 4), Mid(s, 3, 3) ' expect: Grüße Welt üße
Print Mid(s, 8), Len(Mid(s, 7)) ' expect: Welt 5
Print "[" + Left(s, 0) + Right(s, 0) + Mid(s, 99) + "]" ' expect: []
Print Left(s, 99), Right("ab", 99), Mid("abc", 0, 2) ' expect: Grüße, Welt ab a
Print s.Left(2), s.Right(2), s.Length, s.Mid(2, 1) ' expect: Gr lt 11 r
Print Trim("  a b  ") + "|", LTrim("  a ") + "|", RTrim(" a  ") + "|" ' expect: a b| a |  a|
Print Uppercase("straße äöü"), Lowercase("ÄÖÜ ABC"), Titlecase("hello wORLD") ' expect: STRAßE ÄÖÜ äöü abc Hello World
Print Left("abc", -1) + "." ' expect: .
