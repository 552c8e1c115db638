' An event can be implemented only where a superclass declares it.
Class Plain
    Event Happened(n As Integer) As Boolean ' expect parse error: No superclass declares the event 'Happened'.
        Return True
    End Event
End Class
