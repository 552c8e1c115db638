// The text of a .cue or .toc file: its lines, its words for people, and the files beside it.
#pragma once

#include "Failure.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace engine {

/// All of it throws Failure.
class Sheet {
  public:
    /// UTF-8, with or without a mark of byte order, and UTF-16 with one become UTF-8; bytes that are neither stay, and
    /// utf16Of() takes them as Latin-1.
    explicit Sheet(const std::string& path);

    const std::string& text() const noexcept { return text_; }

    /// BadLayout, or another code, with `"name", line n: sentence`.
    [[noreturn]] void refuse(size_t line, const std::string& sentence,
                             ErrorCode code = ErrorCode::BadLayout) const;

    /// The file that a sheet means: as written, else with another system's folders left out, else with other
    /// capitals. Refuses what isn't there, is no file, or is empty.
    std::string findFile(size_t line, const std::string& name) const;

    /// The bytes of a file that was found.
    uint64_t sizeOf(size_t line, const std::string& path) const;

  private:
    std::string path_, text_;
};

/// Text for CD-Text.
std::u16string utf16Of(std::string_view bytes);

/// Blocks of "mm:ss:ff"; minutes may have four digits, for the largest discs. Empty text or other figures give false.
bool blocksOfTime(std::string_view time, uint64_t& blocks);

/// Blocks as a time, for sentences.
std::string timeOf(uint64_t blocks);

/// ASCII only.
std::string inCapitals(std::string_view text);

} // namespace engine
