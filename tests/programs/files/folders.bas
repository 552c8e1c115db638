Dim scratch As FolderItem = GetFolderItem(System.EnvironmentVariable("SCRATCH"))
Dim folder As FolderItem = scratch.Child("sub")
folder.CreateAsFolder
Print folder.Exists, folder.Directory ' expect: True True
Dim f As FolderItem = folder.Child("a.txt")
TextOutputStream.Create(f).Write("abc")
Print folder.Count, folder.Item(1).Name, f.Length ' expect: 1 a.txt 3
Print f.Parent.Name, scratch.Child("x").Exists ' expect: sub False
f.Delete
Print f.Exists, folder.Count ' expect: False 0
Print GetFolderItem("/a/../b//c").NativePath ' expect: /b/c
