' A burn that is waited for: the events of its tracks and files run meanwhile, on the thread that waits.
' environment: DISC_DRIVES=drives
' time limit: 60
Class Produced Inherits DRTrackQRX
    Raises As Boolean

    Sub Constructor()
        Super.Constructor
        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = 2000
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeDVDData
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeDVDData
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormDVDData
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatDVDData
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeDVDData
        settings.Value(DRTrackQRX.DRVerificationTypeKey) = DRTrackQRX.DRVerificationTypeReceiveData
        properties = settings
    End Sub

    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Print "prepare: " + burn.status.Value(DRBurnQRX.DRStatusStateKey)
        Return True
    End Event
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        If Raises And address > 0 Then Raise New UnsupportedOperationException("no bytes today")
        Dim blank As New MemoryBlock(Bufferlen)
        buffer.StringValue(0, Bufferlen) = blank.StringValue(0, Bufferlen)
        buffer.UInt64Value(0) = address
        Return Bufferlen
    End Event
    Event verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        Return buffer.UInt64Value(0) = address Or address Mod 8 <> 0
    End Event
    Event cleanupTrackAfterBurn()
        Print "cleanup"
    End Event
End Class

Class Bytes Inherits DRFileQRX
    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        Return 3
    End Event
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        buffer.StringValue(0, 3) = "abc"
        Return 3
    End Event
    Event cleanupFileAfterBurn()
        Print "cleanup of the file"
    End Event
End Class

Function NewBurn() As DRBurnQRX
    Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
    Dim burn As New DRBurnQRX(drive)
    Dim settings As Dictionary = burn.properties
    settings.Value(DRBurnQRX.DRSynchronousBehaviorKey) = True
    burn.properties = settings
    burn.Overwrite = Not drive.mediaIsBlank
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    Return burn
End Function

Sub Write(track As DRTrackQRX)
    Dim burn As DRBurnQRX = NewBurn
    Try
        burn.writeLayout(track)
    Catch e As UnsupportedOperationException
        Print "raised: " + e.Message
    End Try
    Print burn.status.Value(DRBurnQRX.DRStatusStateKey)
End Sub

Dim track As New Produced
Write(track)
' expect: prepare: DRStatusStatePreparing
' expect: cleanup
' expect: DRStatusStateDone
Print DRDeviceQRX.device(0).mediaSpaceUsed.sectors           ' expect: 2000

Dim raising As New Produced
raising.Raises = True
Write(raising)
' expect: prepare: DRStatusStatePreparing
' expect: cleanup
' expect: raised: no bytes today
' expect: DRStatusStateFailed

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Events")
Dim file As New Bytes("a.txt")
root.addChild(file)
Write(DRTrackQRX.trackForRootFolder(root))
' expect: cleanup of the file
' expect: DRStatusStateDone
