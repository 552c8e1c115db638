' Copies the disc in one virtual drive onto the disc in another: tracks, gaps, texts and codes, and the data of a disc
' with one session, byte by byte. A data disc with several sessions is refused.
'
'   disc-basic copy-disc.bas FROM TO
'
' FROM and TO are the drives' names, as list-drives.bas shows them. A re-writable disc that holds data is overwritten.

Sub Fail(message As String)
    StdErr.WriteLine("copy-disc: " + message)
    Quit(1)
End Sub

Function DriveNamed(name As String) As DRDeviceQRX
    For Each drive As DRDeviceQRX In DRDeviceQRX.devices
        If drive.displayName = name Then Return drive
    Next
    Fail("there is no drive " + name + "; list-drives.bas shows which there are")
End Function

' A number that the drive tells of its disc.
Function OnDisc(drive As DRDeviceQRX, key As String) As Integer
    Dim medium As Dictionary = drive.status.Value(DRDeviceQRX.DRDeviceMediaInfoKey)
    Return medium.Value(key)
End Function

If App.Arguments.LastIndex <> 1 Then
    StdErr.WriteLine("Usage: copy-disc.bas FROM TO")
    Quit(2)
End If
Dim source As DRDeviceQRX = DriveNamed(App.Arguments(0))
Dim target As DRDeviceQRX = DriveNamed(App.Arguments(1))
If source.isEqualToDevice(target) Then Fail("a disc can't be copied onto itself; name two drives")
For Each drive As DRDeviceQRX In Array(source, target)
    If drive.trayIsOpen Then Call drive.closeTray
    If Not drive.mediaIsPresent Then Fail("there is no disc in " + drive.displayName + "; insert one and try again")
Next
If source.mediaIsBlank Then Fail("the disc in " + source.displayName + " is blank; there is nothing to copy")

' The files of a virtual medium are images that can be burned: a sheet where there is one, else the data itself.
Dim place As FolderItem = GetFolderItem(source.ioRegistryEntryPath)
If place Is Nil Or Not place.Directory Then Fail(source.displayName + " is no virtual drive")
Dim image As FolderItem = place.Child("medium.cue")
If Not image.Exists Then image = place.Child("medium.iso")
If Not image.Exists Then Fail("the disc in " + source.displayName + " has no file that can be copied")

' An image of data is burned as one session, which would show only the files of the disc's first.
Dim sessions As Integer = OnDisc(source, DRDeviceQRX.DRDeviceMediaSessionCountKey)
If image.Name = "medium.iso" And sessions > 1 Then
    Fail("the disc in " + source.displayName + " has " + Str(sessions) + " sessions, which can't be copied; put the " + _
        "folder that ""disc-drives export"" makes into the other drive with ""disc-drives insert"", " + _
        "or burn the files of the last session anew")
End If

Dim burn As New DRBurnQRX(target)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.Overwrite = Not target.mediaIsBlank
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
