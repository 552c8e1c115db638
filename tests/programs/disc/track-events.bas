' Tracks whose bytes come from events: what the events are asked, what goes wrong in them, and objects that go away
' while the disc is written.
' environment: DISC_DRIVES=drives
' time limit: 120
Class Produced Inherits DRTrackQRX
    Public Mode As String
    Public Kept As MemoryBlock
    Shared Log As String

    Sub Constructor(verification As String)
        Super.Constructor
        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = 2000
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeDVDData
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeDVDData
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormDVDData
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatDVDData
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeDVDData
        settings.Value(DRTrackQRX.DRVerificationTypeKey) = verification
        properties = settings
    End Sub

    Sub Note(word As String)
        If InStr(Produced.Log, word) = 0 Then Produced.Log = Produced.Log + word + " "
    End Sub

    Event estimateLengthOfTrack() As UInt64
        Return 2000
    End Event
    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Note("prepare")
        Return Mode <> "unprepared"
    End Event
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        Note("produce")
        If Mode = "raises" And address > 0 Then Raise New UnsupportedOperationException("no bytes today")
        If Mode = "nothing" And address > 0 Then Return 0
        If Mode = "too much" Then Return Bufferlen + 1
        If Mode = "keeps" Then Kept = buffer
        If Mode = "slow" Then Sleep(20)
        ' All of it is written: who is asked again must answer the same.
        Dim blank As New MemoryBlock(Bufferlen)
        buffer.StringValue(0, Bufferlen) = blank.StringValue(0, Bufferlen)
        Dim blocks As Integer = Bufferlen \ blocksize
        For i As Integer = 0 To blocks - 1
            buffer.UInt64Value(i * blocksize) = address + i
        Next
        If Mode = "ends" And address + blocks >= 1000 Then
            flags = flags Or 1
            Return (1000 - address) * blocksize
        End If
        Return Bufferlen
    End Event
    Event prepareTrackForVerification() As Boolean
        Note("verification")
        Return True
    End Event
    Event verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        Note("verify")
        Return Mode <> "differs" And buffer.UInt64Value(0) = address
    End Event
    Event cleanupTrackAfterVerification() As Boolean
        Note("verified")
        Return True
    End Event
    Event cleanupTrackAfterBurn()
        Note("cleanup")
    End Event
End Class

Function NewBurn(Optional index As Integer = 0) As DRBurnQRX
    Dim drive As DRDeviceQRX = DRDeviceQRX.device(index)
    Dim burn As New DRBurnQRX(drive)
    burn.Overwrite = Not drive.mediaIsBlank
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    Return burn
End Function

Sub WaitFor(burn As DRBurnQRX)
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    If state = DRBurnQRX.DRStatusStateDone Then
        Print "done: " + Produced.Log.Trim
    Else
        Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
        Dim code As UInt32 = problem.Value(DRBurnQRX.DRErrorStatusErrorKey)
        Print Hex(code) + ": " + Produced.Log.Trim
    End If
End Sub

Function BurnOf(mode As String, verification As String) As Produced
    Produced.Log = ""
    Dim track As New Produced(verification)
    track.Mode = mode
    Dim burn As DRBurnQRX = NewBurn
    Try
        burn.writeLayout(track)
        WaitFor(burn)
    Catch e As UnsupportedOperationException
        Print "raised: " + e.Message
        WaitFor(burn)
    End Try
    Return track
End Function

