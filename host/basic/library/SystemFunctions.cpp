// Time, waiting, files, the program itself and its surroundings.
#include "Tables.hpp"
#include "host/runtime/Array.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/services/Platform.hpp"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>

namespace host::basic {

namespace {

std::string programFile;
std::vector<std::string> programArguments;

double secondsSinceStart() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// In slices, because the platform's loop is not woken by a signal.
void waitFor(Context& context, double milliseconds) {
    constexpr double kSlice = 20;
    flushOut();
    if (!(milliseconds > 0)) milliseconds = 0;
    if (!hasPlatform()) {
        stop::wait(milliseconds);
        context.pollNow();
        return;
    }
    const double end = secondsSinceStart() + milliseconds / 1000;
    for (;;) {
        const double left = end - secondsSinceStart();
        runLoop(std::clamp(left, 0.0, kSlice / 1000));
        context.pollNow();
        if (left <= kSlice / 1000) return;
    }
}

Value environment(const Value& name) {
    const char* value = std::getenv(name.toText().c_str());
    return Value(value ? value : "");
}

#define SYSTEM_FUNCTION [](Context & context, Arguments a) -> Value
constexpr NativeEntry kEntries[] = {{"Ticks As Integer", SYSTEM_FUNCTION{(void)context, (void)a;
return Value(static_cast<int32_t>(static_cast<int64_t>(secondsSinceStart() * 60)));
} // namespace
} // namespace host::basic
, {"Microseconds As Double", SYSTEM_FUNCTION{(void)context, (void)a;
return Value(secondsSinceStart() * 1e6);
}
}
, {"Sleep(milliseconds As Double)", SYSTEM_FUNCTION{waitFor(context, a[0].toDouble());
return {};
}
}
, {"App.DoEvents()", SYSTEM_FUNCTION{(void)a;
waitFor(context, 0);
return {};
}
}
, {"App.DoEvents(milliseconds As Double)", SYSTEM_FUNCTION{waitFor(context, a[0].toDouble());
return {};
}
}
, {"App.Arguments As String()", SYSTEM_FUNCTION{(void)context, (void)a;
const Ref made = newArray({Kind::String, {}, false});
for (const std::string& argument : programArguments)
    arrayAppend(made.get(), Value(argument));
return Value::borrow(made.get());
}
}
, {"App.ExecutableFile As FolderItem", SYSTEM_FUNCTION{(void)context, (void)a;
return Value(newFolderItem(programFile));
}
}
, {"Quit()", SYSTEM_FUNCTION{(void)a;
stop::quit(0);
context.pollNow();
return {};
}
}
, {"Quit(code As Integer)", SYSTEM_FUNCTION{stop::quit(a[0].toInt32());
context.pollNow();
return {};
}
}
, {"GetFolderItem(path As String) As FolderItem", SYSTEM_FUNCTION{(void)context;
return Value(newFolderItem(a[0].toText()));
}
}
, {"System.EnvironmentVariable(name As String) As String", SYSTEM_FUNCTION{(void)context;
return environment(a[0]);
}
}
, {"System.EnvironmentVariable(name As String, Assigns value As String)", SYSTEM_FUNCTION{(void)context;
const std::string name = a[0].toText();
if (::setenv(name.c_str(), a[1].toText().c_str(), 1) != 0)
    raise("InvalidArgumentException", "'" + name + "' can't be the name of an environment variable");
return {};
}
}
,
}
;
#undef SYSTEM_FUNCTION

} // namespace

void setProgram(std::string file, std::vector<std::string> arguments) {
    programFile = std::move(file);
    programArguments = std::move(arguments);
}

std::span<const NativeEntry> systemFunctions() { return kEntries; }

} // namespace host::basic
