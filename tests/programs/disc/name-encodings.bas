' Names of items from texts in other encodings, in none, and in one that their bytes are not.
Function Told(name As String) As String
    Dim file As DRFileQRX = DRFileQRX.virtualFileWithName(name, Nil)
    Dim text As String = file.baseName
    Dim result As String
    For i As Integer = 1 To Len(text)
        result = result + If(i = 1, "", " ") + Hex(Asc(Mid(text, i, 1)))
    Next
    Return result
End Function

Dim bytes As New MemoryBlock(4)
bytes.UInt8Value(0) = &h47
bytes.UInt8Value(1) = &hF6
bytes.UInt8Value(2) = &hDF
bytes.UInt8Value(3) = &h65
Dim plain As String = bytes.StringValue(0, 4)
Print Told(DefineEncoding(plain, Encodings.ISOLatin1)) ' expect: 47 F6 DF 65
Print Told(ConvertEncoding("Göße", Encodings.UTF16)) ' expect: 47 F6 DF 65
Print Told(ConvertEncoding("Göße", Encodings.MacRoman)) ' expect: 47 F6 DF 65
' A text without an encoding is read in the platform's own, which is MacRoman.
Print Told(plain) ' expect: 47 2C6 FB02 65
Print Told(DefineEncoding(plain, Encodings.UTF8)) ' expect: 47 FFFD FFFD 65
' Half a unit is no text at all.
Print Told(DefineEncoding("G", Encodings.UTF16)) ' expect:
