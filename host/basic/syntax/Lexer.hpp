// Cuts a program's text into tokens.
#pragma once

#include "Source.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace host::basic {

enum class TokenKind : uint8_t {
    end,     // of the program
    newline, // of a line, or a colon between statements
    name,    // an identifier or a word of the language
    integer,
    real,
    text,
    symbol,
};

struct Token {
    TokenKind kind = TokenKind::end;
    bool spaceBefore = false;
    bool colon = false; // a newline token that is a colon
    Place place;
    std::string_view spelling; // as written
    std::string lower;         // names in lower case; symbols as written; the decoded value of a text
    uint64_t integer = 0;
    double real = 0;

    bool is(std::string_view word) const {
        return (kind == TokenKind::name || kind == TokenKind::symbol) && lower == word;
    }
};

/// Tokens of the whole program, the last one of kind `end`. Broken tokens are reported and left out.
std::vector<Token> tokenize(const Source& source, Diagnostics& diagnostics);

/// ASCII letters in lower case; everything else as it is.
std::string lowerAscii(std::string_view text);

/// True for the words that can't name a variable, a member or a class.
bool isReserved(std::string_view lowerName);

} // namespace host::basic
