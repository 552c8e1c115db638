// A program's text with its lines, and the list of what is wrong with it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host::basic {

/// A place in a program: byte offset from its start. Line and column are computed when they are needed.
struct Place {
    uint32_t offset = 0;
};

/// One line and one column, both counted from 1; a column is one character, not one byte.
struct LineColumn {
    uint32_t line = 1;
    uint32_t column = 1;
};

/// The text of one program. Keeps the bytes as they are; only a byte order mark is left out.
class Source {
  public:
    Source(std::string fileName, std::string text);

    const std::string& fileName() const { return fileName_; }
    std::string_view text() const { return text_; }
    LineColumn locate(Place place) const;
    /// The line's bytes without its line end.
    std::string_view lineText(uint32_t line) const;
    /// "name.bas:12:5".
    std::string describe(Place place) const;
    /// The line and, below it, a caret under the place; long lines are cut to the part around the place.
    std::string excerpt(Place place) const;

  private:
    std::string fileName_;
    std::string text_;
    std::vector<uint32_t> lineStarts_;
};

struct Diagnostic {
    Place place;
    std::string message;
};

/// What was found wrong before a program runs. A statement that is broken is reported once.
class Diagnostics {
  public:
    static constexpr size_t kMaximum = 20;

    void report(Place place, std::string message);
    bool empty() const { return list_.empty(); }
    bool full() const { return list_.size() >= kMaximum; }
    const std::vector<Diagnostic>& list() const { return list_; }
    /// All of them in the order of their places, each with file, line, column, sentence, and the line itself.
    std::string render(const Source& source) const;

  private:
    std::vector<Diagnostic> list_;
    size_t suppressed_ = 0;
};

/// Why a program file could not be read; the text is one sentence that names the file.
struct UnreadableProgram {
    std::string message;
};

/// Reads a program from a file. Throws UnreadableProgram for a missing or unreadable file, a folder, a
/// device, a file with zero bytes in it, one that is not UTF-8, and one above 64 MiB.
Source readProgram(const std::string& path);

/// The offset of the first byte that is no part of well-formed UTF-8, or npos.
size_t findInvalidUtf8(std::string_view text);

} // namespace host::basic
