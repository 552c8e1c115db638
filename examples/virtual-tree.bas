' Burns a disc whose folders and files exist only in this program: names for single file systems, links, modes, dates.
'
'   disc-basic virtual-tree.bas [--drive=NAME]
'
'   --drive=NAME   the drive, by its folder's name or the one it shows (default: the first one)
'
' The disc has ISO 9660 (with Rock Ridge), Joliet and HFS+, all around the same files. A re-writable disc
' that holds data is overwritten.

Sub Fail(message As String)
    StdErr.WriteLine("virtual-tree: " + message)
    Quit(1)
End Sub

' The drive that a person means: by the name of its folder, its path, or the name that it shows. "" is the first one.
Function DriveNamed(name As String) As DRDeviceQRX
    Dim shown() As DRDeviceQRX
    For Each drive As DRDeviceQRX In DRDeviceQRX.devices
        Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
        If name = "" Or StrComp(name, place.Name, 0) = 0 Or StrComp(name, place.NativePath, 0) = 0 Then Return drive
        If StrComp(name, drive.displayName, 0) = 0 Then shown.Append(drive)
    Next
    If name = "" Then Fail("there is no drive that can write discs; disc-drives list names those in use")
    If shown.Count = 0 Then Fail("there is no drive " + name + "; list-drives.bas shows which there are")
    If shown.Count > 1 Then Fail("several drives are called " + name + "; take a path that list-drives.bas shows")
    Return shown(0)
End Function

' How a disc gets into a drive: a command for a virtual one, a hand for a recorder.
Function HowToInsert(drive As DRDeviceQRX, kind As String) As String
    Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
    If Not place.Directory Then Return " and try again"
    Return " with: disc-drives blank-medium " + kind + " blank.medium && disc-drives insert '" + _
        ReplaceAll(place.Name, "'", "'\''") + "' blank.medium"
End Function

Function TextFile(name As String, text As String) As DRFileQRX
    Dim bytes As New MemoryBlock(Len(text))
    bytes.StringValue(0, Len(text)) = text
    Return DRFileQRX.virtualFileWithName(name, bytes)
End Function

Dim driveName As String
For Each argument As String In App.Arguments
    If Not argument.BeginsWith("--drive=") Or Len(argument) = 8 Then
        StdErr.WriteLine("Usage: virtual-tree.bas [--drive=NAME]")
        Quit(2)
    End If
    driveName = Mid(argument, 9)
Next
Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "DVD+RW"))
End If
If Not drive.mediaIsBlank And Not drive.mediaIsOverwritable Then
    Fail("the disc in " + drive.displayName + " holds data and can't be overwritten; insert a blank one" + HowToInsert(drive, "DVD+RW"))
End If

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

' Names that old readers would take for the same get numbers: those of level 1 have 8 characters and 3 behind the dot.
Dim many As DRFolderQRX = DRFolderQRX.virtualFolderWithName("measurements")
root.addChild(many)
For number As Integer = 1 To 3
    many.addChild(TextFile("measurement " + Str(number) + ".txt", Str(number * number) + EndOfLine))
Next
For Each child As DRFSObjectQRX In many.children
    Print child.baseName + " is " + child.mangledNameForFilesystem(DRFSObjectQRX.DRISO9660LevelOne) + " in ISO 9660"
Next

Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
Dim settings As Dictionary = track.properties
settings.Value(DRTrackQRX.DRISOLevel) = 1
track.properties = settings
Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc in " + drive.displayName + " holds data, which is overwritten."
    burn.Overwrite = True
End If
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
