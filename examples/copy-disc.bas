' Copies the disc in one virtual drive onto the disc in another: tracks, gaps, texts and codes, and data byte by byte.
' The sessions of a data disc go where they were, because the files of a later one may lie in those before it; the other
' disc must be of a kind that puts them there (CD, DVD-R, DVD+R or BD-R, as the first one).
'
'   disc-basic copy-disc.bas FROM TO
'
' FROM and TO are the drives' names: of their folders, or as list-drives.bas shows them. A re-writable disc that holds data is overwritten.

Sub Fail(message As String)
    StdErr.WriteLine("copy-disc: " + message)
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

' A number that the drive tells of its disc.
Function OnDisc(drive As DRDeviceQRX, key As String) As Integer
    Dim medium As Dictionary = drive.status.Value(DRDeviceQRX.DRDeviceMediaInfoKey)
    Return medium.Value(key)
End Function

' The kind of the disc in a drive, or where that can't be written one that can.
Function KindForCopy(drive As DRDeviceQRX) As String
    Dim kind As String = Replace(drive.mediaType, "DRDeviceMediaType", "")
    Select Case kind
    Case "CDROM"
        Return "CD-RW"
    Case "DVDROM"
        Return "DVD+RW"
    Case "BDROM"
        Return "BD-RE"
    Case "DVDRDualLayer"
        Return "'DVD-R DL'"
    Case "DVDPlusRDoubleLayer"
        Return "'DVD+R DL'"
    End Select
    If InStr(kind, "Plus") > 0 Then Return Replace(kind, "Plus", "+")
    If kind.BeginsWith("DVD") Then Return "DVD-" + Mid(kind, 4)
    Return Left(kind, 2) + "-" + Mid(kind, 3)
End Function

If App.Arguments.LastIndex <> 1 Or App.Arguments.IndexOf("") >= 0 Then
    StdErr.WriteLine("Usage: copy-disc.bas FROM TO")
    Quit(2)
End If
Dim source As DRDeviceQRX = DriveNamed(App.Arguments(0))
Dim target As DRDeviceQRX = DriveNamed(App.Arguments(1))
If source.isEqualToDevice(target) Then Fail("a disc can't be copied onto itself; name two drives")
For Each drive As DRDeviceQRX In Array(source, target)
    If drive.trayIsOpen Then Call drive.closeTray
Next
If Not source.mediaIsPresent Then Fail("there is no disc in " + source.displayName + "; put the disc to be copied in")
If source.mediaIsBlank Then Fail("the disc in " + source.displayName + " is blank; there is nothing to copy")
' What a burn left behind that didn't end well would look like a good disc, copied.
For Each track As DRTrackQRX In source.status.Value(DRDeviceQRX.DRDeviceTrackRefsKey)
    If track.properties.Value(DRTrackQRX.DRTrackTypeKey) = DRTrackQRX.DRTrackTypeIncomplete Then
        Fail("the disc in " + source.displayName + " isn't whole: its burn was stopped or failed; burn it again")
    End If
Next
If Not target.mediaIsPresent Then
    Fail("there is no disc in " + target.displayName + "; insert one" + HowToInsert(target, KindForCopy(source)))
End If

Function Clock(blocks As Integer) As String
    Return Format(blocks \ 4500, "00") + ":" + Format((blocks \ 75) Mod 60, "00") + ":" + Format(blocks Mod 75, "00")
End Function

' Says where in an image each session begins and ends. It is gone when the program ends.
Class Sheet
    File As FolderItem

    Sub Constructor(image As FolderItem, tracks As Variant)
        If InStr(image.NativePath, Chr(10)) > 0 Or InStr(image.NativePath, Chr(13)) > 0 Then
            Fail("the path of the drive's folder has an end of a line in it; rename the folder")
        End If
        Dim temporary As String = System.EnvironmentVariable("TMPDIR")
        If temporary = "" Then temporary = "/tmp" ' an empty path is the folder that the program is run in
        File = GetFolderItem(temporary)
        If File Is Nil Or Not File.Directory Then File = GetFolderItem("/tmp")
        File = File.Child("copy-disc-" + Str(Floor(Microseconds)) + ".cue")
        Dim stream As TextOutputStream = TextOutputStream.Create(File)
        For Each track As DRTrackQRX In tracks
            Dim number As Integer = track.properties.Value(DRTrackQRX.DRTrackNumberKey)
            Dim session As Integer = track.properties.Value(DRTrackQRX.DRSessionNumberKey)
            Dim start As Integer = track.properties.Value(DRTrackQRX.DRTrackStartAddressKey)
            stream.WriteLine("REM SESSION " + Format(session, "00"))
            If number = 1 Then stream.WriteLine("FILE """ + image.NativePath + """ BINARY")
            stream.WriteLine("  TRACK " + Format(number, "00") + " MODE1/2048")
            stream.WriteLine("    INDEX 01 " + Clock(start))
            stream.WriteLine("REM LEAD-OUT " + Clock(start + track.Length.sectors))
        Next
        stream.Close
    End Sub
    Sub Destructor()
        File.Delete
    End Sub
End Class

' The files of a virtual medium are images that can be burned: a sheet where there is one, else the data itself.
Dim place As FolderItem = GetFolderItem(source.ioRegistryEntryPath)
If place Is Nil Or Not place.Directory Then Fail(source.displayName + " is no virtual drive")
Dim image As FolderItem = place.Child("medium.cue")
If Not image.Exists Then image = place.Child("medium.iso")
If Not image.Exists Then Fail("the disc in " + source.displayName + " has no file that can be copied")

' Media that take blocks in any order have a start that leads to all files, and are copied as one session. On others a
' session begins behind a gap.
Dim anyOrder() As String = Array(DRDeviceQRX.DRDeviceMediaTypeDVDPlusRW, DRDeviceQRX.DRDeviceMediaTypeDVDRAM, _
    DRDeviceQRX.DRDeviceMediaTypeBDRE)
Dim sessions As Integer = OnDisc(source, DRDeviceQRX.DRDeviceMediaSessionCountKey)
Dim sheet As Sheet
If image.Name = "medium.iso" And sessions > 1 And Not anyOrder.Contains(source.mediaType) Then
    sheet = New Sheet(image, source.status.Value(DRDeviceQRX.DRDeviceTrackRefsKey))
    image = sheet.File
End If

Dim burn As New DRBurnQRX(target)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not target.mediaIsBlank Then
    If Not target.mediaIsOverwritable Then
        Fail("the disc in " + target.displayName + " holds data and can't be overwritten; insert a blank one" + _
            HowToInsert(target, KindForCopy(source)))
    End If
    Print "The disc in " + target.displayName + " holds data, which is overwritten."
    burn.Overwrite = True
End If
If Not burn.writeImageFile(image) Then Fail("the disc in " + source.displayName + " can't be read")

Dim status As Dictionary
Dim state As String
Do
    App.DoEvents(20)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed

If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If
Dim tracks As Integer = OnDisc(target, DRDeviceQRX.DRDeviceMediaTrackCountKey)
Dim amount As String = " tracks, "
If tracks = 1 Then amount = " track, "
Print "Copied " + Str(tracks) + amount + target.mediaSpaceUsed.description + " in all, from " + source.displayName + _
    " to " + target.displayName + "."
