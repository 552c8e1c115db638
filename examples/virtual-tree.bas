' Burns a disc whose folders and files exist only in this program: names for single file systems, links, modes, dates.
'
'   disc-basic virtual-tree.bas
'
' The disc has ISO 9660 (with Rock Ridge), Joliet and HFS+, all around the same files.

Sub Fail(message As String)
    StdErr.WriteLine("virtual-tree: " + message)
    Quit(1)
End Sub

Function TextFile(name As String, text As String) As DRFileQRX
    Dim bytes As New MemoryBlock(Len(text))
    bytes.StringValue(0, Len(text)) = text
    Return DRFileQRX.virtualFileWithName(name, bytes)
End Function

If DRDeviceQRX.deviceCount = 0 Then Fail("there is no drive that can write discs; disc-drives list names those in use")
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Virtual Tree")
root.explicitFilesystemMask = DRFSObjectQRX.DRFilesystemInclusionMaskISO9660 Or _
    DRFSObjectQRX.DRFilesystemInclusionMaskJoliet Or DRFSObjectQRX.DRFilesystemInclusionMaskHFSPlus

' One file, with another name where Joliet is read.
Dim letter As DRFileQRX = TextFile("letter.txt", "Dear reader," + EndOfLine)
letter.specificNameForFilesystem(DRFSObjectQRX.DRJoliet) = "The Letter.txt"
letter.setProperty(&o640, DRFSObjectQRX.DRPosixFileMode, DRFSObjectQRX.DRAllFilesystems)
Dim written As New Date(2001, 2, 3, 4, 5, 6)
letter.setProperty(written, DRFSObjectQRX.DRContentModificationDate, DRFSObjectQRX.DRAllFilesystems)
root.addChild(letter)

' A file for one file system only.
Dim note As DRFileQRX = TextFile("for Macintosh.txt", "Only in HFS+" + EndOfLine)
note.explicitFilesystemMask = DRFSObjectQRX.DRFilesystemInclusionMaskHFSPlus
root.addChild(note)

' A folder with links: what they point at is found by the names of the file system they are made for.
Dim links As DRFolderQRX = DRFolderQRX.virtualFolderWithName("links")
root.addChild(links)
Dim again As DRFileQRX = DRFileQRX.hardLinkPointingTo(letter, DRFSObjectQRX.DRISO9660)
again.baseName = "again.txt"
links.addChild(again)
Dim way As DRFileQRX = DRFileQRX.symLinkPointingTo(letter, DRFSObjectQRX.DRISO9660)
way.baseName = "way to the letter"
links.addChild(way)

' Names that old readers would take for the same get numbers.
Dim many As DRFolderQRX = DRFolderQRX.virtualFolderWithName("measurements")
root.addChild(many)
For number As Integer = 1 To 3
    many.addChild(TextFile("measurement " + Str(number) + ".txt", Str(number * number) + EndOfLine))
Next
For Each child As DRFSObjectQRX In many.children
    Print child.baseName + " is " + child.mangledNameForFilesystem(DRFSObjectQRX.DRISO9660LevelOne) + " in ISO 9660 level 1"
Next

Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.writeLayout(track)
Dim status As Dictionary
Dim state As String
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If
Print "Burned " + root.baseName + " in " + drive.displayName + "."
