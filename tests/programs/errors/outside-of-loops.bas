Exit For ' expect parse error: Exit stands outside of a For loop.
Continue ' expect parse error: Continue stands outside of a loop.
While True
    Exit Do ' expect parse error: Exit stands outside of a Do loop.
Wend
Print Me ' expect parse error: There is no object here that 'Me' could mean.
