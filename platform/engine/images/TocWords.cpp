// Taking a .toc file apart into words, texts and braces.
#include "images/TocWords.hpp"

#include <algorithm>

namespace engine {
namespace {

constexpr std::string_view blanks = " \t\r\n\f\v", marks = "{},";

bool isOctal(char each) { return each >= '0' && each <= '7'; }

} // namespace

TocWords::TocWords(const Sheet& sheet) : sheet_(sheet) {
    const std::string_view text = sheet.text();
    size_t line = 1;
    for (size_t at = 0; at < text.size();) {
        if (text[at] == '\n') ++line;
        if (blanks.find(text[at]) != std::string_view::npos) {
            ++at;
        } else if (text.substr(at).starts_with("//")) {
            at = std::min(text.find('\n', at), text.size());
        } else if (marks.find(text[at]) != std::string_view::npos) {
            words_.push_back({std::string(1, text[at++]), line, false});
        } else if (text[at] == '"') {
            Word word{"", line, true};
            for (++at; at < text.size() && text[at] != '"' && text[at] != '\n'; ++at) {
                if (text[at] != '\\' || at + 1 == text.size()) {
                    word.text += text[at];
                } else if (at + 3 < text.size() && isOctal(text[at + 1]) && isOctal(text[at + 2]) &&
                           isOctal(text[at + 3])) {
                    word.text += static_cast<char>((text[at + 1] - '0') * 64 + (text[at + 2] - '0') * 8 +
                                                   (text[at + 3] - '0'));
                    at += 3;
                } else {
                    // A path of another system has backslashes that are none of these.
                    const char next = text[at + 1];
                    if (next == '"' || next == '\\') ++at;
                    word.text += text[at];
                }
            }
            if (at == text.size() || text[at] != '"') sheet.refuse(line, "the text has no closing quote.");
            ++at;
            words_.push_back(std::move(word));
        } else {
            Word word{"", line, false};
            while (at < text.size() && blanks.find(text[at]) == std::string_view::npos &&
                   marks.find(text[at]) == std::string_view::npos && text[at] != '"' &&
                   !text.substr(at).starts_with("//"))
                word.text += text[at++];
            words_.push_back({inCapitals(word.text), line, false});
        }
    }
}

std::string_view TocWords::peek() const noexcept {
    return atEnd() || words_[next_].isText ? std::string_view() : std::string_view(words_[next_].text);
}

bool TocWords::take(std::string_view word) {
    if (peek() != word) return false;
    ++next_;
    return true;
}

void TocWords::need(std::string_view word) {
    if (!take(word)) refuseNext(std::string(word));
}

std::string TocWords::takeWord() {
    if (atEnd() || isText()) refuseNext("a word");
    return words_[next_++].text;
}

std::string TocWords::takeText(std::string_view what) {
    if (!isText()) refuseNext(std::string(what) + " in quotes");
    return words_[next_++].text;
}

bool TocWords::isNumber() const noexcept {
    const std::string_view word = peek();
    return !word.empty() &&
           std::all_of(word.begin(), word.end(), [](char each) { return each >= '0' && each <= '9'; });
}

uint64_t TocWords::takeNumber(std::string_view what, uint64_t limit) {
    if (!isNumber()) refuseNext(std::string(what));
    uint64_t number = 0;
    const std::string word = words_[next_++].text;
    for (const char digit : word) {
        number = number * 10 + static_cast<uint64_t>(digit - '0');
        if (number > limit) refuse(inQuotes(word) + " is too large for " + std::string(what) + '.');
    }
    return number;
}

bool TocWords::isTime() const noexcept {
    uint64_t blocks = 0;
    return blocksOfTime(peek(), blocks);
}

uint64_t TocWords::takeTime() {
    uint64_t blocks = 0;
    if (!blocksOfTime(peek(), blocks)) refuseNext("a time of the form mm:ss:ff");
    ++next_;
    return blocks;
}

size_t TocWords::line() const noexcept {
    if (words_.empty()) return 1;
    return words_[next_ == 0 ? 0 : next_ - 1].line;
}

void TocWords::refuse(const std::string& sentence, ErrorCode code) const {
    sheet_.refuse(line(), sentence, code);
}

void TocWords::refuseNext(const std::string& wanted) {
    if (atEnd()) refuse("the file ends where " + wanted + " should stand.");
    const std::string word = words_[next_++].text;
    refuse(inQuotes(word) + " stands where " + wanted + " should stand.");
}

} // namespace engine
