' Where there is no display a window is empty and does nothing.
' environment: DISPLAY=
Dim window As New NSWindowQRX("Burning", New NSRectQRX(10, 20, 300, 200))
window.show
Print window.visible ' expect: False
window.title = "Still burning"
Print window.title = "" ' expect: True
Print window.bounds Is Nil ' expect: True
window.hide
Dim panel As New NSPanelQRX
Print panel IsA NSWindowQRX ' expect: True
panel.bounds = New NSRectQRX(1, 2, 3, 4)
Print panel.bounds Is Nil ' expect: True

' The panels of the plug-in derive from the companion's.
Class OwnPanel
    Inherits DRBurnSetupPanelQRX
    Sub Constructor()
        Super.show
    End Sub
End Class
Dim own As New OwnPanel
Print own IsA NSPanelQRX ' expect: True
Print own.visible ' expect: False
