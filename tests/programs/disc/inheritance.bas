' Files and folders share what file-system objects have.
Dim folder As DRFolderQRX = DRFolderQRX.virtualFolderWithName("disc")
Print folder IsA DRFSObjectQRX ' expect: True
Print folder IsA DRFileQRX ' expect: False
folder.baseName = "Größe"
Print folder.baseName ' expect: Größe
Print DRFSObjectQRX.DRJoliet ' expect: DRJoliet
