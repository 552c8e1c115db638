StdErr.WriteLine "to the error stream" ' expect stderr: to the error stream
StdErr.Write "no line", 1 ' expect stderr: no line 1
StdOut.Write "a"
StdOut.WriteLine "b" ' expect: ab