Call BurnOf("", DRTrackQRX.DRVerificationTypeReceiveData)    ' expect: done: prepare produce verification verify verified cleanup
Call BurnOf("", DRTrackQRX.DRVerificationTypeNone)           ' expect: done: prepare produce cleanup
Print DRDeviceQRX.device(0).mediaSpaceUsed.sectors           ' expect: 2000
Call BurnOf("ends", DRTrackQRX.DRVerificationTypeProduceAgain)
' expect: done: prepare produce verification verified cleanup
Print DRDeviceQRX.device(0).mediaSpaceUsed.sectors           ' expect: 1000
Call BurnOf("unprepared", DRTrackQRX.DRVerificationTypeNone) ' expect: 80020062: prepare cleanup
Call BurnOf("nothing", DRTrackQRX.DRVerificationTypeNone)    ' expect: 80020062: prepare produce cleanup
Call BurnOf("too much", DRTrackQRX.DRVerificationTypeNone)   ' expect: 80020062: prepare produce cleanup
Call BurnOf("differs", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020063: prepare produce verification verify verified cleanup
Call BurnOf("raises", DRTrackQRX.DRVerificationTypeNone)
' expect: raised: no bytes today
' expect: 80020062: prepare produce cleanup
Print DRDeviceQRX.device(0).mediaSpaceUsed.sectors           ' expect: 2000

' A buffer is the event's for as long as it runs.
Dim keeper As Produced = BurnOf("keeps", DRTrackQRX.DRVerificationTypeNone) ' expect: done: prepare produce cleanup
Try
    Print keeper.Kept.UInt8Value(0)
Catch e As NilObjectException
    Print "gone"                                             ' expect: gone
End Try

' A track that goes away has no more data; the burn ends in order. A disc that can be written again is as it was, and one
' that is written once says that it isn't whole.
Sub BurnAndDrop(index As Integer)
    Produced.Log = ""
    Dim track As New Produced(DRTrackQRX.DRVerificationTypeNone)
    track.Mode = "slow"
    Dim burn As DRBurnQRX = NewBurn(index)
    burn.writeLayout(track)
    Do
        App.DoEvents(10)
    Loop Until InStr(Produced.Log, "produce") > 0
    track = Nil
    WaitFor(burn)
End Sub

Sub ShowDisc(index As Integer)
    Dim drive As DRDeviceQRX = DRDeviceQRX.device(index)
    Print drive.mediaIsBusy, drive.mediaIsBlank
    For Each onDisc As DRTrackQRX In drive.status.Value(DRDeviceQRX.DRDeviceTrackRefsKey)
        Print onDisc.Length.sectors, onDisc.properties.Value(DRTrackQRX.DRTrackTypeKey)
    Next
End Sub

Call BurnOf("ends", DRTrackQRX.DRVerificationTypeNone)       ' expect: done: prepare produce cleanup
BurnAndDrop(0)                                               ' expect: 80020062: prepare produce
ShowDisc(0)
' expect: False False
' expect: 1000 DRTrackTypeClosed

Sub PutText(file As FolderItem, text As String)
    Dim stream As TextOutputStream = TextOutputStream.Create(file)
    stream.Write(text)
    stream.Close
End Sub
Dim onceFolder As FolderItem = GetFolderItem("drives").Child("once")
onceFolder.CreateAsFolder
PutText(onceFolder.Child("medium.json"), "{""format"":1,""kind"":""DVD+R"",""capacityBlocks"":2295104,""state"":""blank"",""sessions"":[]}")
PutText(onceFolder.Child("drive.json"), "{""format"":1,""vendor"":""Virtual"",""product"":""Once"",""firmwareRevision"":""1.00""}")
BurnAndDrop(1)                                               ' expect: 80020062: prepare produce
ShowDisc(1)
' expect: False False
' expect match: ^[0-9]+ DRTrackTypeIncomplete$
onceFolder.Child("drive.json").Delete

' A burn that goes away ends, too, and the drive is free again.
Dim track As New Produced(DRTrackQRX.DRVerificationTypeNone)
track.Mode = "slow"
Dim burn As DRBurnQRX = NewBurn
burn.writeLayout(track)
App.DoEvents(60)
burn = Nil
Dim waited As Integer
While DRDeviceQRX.device(0).mediaIsBusy And waited < 500
    App.DoEvents(20)
    waited += 1
Wend
Print DRDeviceQRX.device(0).mediaIsBusy                      ' expect: False
Do
    App.DoEvents(10)
Loop Until InStr(Produced.Log, "cleanup") > 0                ' it may come late, and is not the next burn's
track = Nil
Call BurnOf("", DRTrackQRX.DRVerificationTypeChecksum)       ' expect match: ^done: prepare produce .*cleanup
