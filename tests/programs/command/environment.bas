' environment: DISC_TEST=value
Print System.EnvironmentVariable("DISC_TEST") ' expect: value
Print "[" + System.EnvironmentVariable("NOT_THERE_AT_ALL") + "]" ' expect: []
System.EnvironmentVariable("DISC_TEST") = "new"
Print System.EnvironmentVariable("DISC_TEST") ' expect: new
Print System.IsTerminal, System.TerminalWidth ' expect: False 80
