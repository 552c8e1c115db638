// Time, waiting, files, the program itself and its surroundings.
#include "Tables.hpp"
#include "host/runtime/Array.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/services/Platform.hpp"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>

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

// The bytes that a path of the platform stands for: it writes one that is no text as U+EF80 to U+EFFF.
std::string bytesOfPath(std::string_view path) {
    std::string bytes;
    for (size_t i = 0; i < path.size(); ++i) {
        const auto at = [&](size_t offset) {
            return i + offset < path.size() ? static_cast<unsigned char>(path[i + offset]) : 0u;
        };
        if (at(0) == 0xEE && (at(1) == 0xBE || at(1) == 0xBF) && at(2) >= 0x80 && at(2) <= 0xBF) {
            bytes += static_cast<char>((at(1) == 0xBE ? 0x80u : 0xC0u) | (at(2) & 0x3Fu));
            i += 2;
        } else {
            bytes += path[i];
        }
    }
    return bytes;
}

// Deliberate: a path means what it says, and only where nothing is there what the platform would mean by it. So the paths
// that plug-ins answer lead to their files, and a name that holds such a character can be given as it is.
Ref itemAt(const std::string& path) {
    Ref item = newFolderItem(path);
    const std::string bytes = bytesOfPath(path);
    if (bytes == path) return item;
    std::error_code ignored;
    const auto isThere = [&](const Ref& each) {
        return std::filesystem::symlink_status(pathOf(each.get()), ignored).type() !=
               std::filesystem::file_type::not_found;
    };
    Ref other = newFolderItem(bytes);
    return !isThere(item) && isThere(other) ? other : item;
}

constexpr NativeEntry kEntries[] = {
    {"Ticks As Integer",
     [](Context&, Arguments) -> Value {
         return Value(static_cast<int32_t>(static_cast<int64_t>(secondsSinceStart() * 60)));
     }},
    {"Microseconds As Double", [](Context&, Arguments) -> Value { return Value(secondsSinceStart() * 1e6); }},
    {"Sleep(milliseconds As Double)",
     [](Context& context, Arguments a) -> Value {
         waitFor(context, a[0].toDouble());
         return {};
     }},
    {"App.DoEvents()",
     [](Context& context, Arguments) -> Value {
         waitFor(context, 0);
         return {};
     }},
    {"App.DoEvents(milliseconds As Double)",
     [](Context& context, Arguments a) -> Value {
         waitFor(context, a[0].toDouble());
         return {};
     }},
    {"App.Arguments As String()",
     [](Context&, Arguments) -> Value {
         const Ref made = newArray({Kind::String, {}, false});
         for (const std::string& argument : programArguments)
             arrayAppend(made.get(), Value(argument));
         return Value::borrow(made.get());
     }},
    {"App.ExecutableFile As FolderItem",
     [](Context&, Arguments) -> Value { return Value(newFolderItem(programFile)); }},
    {"Quit()",
     [](Context& context, Arguments) -> Value {
         stop::quit(0);
         context.pollNow();
         return {};
     }},
    {"Quit(code As Integer)",
     [](Context& context, Arguments a) -> Value {
         stop::quit(a[0].toInt32());
         context.pollNow();
         return {};
     }},
    {"GetFolderItem(path As String) As FolderItem",
     [](Context&, Arguments a) -> Value { return Value(itemAt(a[0].toText())); }},
    {"System.EnvironmentVariable(name As String) As String",
     [](Context&, Arguments a) -> Value { return environment(a[0]); }},
    {"System.EnvironmentVariable(name As String, Assigns value As String)",
     [](Context&, Arguments a) -> Value {
         const std::string name = a[0].toText();
         if (::setenv(name.c_str(), a[1].toText().c_str(), 1) != 0)
             raise("InvalidArgumentException", "'" + name + "' can't be the name of an environment variable");
         return {};
     }},
};

} // namespace

void setProgram(std::string file, std::vector<std::string> arguments) {
    programFile = std::move(file);
    programArguments = std::move(arguments);
}

std::span<const NativeEntry> systemFunctions() { return kEntries; }

} // namespace host::basic
