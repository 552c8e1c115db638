// The tokens of the dialect: names, numbers, texts, symbols, line ends, comments and continuations.
#include "Lexer.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace host::basic {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}
bool isDigit(char c) { return c >= '0' && c <= '9'; }

int digitValue(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return 99;
}

// The whole language's list: sorted, so that it can be searched.
constexpr std::array kReserved = {
    "and",  "as",   "byref", "byval",  "case",   "catch",  "class", "const",   "continue", "dim",
    "do",   "each", "else",  "elseif", "end",    "exit",   "false", "finally", "for",      "function",
    "if",   "in",   "is",    "isa",    "loop",   "me",     "mod",   "new",     "next",     "nil",
    "not",  "or",   "raise", "redim",  "return", "select", "self",  "sub",     "super",    "then",
    "true", "try",  "until", "var",    "wend",   "while",  "xor"};

class Lexer {
  public:
    Lexer(const Source& source, Diagnostics& diagnostics) : text_(source.text()), diagnostics_(diagnostics) {}

    std::vector<Token> run() {
        while (at_ < text_.size())
            step();
        push(TokenKind::newline, text_.size());
        push(TokenKind::end, text_.size());
        return std::move(tokens_);
    }

  private:
    char peek(size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }

    Token& push(TokenKind kind, size_t start) {
        Token token;
        token.kind = kind;
        token.place = {static_cast<uint32_t>(start)};
        token.spaceBefore = start == 0 || text_[start - 1] == ' ' || text_[start - 1] == '\t';
        token.spelling = text_.substr(start, at_ - start);
        tokens_.push_back(std::move(token));
        return tokens_.back();
    }

