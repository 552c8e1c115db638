// The command line: what is typed, and what it does.
#pragma once

namespace drives {

/// Reads the arguments and runs the command; answers the exit status.
int runCommandLine(int count, char** arguments);

} // namespace drives
