' Burns the blocks of a file as one track of the kind that the arguments say.
'   disc-basic blocks.bas FILE SIZE TYPE FORM SESSION [VERIFICATION]

Function Number(text As String) As Integer
    Return Val(text)
End Function

Class Blocks Inherits DRTrackQRX
    Private mBytes As String

    Sub Constructor(file As FolderItem, kind() As String)
        Super.Constructor
        Dim stream As BinaryStream = BinaryStream.Open(file)
        mBytes = stream.Read(stream.Length)
        Dim size As Integer = Number(kind(0))
        Dim settings As New Dictionary
        settings.Value(DRTrackLengthKey) = LenB(mBytes) \ size
        settings.Value(DRBlockSizeKey) = size
        settings.Value(DRBlockTypeKey) = Number(kind(1))
        settings.Value(DRDataFormKey) = Number(kind(2))
        settings.Value(DRSessionFormatKey) = Number(kind(3))
        settings.Value(DRTrackModeKey) = 4
        settings.Value(DRVerificationTypeKey) = kind(4)
        properties = settings
    End Sub

    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Return True
    End Event

    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        buffer.StringValue(0, Bufferlen) = MidB(mBytes, address * blocksize + 1, Bufferlen)
        Return Bufferlen
    End Event

    Event prepareTrackForVerification() As Boolean
        Return True
    End Event

    Event verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        Return buffer.StringValue(0, Bufferlen) = MidB(mBytes, address * blocksize + 1, Bufferlen)
    End Event

    Event cleanupTrackAfterVerification() As Boolean
        Return True
    End Event
End Class

Dim kind() As String
For i As Integer = 1 To 5
    kind.Append(App.Arguments(i))
Next
Dim track As New Blocks(GetFolderItem(App.Arguments(0)), kind)
Dim drives() As DRDeviceQRX = DRDeviceQRX.devices
Dim burn As New DRBurnQRX(drives(0))
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.writeLayout(track)
Dim status As Dictionary
Do
    App.DoEvents(5)
    status = burn.status
    Dim state As String = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
If status.HasKey(DRBurnQRX.DRErrorStatusKey) Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    StdErr.WriteLine(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
    Quit(1)
End If
