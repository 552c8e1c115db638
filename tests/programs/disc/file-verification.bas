' Files whose bytes come from events are asked for again when the disc is verified, if the track wants that.
' environment: DISC_DRIVES=drives
' time limit: 60
Class Produced Inherits DRFileQRX
    Public Mode As String
    Public Size As Integer
    Public Again As Boolean
    Shared Log As String

    Sub Note(word As String)
        Produced.Log = Produced.Log + word + " "
    End Sub

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        Return Size
    End Event
    Event prepareFileForBurn() As Boolean
        Note("prepare:" + baseName)
        Return True
    End Event
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        If address = 0 Then Note(baseName)
        If Mode = "raises" And Again And address > 0 Then Raise New UnsupportedOperationException("no bytes today")
        Dim count As Integer = Min(Bufferlen, 700)
        For i As Integer = 0 To count - 1
            buffer.UInt8Value(i) = (address + i) Mod 251
        Next
        If Mode = "differs" And Again And address <= 1500 And address + count > 1500 Then buffer.UInt8Value(1500 - address) = 255
        Return count
    End Event
    Event prepareFileForVerification() As Boolean
        Note("again:" + baseName)
        Again = True
        If Mode = "raises at once" Then Raise New UnsupportedOperationException("no second time")
        Return Mode <> "unprepared"
    End Event
    Event cleanupFileAfterBurn()
        Note("cleanup:" + baseName)
    End Event
End Class

' Only bytes: what isn't implemented is no obstacle.
Class Plain Inherits DRFileQRX
    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        Return 3
    End Event
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        Produced.Log = Produced.Log + "plain "
        buffer.StringValue(0, 3) = "abc"
        Return 3
    End Event
End Class

Sub WaitFor(burn As DRBurnQRX)
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    App.DoEvents(1)
End Sub

Sub BurnOf(mode As String, verification As String)
    Produced.Log = ""
    Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Events")
    Dim first As New Produced("a")
    first.Size = 5000
    first.Mode = mode
    root.addChild(first)
    Dim nothing As New Produced("b")
    root.addChild(nothing)
    root.addChild(New Plain("c"))
    Dim link As DRFileQRX = DRFileQRX.hardLinkPointingTo(first, DRFSObjectQRX.DRISO9660)
    link.baseName = "again"
    root.addChild(link)
    root.addChild(DRFileQRX.virtualFileWithName("d", New MemoryBlock(3000)))
    Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
    track.VerificationType = verification
    Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
    Dim burn As New DRBurnQRX(drive)
    burn.Overwrite = Not drive.mediaIsBlank
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    Try
        burn.writeLayout(track)
        WaitFor(burn)
    Catch e As UnsupportedOperationException
        Print "raised: " + e.Message
        WaitFor(burn)
    End Try
    App.DoEvents(100)
    Dim status As Dictionary = burn.status
    If status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateDone Then
        Print "done: " + Produced.Log.Trim
    Else
        Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
        Dim code As UInt32 = problem.Value(DRBurnQRX.DRErrorStatusErrorKey)
        Print Hex(code) + ": " + Produced.Log.Trim
        Print problem.Value(DRBurnQRX.DRErrorStatusErrorInfoStringKey).StringValue
    End If
End Sub

Call BurnOf("", DRTrackQRX.DRVerificationTypeProduceAgain)
' expect: done: prepare:a prepare:b a plain again:a a plain cleanup:a cleanup:b
Call BurnOf("", DRTrackQRX.DRVerificationTypeChecksum)
' expect: done: prepare:a prepare:b a plain cleanup:a cleanup:b
' A file has no event that receives bytes: sums do.
Call BurnOf("", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: done: prepare:a prepare:b a plain cleanup:a cleanup:b
Call BurnOf("differs", DRTrackQRX.DRVerificationTypeProduceAgain)
' expect: 80020063: prepare:a prepare:b a plain again:a a cleanup:a cleanup:b
' expect: The file "a" is not what its producer gives when it is asked again, from byte 1500 on.
Call BurnOf("differs", DRTrackQRX.DRVerificationTypeChecksum)
' expect: done: prepare:a prepare:b a plain cleanup:a cleanup:b
Call BurnOf("unprepared", DRTrackQRX.DRVerificationTypeProduceAgain)
' expect: 80020063: prepare:a prepare:b a plain again:a cleanup:a cleanup:b
' expect: The producer of the file "a" could not prepare its verification.
Call BurnOf("raises", DRTrackQRX.DRVerificationTypeProduceAgain)
' expect: raised: no bytes today
' expect: 80020063: prepare:a prepare:b a plain again:a a cleanup:a cleanup:b
' expect: The producer of the file "a" gave 700 bytes of the 5000 that it had announced. no bytes today
Call BurnOf("raises at once", DRTrackQRX.DRVerificationTypeProduceAgain)
' expect: raised: no second time
' expect: 80020063: prepare:a prepare:b a plain again:a cleanup:a cleanup:b
' expect: The producer of the file "a" could not prepare its verification. no second time
