// Reading a program's text, finding lines and columns in it, and showing a place to a person.
#include "Source.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host::basic {

namespace {

constexpr uint64_t kLargestProgram = uint64_t{64} << 20;
constexpr size_t kExcerptWidth = 160;

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Tabs and other control characters would move the caret, so they are shown as one blank.
std::string printable(std::string_view text) {
    std::string shown(text);
    for (char& byte : shown) {
        if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F) byte = ' ';
    }
    return shown;
}

} // namespace

Source::Source(std::string fileName, std::string text)
    : fileName_(std::move(fileName)), text_(std::move(text)) {
    if (text_.starts_with("\xEF\xBB\xBF")) text_.erase(0, 3);
    lineStarts_.push_back(0);
    for (size_t i = 0; i < text_.size(); ++i) {
        const bool lineFeed = text_[i] == '\n';
        const bool loneReturn = text_[i] == '\r' && (i + 1 == text_.size() || text_[i + 1] != '\n');
        if (lineFeed || loneReturn) lineStarts_.push_back(static_cast<uint32_t>(i + 1));
    }
}

LineColumn Source::locate(Place place) const {
    const auto offset = std::min<size_t>(place.offset, text_.size());
    const auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), static_cast<uint32_t>(offset));
    const auto line = static_cast<uint32_t>(next - lineStarts_.begin());
    const auto start = text_.begin() + lineStarts_[line - 1];
    const auto characters = std::count_if(start, text_.begin() + static_cast<std::ptrdiff_t>(offset),
                                          [](char byte) { return !isContinuation(byte); });
    return {line, static_cast<uint32_t>(characters) + 1};
}

std::string_view Source::lineText(uint32_t line) const {
    if (line == 0 || line > lineStarts_.size()) return {};
    const size_t start = lineStarts_[line - 1];
    size_t end = line < lineStarts_.size() ? lineStarts_[line] : text_.size();
    while (end > start && (text_[end - 1] == '\n' || text_[end - 1] == '\r'))
        --end;
    return std::string_view(text_).substr(start, end - start);
}

std::string Source::describe(Place place) const {
    const LineColumn at = locate(place);
    return fileName_ + ":" + std::to_string(at.line) + ":" + std::to_string(at.column);
}

std::string Source::excerpt(Place place) const {
    const LineColumn at = locate(place);
    std::string_view line = lineText(at.line);
    size_t before = std::min<size_t>(place.offset - lineStarts_[at.line - 1], line.size());
    std::string lead;
    if (line.size() > kExcerptWidth) {
        size_t from = before > kExcerptWidth / 2 ? before - kExcerptWidth / 2 : 0;
        while (from > 0 && isContinuation(line[from]))
            --from;
        size_t to = std::min(line.size(), from + kExcerptWidth);
        while (to < line.size() && isContinuation(line[to]))
            ++to;
        if (from > 0) lead = "...";
        line = line.substr(from, to - from);
        before -= from;
    }
    const auto characters =
        static_cast<size_t>(std::count_if(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(before),
                                          [](char b) { return !isContinuation(b); }));
    return "    " + lead + printable(line) + "\n    " + std::string(lead.size() + characters, ' ') + "^\n";
}

void Diagnostics::report(Place place, std::string message) {
    for (const Diagnostic& known : list_) {
        if (known.place.offset == place.offset) return;
    }
    if (full()) {
        ++suppressed_;
        return;
    }
    list_.push_back({place, std::move(message)});
}

std::string Diagnostics::render(const Source& source) const {
    std::vector<Diagnostic> sorted = list_;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Diagnostic& a, const Diagnostic& b) {
        return a.place.offset < b.place.offset;
    });
    std::string text;
    for (const Diagnostic& one : sorted)
        text += source.describe(one.place) + ": error: " + one.message + "\n" + source.excerpt(one.place);
    if (suppressed_ > 0)
        text += source.fileName() + ": there are more errors; these are the first " +
                std::to_string(kMaximum) + ".\n";
    return text;
}

size_t findInvalidUtf8(std::string_view text) {
    size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        size_t length = 1;
        uint32_t value = lead;
        if (lead >= 0xF0 && lead < 0xF5) {
            length = 4;
            value = lead & 0x07u;
        } else if (lead >= 0xE0 && lead < 0xF0) {
            length = 3;
            value = lead & 0x0Fu;
        } else if (lead >= 0xC2 && lead < 0xE0) {
            length = 2;
            value = lead & 0x1Fu;
        } else if (lead >= 0x80) {
            return i;
        }
        if (i + length > text.size()) return i;
        for (size_t k = 1; k < length; ++k) {
            if (!isContinuation(text[i + k])) return i;
            value = (value << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3Fu);
        }
        const bool overlong = (length == 3 && value < 0x800) || (length == 4 && value < 0x10000);
        if (overlong || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) return i;
        i += length;
    }
    return std::string_view::npos;
}

Source readProgram(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) {
        const char* advice = errno == ENOENT ? "; check the path" : "";
        throw UnreadableProgram{"Cannot open the program " + path + ": " + std::strerror(errno) + advice +
                                "."};
    }
    struct Closer {
        int file;
        ~Closer() { ::close(file); }
    } closer{file};

    struct stat info {};
    if (::fstat(file, &info) != 0)
        throw UnreadableProgram{"Cannot read the program " + path + ": " + std::strerror(errno) + "."};
    if (S_ISDIR(info.st_mode))
        throw UnreadableProgram{path + " is a folder, not a program; name a file in it."};
    if (S_ISREG(info.st_mode) && static_cast<uint64_t>(info.st_size) > kLargestProgram)
        throw UnreadableProgram{path + " is too large for a program (more than 64 MiB)."};

    std::string text;
    char chunk[65536];
    for (;;) {
        const ssize_t got = ::read(file, chunk, sizeof chunk);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0)
            throw UnreadableProgram{"Cannot read the program " + path + ": " + std::strerror(errno) + "."};
        if (got == 0) break;
        text.append(chunk, static_cast<size_t>(got));
        if (text.size() > kLargestProgram)
            throw UnreadableProgram{path + " is too large for a program (more than 64 MiB)."};
    }
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
        throw UnreadableProgram{path + " is UTF-16 text; save the program as UTF-8."};
    if (text.find('\0') != std::string::npos)
        throw UnreadableProgram{path + " is a binary file, not a program: it contains zero bytes."};
    Source source(path, std::move(text));
    const size_t bad = findInvalidUtf8(source.text());
    if (bad != std::string_view::npos) {
        const Place place{static_cast<uint32_t>(bad)};
        throw UnreadableProgram{source.describe(place) +
                                ": error: this byte is not UTF-8 text; save the program as UTF-8."};
    }
    return source;
}

} // namespace host::basic
