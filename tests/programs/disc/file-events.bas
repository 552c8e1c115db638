' Files whose bytes come from events: what goes wrong in an event ends the burn with a sentence, and all is cleaned up.
' environment: DISC_DRIVES=drives
Class Produced Inherits DRFileQRX
    Public Mode As String
    Shared Prepared As Integer
    Shared CleanedUp As Integer

    Event prepareFileForBurn() As Boolean
        Produced.Prepared = Produced.Prepared + 1
        Return Mode <> "unprepared"
    End Event

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        If Mode = "unsized" Then Raise New UnsupportedOperationException("no size today")
        If Mode = "nil" Then Raise New NilObjectException
        If fork <> DRFileQRX.DRFileForkData Or estimating Then Return 1
        Return 5000
    End Event

    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        If Mode = "raises" Then Raise New UnsupportedOperationException("no bytes today")
        If Mode = "short" And address >= 3000 Then Return 0
        If Mode = "short" Or Mode = "slow" Or Mode = "untidy" Then
            Dim count As Integer = Min(1000, Bufferlen)
            For i As Integer = 0 To count - 1
                buffer.UInt8Value(i) = (address + i) Mod 251
            Next
            Return count
        End If
        Return Bufferlen + 1
    End Event

    Event cleanupFileAfterBurn()
        Produced.CleanedUp = Produced.CleanedUp + 1
        If Mode = "untidy" Then Raise New UnsupportedOperationException("no broom today")
    End Event
End Class

Sub WaitFor(burn As DRBurnQRX)
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
End Sub

' How the burn ended; what an event raised comes out here, at whatever statement the program is at.
Function BurnOf(mode As String) As String
    Dim file As New Produced("produced.bin")
    file.Mode = mode
    Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Events")
    root.addChild(file)
    Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
    burn.Overwrite = Not DRDeviceQRX.device(0).mediaIsBlank
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    Dim raised As String
    Try
        burn.writeLayout(DRTrackQRX.trackForRootFolder(root))
        WaitFor(burn)
        App.DoEvents(1)
    Catch e As UnsupportedOperationException
        raised = " and " + e.Message
    Catch e As NilObjectException
        raised = " and what was nil"
    End Try
    WaitFor(burn)
    Dim status As Dictionary = burn.status
    If status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateDone Then Return "done" + raised
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Dim code As Integer = problem.Value(DRBurnQRX.DRErrorStatusErrorKey)
    Dim text As String = Hex(code) + ": " + problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey).StringValue
    If problem.HasKey(DRBurnQRX.DRErrorStatusErrorInfoStringKey) Then
        text = text + " (" + problem.Value(DRBurnQRX.DRErrorStatusErrorInfoStringKey).StringValue + ")"
    End If
    Return text + raised
End Function

Print BurnOf("unprepared") ' expect: 80020062: The producer of the file "produced.bin" could not prepare it, or can't tell its size.
Print BurnOf("raises") ' expect: 80020062: The producer of the file "produced.bin" gave 0 bytes of the 5000 that it had announced. (no bytes today) and no bytes today
Print BurnOf("unsized") ' expect: 80020062: The producer of the file "produced.bin" could not prepare it, or can't tell its size. (no size today) and no size today
Print BurnOf("nil") ' expect: 80020062: The producer of the file "produced.bin" could not prepare it, or can't tell its size. (NilObjectException) and what was nil
Print BurnOf("short") ' expect: 80020062: The producer of the file "produced.bin" gave 3000 bytes of the 5000 that it had announced.
Print BurnOf("more") ' expect: 80020062: The producer of the file "produced.bin" says that it gave more than it was asked for.
Print DRDeviceQRX.device(0).mediaIsBlank ' expect: True
' By then the disc is whole, and stays so.
Print BurnOf("untidy") ' expect: 80020062: The producer of the file "produced.bin" failed when it was to clean up; the burn itself was over. (no broom today) and no broom today
For Each onDisc As DRTrackQRX In DRDeviceQRX.device(0).status.Value(DRDeviceQRX.DRDeviceTrackRefsKey)
    Print onDisc.properties.Value(DRTrackQRX.DRTrackTypeKey) ' expect: DRTrackTypeClosed
Next
Print BurnOf("slow") ' expect: done
App.DoEvents(200)
Print Produced.Prepared ' expect: 8
Print Produced.CleanedUp ' expect: 8
