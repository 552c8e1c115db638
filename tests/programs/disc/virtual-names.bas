' Names, properties and masks of virtual files, and a folder's children.
Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("root")
Dim bytes As New MemoryBlock(3)
bytes.StringValue(0, 3) = "abc"
Dim made As New DRFileQRX("made here.txt", bytes)
Dim other As DRFileQRX = DRFileQRX.virtualFileWithName("made there.txt", Nil)
root.addChild(made)
root.addChild(other)
root.addChild(Nil)
Print root.count ' expect: 2
Print root.children.LastIndex ' expect: 1
' Constructors are not registered, so the folder makes another object of the file.
Print root.children(0) = made ' expect: False
Print root.children(0).baseName ' expect: made here.txt

Print made.mangledNameForFilesystem(DRFSObjectQRX.DRISO9660LevelOne) ' expect: MADEHERE.TXT
other.specificNameForFilesystem(DRFSObjectQRX.DRISO9660LevelOne) = "madehere.txt"
Print other.specificNameForFilesystem(DRFSObjectQRX.DRISO9660LevelOne) ' expect: MADEHERE.TXT
Print other.mangledNameForFilesystem(DRFSObjectQRX.DRISO9660LevelOne) ' expect: MADE_001.TXT
Print other.mangledNames.Count ' expect: 0
root.explicitFilesystemMask = DRFSObjectQRX.DRFilesystemInclusionMaskJoliet Or DRFSObjectQRX.DRFilesystemInclusionMaskUDF
Print other.mangledNames.Count ' expect: 2
Print other.effectiveFilesystemMask ' expect: 6

made.setProperty(&o600, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRAllFilesystems)
Print made.propertyForKey(DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRUDF, True) ' expect: 384
Print made.propertyForKey(DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRUDF, False) Is Nil ' expect: True
Print made.propertiesForFilesystem(DRFSObjectQRX.DRUDF, True).Count ' expect: 1

Dim link As DRFileQRX = DRFileQRX.symLinkPointingTo(root, DRFSObjectQRX.DRISO9660)
Print link.explicitFilesystemMask ' expect: 1
Print link.baseName ' expect: root
Print DRFileQRX.linkWithLinkType(DRFileQRX.DRLinkTypeHardLink, Nil, DRFSObjectQRX.DRUDF) Is Nil ' expect: True
Dim empty As New DRFolderQRX
Print empty.children.LastIndex ' expect: -1
Print empty.count ' expect: 0
