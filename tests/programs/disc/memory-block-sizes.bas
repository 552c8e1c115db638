' A memory block that changes its size before, while and after the platform has to do with it.
' environment: DISC_DRIVES=drives
Class Resizing Inherits DRFileQRX
    Public Shared Kept As MemoryBlock

    Event prepareFileForBurn() As Boolean
        Return True
    End Event

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        Return If(fork = DRFileQRX.DRFileForkData, 4096, 0)
    End Event

    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        ' The buffer is the platform's: its size is not the program's to change.
        Kept = buffer
        buffer.Size = 1
        Return 1
    End Event
End Class

Function Text(block As MemoryBlock) As String
    If block Is Nil Then Return "nil"
    Return Str(block.Size) + " " + block.StringValue(0, block.Size)
End Function

Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
Dim block As New MemoryBlock(6)
block.StringValue(0, 6) = "sixsix"
Dim values As New Dictionary
values.Value("block") = block
burn.properties = values
' What went over is a copy.
block.Size = 3
block.StringValue(0, 3) = "abc"
Print Text(burn.properties.Value("block")) ' expect: 6 sixsix
burn.properties = values
block.Size = 100000
Print Text(burn.properties.Value("block")) ' expect: 3 abc
burn.properties = values
Dim large As MemoryBlock = burn.properties.Value("block")
Print large.Size ' expect: 100000
Print large.StringValue(0, 3) ' expect: abc
' An empty one is no data, which a dictionary holds as its null.
block.Size = 0
burn.properties = values
Print burn.properties.Value("block") Is Nil ' expect: True

block.Size = 13
block.StringValue(0, 13) = "1234567890123"
burn.mediaCatalogNumber = block
block.Size = 0
Print Text(burn.mediaCatalogNumber) ' expect: 13 1234567890123

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Sizes")
root.addChild(New Resizing("resizing.bin"))
burn = New DRBurnQRX(DRDeviceQRX.device(0))
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.writeLayout(DRTrackQRX.trackForRootFolder(root))
Dim state As String
Do
    Try
        App.DoEvents(10)
    Catch e As UnsupportedOperationException
        Print e.Message ' expect: a memory block that points at foreign memory can't be resized
    End Try
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state ' expect: DRStatusStateFailed
Try
    Print Resizing.Kept.UInt8Value(0)
Catch e As NilObjectException
    Print "the buffer is gone" ' expect: the buffer is gone
End Try
