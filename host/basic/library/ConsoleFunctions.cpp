// Standard input, output and error.
#include "Tables.hpp"

#include <cerrno>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>

namespace host::basic {

namespace {

constexpr size_t kBuffer = 16384;

std::string waiting; // output that is not yet written; only the thread that has the lock of BASIC comes here
std::string inputBuffer;
bool inputEnded = false;

void writeAll(int file, std::string_view text, const char* name) {
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0)
            raise("IOException", std::string(name) + " can't be written: " + std::strerror(errno));
        text.remove_prefix(static_cast<size_t>(written));
    }
}

// More input; false at its end. A stop wakes the waiting.
bool readMore() {
    if (inputEnded) return false;
    flushOut();
    if (!stop::wait(-1, STDIN_FILENO)) {
        Context::ofThisThread().pollNow(); // leaves, unless this is a clean-up already
        return false;
    }
    char chunk[65536];
    const ssize_t got = ::read(STDIN_FILENO, chunk, sizeof chunk);
    if (got < 0 && errno == EINTR) return true;
    if (got < 0) raise("IOException", std::string("standard input can't be read: ") + std::strerror(errno));
    inputEnded = got == 0;
    inputBuffer.append(chunk, static_cast<size_t>(got));
    return got > 0;
}

Value readLine() {
    size_t end = inputBuffer.find('\n');
    while (end == std::string::npos && readMore())
        end = inputBuffer.find('\n');
    std::string line = inputBuffer.substr(0, end);
    inputBuffer.erase(0, end == std::string::npos ? end : end + 1);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return Value(line);
}

void writeShown(Arguments values, bool newLine, bool toError) {
    std::string text;
    for (size_t i = 0; i < values.size(); ++i) {
        if (i > 0) text += ' ';
        text += shownText(values[i], "Print");
    }
    if (newLine) text += '\n';
    toError ? writeError(text) : writeOut(text);
}

int32_t terminalWidth() {
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

constexpr NativeEntry kEntries[] = {
    {"Print(...)",
     [](Context&, Arguments a) -> Value {
         writeShown(a, true, false);
         return {};
     }},
    {"StdOut.Write(...)",
     [](Context&, Arguments a) -> Value {
         writeShown(a, false, false);
         flushOut();
         return {};
     }},
    {"StdOut.WriteLine(...)",
     [](Context&, Arguments a) -> Value {
         writeShown(a, true, false);
         return {};
     }},
    {"StdOut.Flush()",
     [](Context&, Arguments) -> Value {
         flushOut();
         return {};
     }},
    {"StdOut.IsTerminal As Boolean",
     [](Context&, Arguments) -> Value { return Value(::isatty(STDOUT_FILENO) == 1); }},
    {"StdErr.Write(...)",
     [](Context&, Arguments a) -> Value {
         writeShown(a, false, true);
         return {};
     }},
    {"StdErr.WriteLine(...)",
     [](Context&, Arguments a) -> Value {
         writeShown(a, true, true);
         return {};
     }},
    {"System.DebugLog(...)",
     [](Context&, Arguments a) -> Value {
         writeShown(a, true, true);
         return {};
     }},
    {"StdIn.ReadLine As String", [](Context&, Arguments) -> Value { return readLine(); }},
    {"StdIn.ReadAll As String",
     [](Context&, Arguments) -> Value {
         while (readMore()) {
         }
         return Value(std::exchange(inputBuffer, {}));
     }},
    {"StdIn.EOF As Boolean",
     [](Context&, Arguments) -> Value { return Value(inputBuffer.empty() && !readMore() && inputEnded); }},
    {"Input As String", [](Context&, Arguments) -> Value { return readLine(); }},
    {"Input(prompt As String) As String",
     [](Context&, Arguments a) -> Value {
         writeOut(a[0].toText());
         return readLine();
     }},
    {"System.IsTerminal As Boolean",
     [](Context&, Arguments) -> Value { return Value(::isatty(STDOUT_FILENO) == 1); }},
    {"System.TerminalWidth As Integer", [](Context&, Arguments) -> Value { return Value(terminalWidth()); }},
};

} // namespace

void writeOut(std::string_view text) {
    waiting.append(text);
    static const bool terminal = ::isatty(STDOUT_FILENO) == 1;
    if (waiting.size() >= kBuffer || (terminal && waiting.ends_with('\n'))) flushOut();
}

void flushOut() {
    // Taken out first: what can't be written is not tried again and again.
    const std::string text = std::exchange(waiting, {});
    writeAll(STDOUT_FILENO, text, "standard output");
}

void writeError(std::string_view text) {
    flushOut();
    writeAll(STDERR_FILENO, text, "standard error");
}

std::span<const NativeEntry> consoleFunctions() { return kEntries; }

} // namespace host::basic
