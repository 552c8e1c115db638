Dim folder As FolderItem = GetFolderItem(System.EnvironmentVariable("SCRATCH"))
Dim f As FolderItem = folder.Child("notes.txt")
Print f.Exists ' expect: False
Dim out As TextOutputStream = TextOutputStream.Create(f)
out.WriteLine "first"
out.Write "sec"
out.WriteLine("ond")
out.Write "Grüße"
out.Close
Print f.Exists, f.Length, f.Name ' expect: True 20 notes.txt
Dim inp As TextInputStream = TextInputStream.Open(f)
While Not inp.EOF
    Print inp.ReadLine
Wend
' expect: first
' expect: second
' expect: Grüße
inp.Close
out = TextOutputStream.Append(f)
out.WriteLine
out.Close
Print TextInputStream.Open(f).ReadAll.Split(EndOfLine).Count ' expect: 4
Try
    Print inp.ReadLine
Catch e As IOException
    Print e.Message ' expect: the stream is closed
End Try
Try
    inp = TextInputStream.Open(folder.Child("missing"))
Catch e As IOException
    Print InStr(e.Message, "No such file") > 0 ' expect: True
End Try
Try
    inp = TextInputStream.Open(folder)
    Print inp.ReadLine
Catch e As IOException
    Print InStr(e.Message, "it is a folder") > 0 ' expect: True
End Try
Try
    inp = TextInputStream.Open(Nil)
Catch e As NilObjectException
    Print e.Message ' expect: the file to be read is nil
End Try
