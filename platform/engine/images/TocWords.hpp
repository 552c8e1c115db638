// The words of a .toc file, one after the other.
#pragma once

#include "images/Sheet.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace engine {

/// Reads on; what isn't as the grammar wants it is refused with its line.
class TocWords {
  public:
    explicit TocWords(const Sheet& sheet);

    bool atEnd() const noexcept { return next_ == words_.size(); }
    /// The next word, in capitals, without taking it; "" at the end and for a text in quotes.
    std::string_view peek() const noexcept;
    /// Whether the next word is that one, which then is taken.
    bool take(std::string_view word);
    void need(std::string_view word);
    std::string takeWord();

    bool isText() const noexcept { return !atEnd() && words_[next_].isText; }
    /// Between quotes, where \" is a quote and \123 a byte in octal.
    std::string takeText(std::string_view what);

    bool isNumber() const noexcept;
    uint64_t takeNumber(std::string_view what, uint64_t limit);
    bool isTime() const noexcept;
    uint64_t takeTime(); ///< in blocks

    /// The line of the word that was taken last.
    size_t line() const noexcept;
    [[noreturn]] void refuse(const std::string& sentence, ErrorCode code = ErrorCode::BadLayout) const;
    /// That the next word makes no sense here.
    [[noreturn]] void refuseNext(const std::string& wanted);

    const Sheet& sheet() const noexcept { return sheet_; }

  private:
    struct Word {
        std::string text;
        size_t line;
        bool isText;
    };
    const Sheet& sheet_;
    std::vector<Word> words_;
    size_t next_ = 0;
};

} // namespace engine
