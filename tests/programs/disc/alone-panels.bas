' Without a companion there are no panels: the class that they derive from is missing.
Dim panel As DRBurnSetupPanelQRX
Print panel Is Nil
Class OwnPanel ' expect parse error: class OwnPanel can't be defined: class DRSetupPanelQRX needs the class NSPanelQRX, which is not loaded.
    Inherits DRBurnSetupPanelQRX
End Class
