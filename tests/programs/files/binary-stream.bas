Dim f As FolderItem = GetFolderItem(System.EnvironmentVariable("SCRATCH")).Child("data.bin")
Dim b As BinaryStream = BinaryStream.Create(f)
b.Write ChrB(0) + ChrB(255) + "abc"
b.WriteByte 7
Print b.Length, b.Position ' expect: 6 6
b.Position = 1
Print b.ReadByte, b.Read(3), b.ReadByte, b.EOF ' expect: 255 abc 7 True
b.Close
Try
    b = BinaryStream.Create(f)
Catch e As IOException
    Print "exists" ' expect: exists
End Try
b = BinaryStream.Open(f, True)
b.Position = 2
b.Write "X"
b.Position = 0
Print LenB(b.Read(100)) ' expect: 6
b.Close
b = BinaryStream.Open(f)
Try
    b.Write "no"
    b.Close
Catch e As IOException
    Print "read only" ' expect: read only
End Try