    void step() {
        const char c = peek();
        const size_t start = at_;
        if (c == ' ' || c == '\t' || c == '\f' || c == '\v') {
            ++at_;
        } else if (text_.substr(at_, 2) == "\xC2\xA0") {
            at_ += 2; // a no-break space, as word processors make it
        } else if (c == '\n' || c == '\r') {
            endLine();
        } else if (c == ':') {
            ++at_;
            push(TokenKind::newline, start).colon = true;
        } else if (c == '\'' || (c == '/' && peek(1) == '/')) {
            skipComment();
        } else if (c == '_' && continuesLine()) {
            skipContinuation();
        } else if (isLetter(c)) {
            readName();
        } else if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
            readNumber();
        } else if (c == '"') {
            readText();
        } else if (c == '&' && startsRadixLiteral()) {
            readRadix();
        } else {
            readSymbol();
        }
    }

    void endLine() {
        const size_t start = at_;
        at_ += (peek() == '\r' && peek(1) == '\n') ? 2 : 1;
        push(TokenKind::newline, start);
    }

    void skipComment() {
        while (at_ < text_.size() && peek() != '\n' && peek() != '\r')
            ++at_;
    }

    // An underscore continues the line when nothing but blanks or a comment follows it.
    bool continuesLine() const {
        size_t i = at_ + 1;
        while (i < text_.size() && (text_[i] == ' ' || text_[i] == '\t'))
            ++i;
        return i >= text_.size() || text_[i] == '\n' || text_[i] == '\r' || text_[i] == '\'' ||
               text_.substr(i, 2) == "//";
    }

    void skipContinuation() {
        skipComment();
        if (peek() == '\r' && peek(1) == '\n') ++at_;
        if (at_ < text_.size()) ++at_;
    }

    void readName() {
        const size_t start = at_;
        while (isLetter(peek()) || isDigit(peek()))
            ++at_;
        const std::string_view spelling = text_.substr(start, at_ - start);
        std::string lower = lowerAscii(spelling);
        if (lower == "rem" && startsStatement()) {
            skipComment();
            return;
        }
        push(TokenKind::name, start).lower = std::move(lower);
    }

    bool startsStatement() const { return tokens_.empty() || tokens_.back().kind == TokenKind::newline; }

    void readNumber() {
        const size_t start = at_;
        bool real = false;
        while (isDigit(peek()))
            ++at_;
        if (peek() == '.' && isDigit(peek(1))) {
            real = true;
            ++at_;
            while (isDigit(peek()))
                ++at_;
        }
        if (peek() == 'e' || peek() == 'E') {
            const size_t sign = (peek(1) == '+' || peek(1) == '-') ? 1 : 0;
            if (isDigit(peek(1 + sign))) {
                real = true;
                at_ += 1 + sign;
                while (isDigit(peek()))
                    ++at_;
            }
        }
        const std::string_view spelling = text_.substr(start, at_ - start);
        if (isLetter(peek())) {
            while (isLetter(peek()) || isDigit(peek()))
                ++at_;
            diagnostics_.report({static_cast<uint32_t>(start)},
                                "'" + std::string(text_.substr(start, at_ - start)) +
                                    "' is neither a number nor a name.");
        }
        if (!real) {
            uint64_t value = 0;
            const auto result = std::from_chars(spelling.data(), spelling.data() + spelling.size(), value);
            if (result.ec == std::errc()) {
                push(TokenKind::integer, start).integer = value;
                return;
            }
        }
        double value = 0;
        const auto result = std::from_chars(spelling.data(), spelling.data() + spelling.size(), value);
        if (result.ec != std::errc())
            diagnostics_.report({static_cast<uint32_t>(start)},
                                "The number " + std::string(spelling.substr(0, 40)) + " is out of range.");
        push(TokenKind::real, start).real = value;
    }

    // &h, &o and &b begin a literal, except where an operand stands before: there & joins texts.
    bool startsRadixLiteral() const {
        const int base = radixOf(peek(1));
        if (base == 0 || digitValue(peek(2)) >= base) return false;
        if (tokens_.empty()) return true;
        const Token& last = tokens_.back();
        const bool operand = last.kind == TokenKind::integer || last.kind == TokenKind::real ||
                             last.kind == TokenKind::text || last.is(")") ||
                             (last.kind == TokenKind::name && !isReserved(last.lower));
        if (!operand) return true;
        const bool command = last.kind == TokenKind::name &&
                             (tokens_.size() < 2 || tokens_[tokens_.size() - 2].kind == TokenKind::newline);
        return command;
    }

    static int radixOf(char letter) {
        if (letter == 'h' || letter == 'H') return 16;
        if (letter == 'o' || letter == 'O') return 8;
        if (letter == 'b' || letter == 'B') return 2;
        return 0;
    }

    void readRadix() {
        const size_t start = at_;
        const auto base = static_cast<uint64_t>(radixOf(peek(1)));
        at_ += 2;
        uint64_t value = 0;
        bool tooLarge = false;
        while (isDigit(peek()) || isLetter(peek())) {
            const auto digit = static_cast<uint64_t>(digitValue(peek()));
            if (digit >= base) break;
            if (value > (UINT64_MAX - digit) / base) tooLarge = true;
            value = value * base + digit;
            ++at_;
        }
        if (isDigit(peek()) || isLetter(peek())) {
            while (isDigit(peek()) || isLetter(peek()))
                ++at_;
            diagnostics_.report({static_cast<uint32_t>(start)},
                                "'" + std::string(text_.substr(start, std::min<size_t>(at_ - start, 40))) +
                                    "' has a digit that its base does not have.");
        }
        if (tooLarge)
            diagnostics_.report({static_cast<uint32_t>(start)}, "This number needs more than 64 bits.");
        push(TokenKind::integer, start).integer = value;
    }

    void readText() {
        const size_t start = at_++;
        std::string value;
        for (;;) {
            if (at_ >= text_.size() || peek() == '\n' || peek() == '\r') {
                diagnostics_.report({static_cast<uint32_t>(start)},
                                    "The text that begins here has no closing quote on its line.");
                break;
            }
            if (peek() == '"') {
                ++at_;
                if (peek() != '"') break;
            }
            value.push_back(text_[at_++]);
        }
        push(TokenKind::text, start).lower = std::move(value);
    }

    void readSymbol() {
        const size_t start = at_;
        static constexpr std::array kPairs = {"<>", "<=", ">=", "+=", "-=", "*=", "/=", "&=", "\\=", "^="};
        const std::string_view two = text_.substr(at_, 2);
        if (std::find(kPairs.begin(), kPairs.end(), two) != kPairs.end()) {
            at_ += 2;
            push(TokenKind::symbol, start).lower = two;
            return;
        }
        static constexpr std::string_view kSingles = "()+-*/\\^&=<>,.#";
        ++at_;
        if (kSingles.find(text_[start]) == std::string_view::npos) {
            const std::string shown = static_cast<unsigned char>(text_[start]) < 0x20
                                          ? "control character"
                                          : std::string(1, text_[start]);
            diagnostics_.report({static_cast<uint32_t>(start)}, "'" + shown + "' means nothing here.");
            return;
        }
        push(TokenKind::symbol, start).lower = text_.substr(start, 1);
    }

    std::string_view text_;
    Diagnostics& diagnostics_;
    size_t at_ = 0;
    std::vector<Token> tokens_;
};

} // namespace

std::vector<Token> tokenize(const Source& source, Diagnostics& diagnostics) {
    return Lexer(source, diagnostics).run();
}

std::string lowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

bool isReserved(std::string_view lowerName) {
    return std::find(kReserved.begin(), kReserved.end(), lowerName) != kReserved.end();
}

} // namespace host::basic
