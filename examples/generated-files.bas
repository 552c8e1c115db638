' Burns files that nobody has stored: their bytes are made while the disc is written.
'
'   disc-basic generated-files.bas [ROWS]
'
' The events run in the burn's own time while the loop below watches its status.

Const Usage = "Usage: generated-files.bas [ROWS]"
Const RowBytes = 24

Sub Fail(message As String)
    StdErr.WriteLine("generated-files: " + message)
    Quit(1)
End Sub

' A table of powers: rows of one length, so the size is known before the first row is made.
Class PowerTable Inherits DRFileQRX
    Public Rows As Integer
    Public Exponent As Integer

    Function Row(number As Integer) As String
        Dim power As Int64 = 1
        For i As Integer = 1 To Exponent
            power = power * number
        Next
        Return Right("          " + Str(number), 10) + Right("             " + Str(power), 13) + Chr(10)
    End Function

    Event prepareFileForBurn() As Boolean
        Print "Making " + baseName
        Return True
    End Event

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        If fork <> DRFileQRX.DRFileForkData Then Return 0
        Return Rows * RowBytes
    End Event

    ' As many whole rows as fit, from the row that the address falls on.
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        Dim number As Integer = address \ RowBytes
        Dim skip As Integer = address Mod RowBytes
        Dim made As Integer = 0
        While number < Rows And made < Bufferlen
            Dim text As String = Mid(Row(number + 1), skip + 1)
            If made + Len(text) > Bufferlen Then text = Left(text, Bufferlen - made)
            buffer.StringValue(made, Len(text)) = text
            made = made + Len(text)
            number = number + 1
            skip = 0
        Wend
        Return made
    End Event

    Event cleanupFileAfterBurn()
        Print "Done with " + baseName
    End Event
End Class

If App.Arguments.LastIndex > 0 Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If
Dim rows As Integer = 500
If App.Arguments.LastIndex = 0 Then rows = Val(App.Arguments(0))
If rows < 1 Or rows > 1000000 Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If

If DRDeviceQRX.deviceCount = 0 Then Fail("there is no drive that can write discs; disc-drives list names those in use")
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Generated")
For exponent As Integer = 2 To 3
    Dim table As New PowerTable("powers of " + Str(exponent) + ".txt")
    table.Rows = rows
    table.Exponent = exponent
    root.addChild(table)
Next

Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.writeLayout(track)
Dim status As Dictionary
Dim state As String
Do
    App.DoEvents(20)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If
Print "Burned " + Str(rows) + " rows in each of " + Str(root.count) + " tables."
