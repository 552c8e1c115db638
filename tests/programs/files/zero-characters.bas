' A zero character would end a path for the system, so that another file is meant: no folder item has one.

Dim scratch As FolderItem = GetFolderItem(System.EnvironmentVariable("SCRATCH"))
TextOutputStream.Create(scratch.Child("a")).Write("abc")
Dim name As String = "a" + Chr(0) + "b"
Dim f As FolderItem

Try
    f = scratch.Child(name)
Catch e As InvalidArgumentException
    Print e.Message ' expect: a path can't contain a zero character
End Try
Try
    f = GetFolderItem(scratch.NativePath + "/" + name)
Catch e As InvalidArgumentException
    Print e.Message ' expect: a path can't contain a zero character
End Try
Try
    f = New FolderItem(scratch.NativePath + "/" + name)
Catch e As InvalidArgumentException
    Print e.Message ' expect: a path can't contain a zero character
End Try

Print f Is Nil, scratch.Child("a").Length ' expect: True 3
