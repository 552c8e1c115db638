Dim s As String = "ä"
Print Encoding(s) = Encodings.UTF8 ' expect: True
Dim latin As String = ConvertEncoding(s, Encodings.ISOLatin1)
Print LenB(latin), Len(latin), AscB(latin) ' expect: 1 1 228
Print latin = s, latin + "x" ' expect: True äx
Print LenB(LeftB(latin + "b", 1)), AscB(MidB("x" + s, 2, 1)), AscB(MidB(latin, 1, 1)) ' expect: 1 195 228
Print RightB(ConvertEncoding("aä", Encodings.ISOLatin1), 1) ' expect: ä
Dim raw As String = DefineEncoding(latin, Encodings.Unknown)
Print AscB(raw) ' expect: 228
Print DefineEncoding(ChrB(195) + ChrB(164), Encodings.UTF8) ' expect: ä
Dim wide As String = ConvertEncoding("ab", Encodings.UTF16)
Print LenB(wide), Uppercase(wide) ' expect: 4 AB
Try
    Print ConvertEncoding("a", 12345)
Catch e As UnsupportedFormatException
    Print e.Message ' expect: there is no text encoding with the number 12345
End Try
