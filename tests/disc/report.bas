' Does what the tests of bad input ask for, and prints what a program learns about it: state, code and sentence.
'
'   disc-basic report.bas WHAT FOLDER
'
' WHAT is a list of words: "wait" waits for a line of input between finding the drive and burning; "overwrite",
' "append" and "test" set those; "again" starts a second burn on the drive while the first runs; "slow" holds
' it down to the speed of one, "paced" to 20 MB a second; "tracks" burns two tracks, "same" the
' same track twice; "raises=N" adds a file of 3 MB whose producer raises an exception at byte N.

Class Raising Inherits DRFileQRX
    Public Limit As UInt64
    Event prepareFileForBurn() As Boolean
        Return True
    End Event
    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        Return 3000000
    End Event
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        If address + Bufferlen > Limit Then Raise New UnsupportedOperationException("no bytes today")
        Return Bufferlen
    End Event
End Class

Dim words() As String = Split(App.Arguments(0), ",")

Sub Report(status As Dictionary)
    Dim line As String = status.Value(DRBurnQRX.DRStatusStateKey)
    If status.HasKey(DRBurnQRX.DRErrorStatusKey) Then
        Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
        Dim code As Int64 = problem.Value(DRBurnQRX.DRErrorStatusErrorKey)
        line = line + "|" + Right("0000000" + Hex(code), 8) + "|" + problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey)
    End If
    Print line
End Sub

Function IsFinal(status As Dictionary) As Boolean
    Dim state As String = status.Value(DRBurnQRX.DRStatusStateKey)
    Return state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
End Function

Function TrackOf(path As String) As DRTrackQRX
    Dim root As DRFolderQRX = DRFolderQRX.folderWithPath(GetFolderItem(path))
    For Each word As String In words
        If word.BeginsWith("raises=") Then
            Dim file As New Raising("produced.bin")
            file.Limit = Val(NthField(word, "=", 2))
            root = DRFolderQRX.virtualFolderWithName("Produced")
            root.addChild(DRFolderQRX.folderWithPath(GetFolderItem(path)))
            root.addChild(file)
        End If
    Next
    Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
    track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
    Return track
End Function

Function NewBurn(drive As DRDeviceQRX) As DRBurnQRX
    Dim burn As New DRBurnQRX(drive)
    burn.Overwrite = words.IndexOf("overwrite") >= 0
    burn.appendable = words.IndexOf("append") >= 0
    burn.Testing = words.IndexOf("test") >= 0
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    If words.IndexOf("slow") >= 0 Then burn.requestedBurnSpeed = DRDeviceQRX.DRDeviceBurnSpeedCD1x
    If words.IndexOf("paced") >= 0 Then burn.requestedBurnSpeed = 20000
    Return burn
End Function

If DRDeviceQRX.deviceCount = 0 Then
    Print "no drive"
    Quit(0)
End If
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If words.IndexOf("wait") >= 0 Then
    Print "ready"
    StdOut.Flush
    Call StdIn.ReadLine
End If

Dim burn As DRBurnQRX = NewBurn(drive)
Dim other As DRBurnQRX
Try
    If words.IndexOf("tracks") >= 0 Then
        burn.writeLayout(Array(TrackOf(App.Arguments(1)), TrackOf(App.Arguments(1))))
    ElseIf words.IndexOf("same") >= 0 Then
        Dim track As DRTrackQRX = TrackOf(App.Arguments(1))
        burn.writeLayout(Array(track, track))
    Else
        burn.writeLayout(TrackOf(App.Arguments(1)))
    End If
    If words.IndexOf("again") >= 0 Then
        Do
            App.DoEvents(10)
        Loop Until burn.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateTrackWrite Or IsFinal(burn.status)
        other = NewBurn(drive)
        other.writeLayout(TrackOf(App.Arguments(1)))
        Do
            App.DoEvents(10)
        Loop Until IsFinal(other.status)
        Report(other.status)
    End If
    Do
        App.DoEvents(10)
    Loop Until IsFinal(burn.status)
    App.DoEvents(1)
Catch e As UnsupportedOperationException
    ' What a producer raises ends the burn, and comes out at whatever statement the program is at.
End Try
Do
    App.DoEvents(10)
Loop Until IsFinal(burn.status)
Report(burn.status)
