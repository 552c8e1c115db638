' Erases a re-writable disc with the system's panels: one to choose the drive, one to watch the erase.
'
'   disc-basic erase-with-panel.bas
'
' Needs a display.

Class Progress
    Inherits DREraseProgressPanelQRX
    finished As Boolean

    Event eraseProgressPanelWillBegin()
        Print "Erasing."
    End Event

    Event eraseProgressPanelEraseDidFinish(erase As DREraseQRX) As Boolean
        Print "The erase ended: " + erase.status.Value(DRBurnQRX.DRStatusStateKey).StringValue
        Return False ' the panel tells the person
    End Event

    Event eraseProgressPanelDidFinish()
        finished = True
    End Event
End Class

Dim setup As New DREraseSetupPanelQRX
If setup.bounds Is Nil Then
    StdErr.WriteLine("There is no display to show a panel on.")
    Quit(1)
End If
If setup.runSetupPanel = DRSetupPanelQRX.NSCancelButton Then
    Print "Cancelled."
    Quit
End If

Dim erase As DREraseQRX = setup.eraseObject
Dim progress As New Progress
progress.beginProgressPanelForErase(erase)
While Not progress.finished
    App.DoEvents
Wend
If erase.status.Value(DRBurnQRX.DRStatusStateKey).StringValue <> DRBurnQRX.DRStatusStateDone Then Quit(1)
