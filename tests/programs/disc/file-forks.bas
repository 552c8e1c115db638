' The resource fork of a file that events produce: asked for where HFS+ shows the file, and only there.
' environment: DISC_DRIVES=drives
' time limit: 60
Class TwoForks Inherits DRFileQRX
    Shared Log As String
    Public Resource As Integer
    Public Wrong As Boolean

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        If Wrong And fork = DRFileQRX.DRFileForkResource Then Raise New UnsupportedOperationException("no size today")
        Dim size As Integer = If(fork = DRFileQRX.DRFileForkData, 4, Resource)
        TwoForks.Log = TwoForks.Log + "size of " + Str(fork) + If(estimating, " about ", " is ") + Str(size) + ", "
        Return size
    End Event
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        TwoForks.Log = TwoForks.Log + Str(fork) + " from " + Str(address) + ", "
        Dim count As Integer = Min(Bufferlen, 4)
        buffer.StringValue(0, count) = Left(If(fork = DRFileQRX.DRFileForkData, "data", "fork"), count)
        Return count
    End Event
    Event prepareFileForVerification() As Boolean
        TwoForks.Log = TwoForks.Log + "again, "
        Return True
    End Event
End Class

Sub BurnOf(filesystems As Integer, resource As Integer, wrong As Boolean)
    Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Forks")
    root.explicitFilesystemMask = filesystems
    Dim file As New TwoForks("file")
    file.Resource = resource
    file.Wrong = wrong
    root.addChild(file)
    Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
    track.VerificationType = DRTrackQRX.DRVerificationTypeProduceAgain
    Dim blocks As Integer = 0
    TwoForks.Log = ""
    If Not wrong Then
        blocks = track.estimateLength
        Print TwoForks.Log.Trim
    End If
    TwoForks.Log = ""
    Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
    Dim burn As New DRBurnQRX(drive)
    burn.Overwrite = Not drive.mediaIsBlank
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    Dim state As String
    Do
        Try
            If state = "" Then burn.writeLayout(track)
            App.DoEvents(10)
        Catch e As UnsupportedOperationException
            Print "raised: " + e.Message
        End Try
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Print TwoForks.Log + state
    If state = DRBurnQRX.DRStatusStateDone Then
        Print drive.mediaSpaceUsed.sectors = blocks
    Else
        Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
        Print problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey).StringValue
    End If
End Sub

Const ISO = DRFSObjectQRX.DRFilesystemInclusionMaskISO9660
Const HFS = DRFSObjectQRX.DRFilesystemInclusionMaskHFSPlus

Call BurnOf(ISO + HFS, 6, False)
' expect: size of 0 about 4, size of 1 about 6,
' expect: size of 0 is 4, size of 1 is 6, 0 from 0, 1 from 0, 1 from 4, again, 0 from 0, 1 from 0, 1 from 4, DRStatusStateDone
' expect: True
Call BurnOf(ISO, 6, False)
' expect: size of 0 about 4,
' expect: size of 0 is 4, 0 from 0, again, 0 from 0, DRStatusStateDone
' expect: True
Call BurnOf(ISO + HFS, 0, False)
' expect: size of 0 about 4, size of 1 about 0,
' expect: size of 0 is 4, size of 1 is 0, 0 from 0, again, 0 from 0, DRStatusStateDone
' expect: True
Call BurnOf(ISO + HFS, 6, True)
' expect: raised: no size today
' expect: size of 0 is 4, DRStatusStateFailed
' expect: The producer of the file "file" can't tell the size of its resource fork.
