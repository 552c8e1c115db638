' Burns a folder with the system's panels: one to choose the drive and how to burn, one to watch the burn.
'
'   disc-basic burn-with-panels.bas FOLDER
'
' The setup panel asks the program five questions; each has its event below. Needs a display.

Const Usage = "Usage: burn-with-panels.bas FOLDER"

Class Setup
    Inherits DRBurnSetupPanelQRX

    ' Which drives are in the menu: here those that write DVDs.
    Event DeviceCouldBeTarget(device As DRDeviceQRX) As Boolean
        Return device.writesDVD
    End Event

    ' Which of two drives is the better one; either may be nil. Here the first one with a blank disc.
    Event determineBestDevice(deviceA As DRDeviceQRX, deviceB As DRDeviceQRX) As DRDeviceQRX
        If deviceA Is Nil Then Return deviceB
        If deviceB Is Nil Then Return deviceA
        If Not deviceA.mediaIsBlank And deviceB.mediaIsBlank Then Return deviceB
        Return deviceA
    End Event

    ' A person chose another drive, or one came or went.
    Event DeviceSelectionChanged(device As DRDeviceQRX)
        If device Is Nil Then
            Print "No drive."
        Else
            Print "Drive: " + device.displayName
        End If
    End Event

    ' Whether the disc will do, and what the panel says about it. Here the folder has to be written to a blank disc.
    Event DeviceContainsSuitableMedia(device As DRDeviceQRX, ByRef prompt As String) As Boolean
        If device.mediaIsBusy Then Return False ' in use by another program: the panel's own prompt says so
        If device.mediaIsBlank Then
            prompt = prompt + " There is room for " + Str(device.mediaSpaceFree.sectors \ 512) + " MB."
            Return True
        End If
        If device.mediaIsPresent Then prompt = "The disc in " + device.displayName + " is not blank. Please insert a blank one."
        Return False
    End Event

    ' True: the panel reserves blank discs for this program while it is shown.
    Event SetupPanelShouldHandleMediaReservations() As Boolean
        Return True
    End Event
End Class

Class Progress
    Inherits DRBurnProgressPanelQRX
    finished As Boolean

    Event burnProgressPanelWillBegin()
        Print "Burning."
    End Event

    Event burnProgressPanelBurnDidFinish(burn As DRBurnQRX) As Boolean
        Print "The burn ended: " + burn.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
        Return False ' the panel tells the person
    End Event

    Event burnProgressPanelDidFinish()
        finished = True
    End Event
End Class

Dim path As String
If App.Arguments.Ubound = 0 Then path = App.Arguments(0)
If path = "" Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If
Dim folder As FolderItem = GetFolderItem(path)
If folder Is Nil Or Not folder.Exists Or Not folder.Directory Then
    StdErr.WriteLine("There is no folder " + path + ".")
    Quit(1)
End If

Dim setup As New Setup
If setup.bounds Is Nil Then
    StdErr.WriteLine("There is no display to show a panel on; burn-folder.bas burns without one.")
    Quit(1)
End If
If setup.runSetupPanel = DRSetupPanelQRX.NSCancelButton Then
    Print "Cancelled."
    Quit
End If

Dim burn As DRBurnQRX = setup.burnObject
Dim progress As New Progress
progress.VerboseProgressStatus = True
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(folder)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
progress.beginProgressPanelForBurn(burn, track)
While Not progress.finished
    App.DoEvents
Wend
If burn.status.Value(DRBurnQRX.DRStatusStateKey).StringValue <> DRBurnQRX.DRStatusStateDone Then Quit(1)
