' A folder can't be put into itself, nor into one inside of it; the tree stays as it was.
' expect stderr: The folder "root" can't be put into itself
Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("root")
Dim sub1 As DRFolderQRX = DRFolderQRX.virtualFolderWithName("sub")
Dim deep As DRFolderQRX = DRFolderQRX.virtualFolderWithName("deep")
root.addChild(sub1)
sub1.addChild(deep)

Sub TryToAdd(folder As DRFolderQRX, child As DRFolderQRX)
    Try
        folder.addChild(child)
        Print "added"
    Catch e As RuntimeException
        Print e.Message
    End Try
End Sub

TryToAdd(root, root) ' expect: The folder "root" can't be put into itself or into a folder inside it.
TryToAdd(sub1, root) ' expect: The folder "root" can't be put into itself or into a folder inside it.
TryToAdd(deep, root) ' expect: The folder "root" can't be put into itself or into a folder inside it.
TryToAdd(deep, sub1) ' expect: The folder "sub" can't be put into itself or into a folder inside it.
Print root.parent Is Nil ' expect: True
Print sub1.parent.baseName ' expect: root
Print deep.parent.baseName ' expect: sub
Print Str(root.count) + Str(sub1.count) + Str(deep.count) ' expect: 110

' The other way round it moves.
root.addChild(deep)
Print Str(root.count) + Str(sub1.count) ' expect: 20
Print deep.parent.baseName ' expect: root
