' Burns a folder onto the first drive and verifies what was written.
'
'   disc-basic burn-folder.bas FOLDER [VOLUME NAME]
'
' The disc is named after the folder unless a name is given. A re-writable medium that holds data is overwritten.

Const Usage = "Usage: burn-folder.bas FOLDER [VOLUME NAME]"

' What a state of the burn is called for people.
Function NameOfState(state As String) As String
    Select Case state
    Case DRBurnQRX.DRStatusStatePreparing
        Return "Preparing"
    Case DRBurnQRX.DRStatusStateVerifying
        Return "Verifying"
    Case DRBurnQRX.DRStatusStateFinishing
        Return "Finishing"
    Case DRBurnQRX.DRStatusStateDone
        Return "Done"
    Case DRBurnQRX.DRStatusStateFailed
        Return "Failed"
    Case DRBurnQRX.DRStatusStateTrackWrite
        Return "Writing"
    Else
        Return "Writing"
    End Select
End Function

Function Megabytes(blocks As Double) As String
    Return Format(blocks * 2048 / 1000000, "#,##0.0") + " MB"
End Function

Function Clock(seconds As Double) As String
    Dim whole As Integer = Round(seconds)
    Return Str(whole \ 60) + ":" + Format(whole Mod 60, "00")
End Function

Function Repeated(text As String, times As Integer) As String
    Dim result As String
    For i As Integer = 1 To times
        result = result + text
    Next
    Return result
End Function

Sub Fail(message As String)
    StdErr.WriteLine("burn-folder: " + message)
    Quit(1)
End Sub

' Shows how far a burn is: a bar on a terminal, a line for each state and each quarter otherwise.
Class Progress
    Private mState As String
    Private mQuarter As Integer
    Private mSince As Double

    Sub Show(status As Dictionary)
        Dim state As String = NameOfState(status.Value(DRBurnQRX.DRStatusStateKey))
        Dim percent As Double = status.Value(DRBurnQRX.DRStatusPercentCompleteKey)
        If state <> mState Then
            mState = state
            mQuarter = 0
            mSince = Microseconds
            If Not System.IsTerminal Then Print state + " …"
        End If
        If percent < 0 Then percent = 0
        If System.IsTerminal Then
            Bar(state, percent, status.Value(DRBurnQRX.DRStatusCurrentSpeedKey))
        ElseIf Floor(percent * 4) > mQuarter Then
            mQuarter = Floor(percent * 4)
            Print "  " + Format(percent, "0%")
        End If
    End Sub

    Sub Finish()
        If System.IsTerminal Then StdOut.Write(Chr(13) + Repeated(" ", System.TerminalWidth - 1) + Chr(13))
    End Sub

    Private Sub Bar(state As String, percent As Double, speed As Double)
        Dim text As String = " " + Format(percent, "0%") + "  " + state
        If speed > 0 Then text = text + "  " + Format(speed / 1000, "#,##0.0") + " MB/s"
        Dim elapsed As Double = (Microseconds - mSince) / 1000000
        If percent > 0 And percent < 1 Then text = text + "  " + Clock(elapsed / percent * (1 - percent)) + " left"
        Dim width As Integer = 30
        Dim done As Integer = Round(percent * width)
        Dim line As String = "[" + Repeated("#", done) + Repeated("-", width - done) + "]" + text
        StdOut.Write(Chr(13) + line + Repeated(" ", Max(0, System.TerminalWidth - 1 - Len(line))))
    End Sub
End Class

' ---- what to burn ---------------------------------------------------------------------------------------

If App.Arguments.LastIndex < 0 Or App.Arguments.LastIndex > 1 Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If

Dim source As FolderItem = GetFolderItem(App.Arguments(0))
If source Is Nil Or Not source.Exists Then Fail("there is no folder " + App.Arguments(0))
If Not source.Directory Then Fail(App.Arguments(0) + " is not a folder; give the folder that it is in")

Dim root As DRFolderQRX = DRFolderQRX.folderWithPath(source)
If App.Arguments.LastIndex = 1 Then root.baseName = App.Arguments(1)

' ---- where to ---------------------------------------------------------------------------------------------

If DRDeviceQRX.deviceCount = 0 Then Fail("there is no drive that can write discs")
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then Fail("there is no disc in " + drive.displayName + "; insert one and try again")

Dim kind As String = Replace(drive.mediaType, "DRDeviceMediaType", "")
kind = Replace(kind, "Plus", "+")
Print "Burning " + source.NativePath + " as """ + root.baseName + """"
Print "onto " + drive.displayName + " (" + kind + ", room for " + Megabytes(drive.mediaSpaceOverwritable.sectors) + ")."

Dim burn As New DRBurnQRX(drive)
burn.verifyDisc = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc holds data, which is overwritten."
    burn.Overwrite = True
End If

' ---- burn -------------------------------------------------------------------------------------------------

Dim progress As New Progress
Dim started As Double = Microseconds
Dim status As Dictionary
Dim state As String

' Only tracks that say how are verified.
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
burn.writeLayout(track)
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
    progress.Show(status)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
progress.Finish

If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If

' ---- say what was done --------------------------------------------------------------------------------------

Print "Burned " + Megabytes(drive.mediaSpaceUsed.sectors) + " in " + Format((Microseconds - started) / 1000000, "0.0") + " seconds; every byte was read back and is right."

' A virtual drive is a folder, and its medium an image that other programs read as it is.
Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
If place <> Nil And place.Directory Then
    For i As Integer = 1 To place.Count
        Dim file As FolderItem = place.Item(i)
        If file.Name.EndsWith(".iso") Then
            Print "The medium lies in " + file.NativePath
            Print "Look at it with:  bsdtar -tvf '" + file.NativePath + "'"
        End If
    Next
End If
