// Runs one program from its file to its exit status.
#pragma once

#include "host/basic/syntax/Source.hpp"

#include <string>
#include <vector>

namespace host::basic {

enum ExitStatus : int {
    kExitGood = 0,
    kExitUncaught = 1,
    kExitUnusable = 2,
    kExitInterrupted = 130,
    kExitTerminated = 143
};

/// Reads, compiles and runs the program. What goes wrong is told on standard error.
/// `listLeaks`: names the objects that are still alive when everything was dropped.
int runProgram(const std::string& file, const std::vector<std::string>& arguments, bool listLeaks);

/// The same for a text that has been read, by a thread that holds the lock of BASIC and has defined the library's
/// classes. The program's own classes stay until forgetProgramClasses().
int runSource(const Source& source, bool listLeaks);

} // namespace host::basic
