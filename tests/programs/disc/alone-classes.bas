' Without a companion its classes are unknown, and the program is told before it runs.
Dim rect As NSRectQRX ' expect parse error: There is no type 'NSRectQRX'.
