' A track's length is estimated without a burn: the sizes of produced files are asked for, and nothing is prepared.
' environment: DISC_DRIVES=drives
Class Produced Inherits DRFileQRX
    Shared Log As String

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        Produced.Log = Produced.Log + If(estimating, "estimate ", "size ")
        Return If(estimating, 100 * 2048, 3)
    End Event
    Event prepareFileForBurn() As Boolean
        Produced.Log = Produced.Log + "prepare "
        Return True
    End Event
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        Produced.Log = Produced.Log + "produce "
        buffer.StringValue(0, 3) = "abc"
        Return 3
    End Event
    Event cleanupFileAfterBurn()
        Produced.Log = Produced.Log + "cleanup "
    End Event
End Class

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Root")
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
Dim without As UInt64 = track.estimateLength
root.addChild(New Produced("made.bin"))
Print track.estimateLength - without ' expect: 100
Print Produced.Log ' expect: estimate

Produced.Log = ""
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.writeLayout(track)
Dim state As String
Do
    App.DoEvents(10)
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state ' expect: DRStatusStateDone
Print Produced.Log ' expect: prepare size produce cleanup
