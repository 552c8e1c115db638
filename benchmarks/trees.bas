' Burns a tree as fast as it goes, for the benchmarks.
'
'   disc-basic trees.bas real FOLDER MASK
'   disc-basic trees.bas produced COUNT BYTES     files whose bytes come from events
'   disc-basic trees.bas virtual COUNT BYTES      files whose bytes are in memory
'
' Files of the last two are by the hundred in a folder. MASK is the file systems', as DRFilesystemInclusionMask has them.

Const InFolder = 100

Class Produced Inherits DRFileQRX
    Public Shared Size As Integer
    Public Shared Content As String

    Event prepareFileForBurn() As Boolean
        Return True
    End Event

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        Return Produced.Size
    End Event

    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        buffer.StringValue(0, Bufferlen) = Produced.Content
        Return Bufferlen
    End Event
End Class

Function MadeTree(isProduced As Boolean, count As Integer, size As Integer) As DRFolderQRX
    Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("BENCHMARK")
    Dim bytes As New MemoryBlock(size)
    For i As Integer = 0 To size - 1 ' zeros alone would be a hole in the medium's file
        bytes.Byte(i) = 1 + i Mod 255
    Next
    Dim folder As DRFolderQRX
    Produced.Size = size
    Produced.Content = bytes.StringValue(0, size)
    For i As Integer = 0 To count - 1
        If i Mod InFolder = 0 Then
            folder = DRFolderQRX.virtualFolderWithName("folder" + Format(i \ InFolder, "0000"))
            root.addChild(folder)
        End If
        Dim name As String = "file" + Format(i, "000000")
        If isProduced Then
            folder.addChild(New Produced(name))
        Else
            folder.addChild(DRFileQRX.virtualFileWithName(name, bytes))
        End If
    Next
    Return root
End Function

Dim how As String = App.Arguments(0)
Dim root As DRFolderQRX
If how = "real" Then
    root = DRFolderQRX.folderWithPath(App.Arguments(1))
    root.baseName = "BENCHMARK"
    root.explicitFilesystemMask = Val(App.Arguments(2))
Else
    root = MadeTree(how = "produced", Val(App.Arguments(1)), Val(App.Arguments(2)))
End If

Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.verifyDisc = False
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.Overwrite = True
burn.writeLayout(DRTrackQRX.trackForRootFolder(root))
Dim state As String
Do
    App.DoEvents(1)
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
    StdErr.WriteLine(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
    Quit(1)
End If
