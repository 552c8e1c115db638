// The parser's frame: tokens, errors and recovery, blocks.
#include "ParserState.hpp"

#include <utility>

namespace host::basic {

using namespace ast;

ast::Program parse(const Source& source, Diagnostics& diagnostics) {
    return Parser(source, diagnostics).program();
}

Parser::Parser(const Source& source, Diagnostics& diagnostics)
    : source_(source), diagnostics_(diagnostics), tokens_(tokenize(source, diagnostics)) {}

Parser::Deeper::Deeper(Parser& p) : parser(p) {
    // The level is given back here: the destructor does not run for an object whose constructor throws.
    if (++parser.depth_ > kDeepest) {
        --parser.depth_;
        parser.fail(parser.now().place,
                    "This is nested too deeply (more than " + std::to_string(kDeepest) + " levels).");
    }
}

bool Parser::accept(std::string_view word) {
    if (!at(word)) return false;
    take();
    return true;
}

void Parser::expect(std::string_view word, const char* where) {
    if (accept(word)) return;
    fail(now().place, "Expected '" + std::string(word) + "' " + where + " but found " + shown(now()) + ".");
}

void Parser::endStatement() {
    if (atLineEnd()) return;
    fail(now().place, "Expected the end of the statement but found " + shown(now()) + ".");
}

// After a block without its end the line that stands here belongs to something else.
void Parser::endOrUnclosed() {
    if (!std::exchange(unclosed_, false)) endStatement();
}

void Parser::skipLineEnds() {
    while (now().kind == TokenKind::newline)
        take();
}

void Parser::skipToLineEnd() {
    while (now().kind != TokenKind::end && !(now().kind == TokenKind::newline && !now().colon))
        take();
}

std::string Parser::shown(const Token& token) const {
    switch (token.kind) {
    case TokenKind::end:
        return "the end of the program";
    case TokenKind::newline:
        return token.colon ? "':'" : "the end of the line";
    case TokenKind::text:
        return "a text";
    case TokenKind::integer:
    case TokenKind::real:
        return "the number " + std::string(token.spelling.substr(0, 40));
    default:
        return "'" + std::string(token.spelling.substr(0, 60)) + "'";
    }
}

void Parser::fail(Place place, std::string message) {
    // Where the text itself was broken, what follows from it on the same line is not told.
    const uint32_t line = source_.locate(place).line;
    bool told = false;
    for (const Diagnostic& known : diagnostics_.list())
        told = told || source_.locate(known.place).line == line;
    if (!told) diagnostics_.report(place, std::move(message));
    throw StatementBroken{};
}

std::string Parser::name(const char* what) {
    const Token& token = now();
    if (token.kind != TokenKind::name)
        fail(token.place, std::string("Expected ") + what + " but found " + shown(token) + ".");
    if (isReserved(token.lower))
        fail(token.place, std::string("Expected ") + what + ", but '" + std::string(token.spelling) +
                              "' is a word of the language.");
    return std::string(take().spelling);
}

// After a dot every word is a name: a member may be called Next or Is.
std::string Parser::memberName() {
    if (now().kind != TokenKind::name)
        fail(now().place, "Expected a member's name after '.' but found " + shown(now()) + ".");
    return std::string(take().spelling);
}

namespace {

// Words that close or divide a block, and so never begin a statement.
constexpr std::string_view kClosers[] = {
    "else",       "elseif",          "case",           "next",      "wend",
    "loop",       "catch",           "finally",        "end if",    "end select",
    "end try",    "end sub",         "end function",   "end while", "end class",
    "end module", "end constructor", "end destructor", "end event", "end property",
    "end get",    "end set"};

// "end if" as it is usually written: "End If".
std::string titled(std::string_view words) {
    std::string made(words);
    for (size_t i = 0; i < made.size(); ++i) {
        if ((i == 0 || made[i - 1] == ' ') && made[i] >= 'a' && made[i] <= 'z')
            made[i] = static_cast<char>(made[i] - 32);
    }
    return made;
}

bool matches(const Token& now, const Token& next, std::string_view word) {
    const size_t space = word.find(' ');
    if (space == std::string_view::npos) return now.is(word);
    return now.is(word.substr(0, space)) && next.is(word.substr(space + 1));
}

} // namespace

bool Parser::atStop(std::initializer_list<std::string_view> stops) const {
    for (std::string_view stop : stops) {
        if (matches(now(), ahead(), stop)) return true;
    }
    return false;
}

bool Parser::block(Block& into, std::initializer_list<std::string_view> stops, Place opened,
                   const char* what) {
    const Deeper deeper(*this);
    const auto missing = [&] {
        diagnostics_.report(opened, std::string(what) + " that begins here is not closed; its end, '" +
                                        titled(*(stops.end() - 1)) + "', is missing.");
        unclosed_ = true;
        return false;
    };
    open_.push_back(stops);
    struct Close {
        Parser& parser;
        ~Close() { parser.open_.pop_back(); }
    } close{*this};

    for (;;) {
        skipLineEnds();
        if (now().kind == TokenKind::end || diagnostics_.full()) return missing();
        if (atStop(stops)) return true;
        if (startsDeclaration()) return missing();
        for (std::string_view closer : kClosers) {
            if (!matches(now(), ahead(), closer)) continue;
            // It may be that of a block further out: then this one's own is missing.
            for (const auto& outer : open_) {
                if (atStop(outer)) return missing();
            }
            break;
        }
        statementInto(into);
    }
}

void Parser::statementInto(Block& block) {
    try {
        for (std::string_view closer : kClosers) {
            if (matches(now(), ahead(), closer)) {
                const Place place = now().place;
                skipToLineEnd();
                fail(place, "'" + titled(closer) + "' stands here without the block that it belongs to.");
            }
        }
        if (StatementPtr made = statement()) block.push_back(std::move(made));
        endOrUnclosed();
    } catch (const StatementBroken&) {
        skipToLineEnd();
    }
}

Program Parser::program() {
    Program program;
    for (;;) {
        skipLineEnds();
        if (now().kind == TokenKind::end || diagnostics_.full()) return program;
        if (startsDeclaration()) {
            try {
                declaration(program);
                endOrUnclosed();
            } catch (const StatementBroken&) {
                skipToLineEnd();
            }
        } else {
            statementInto(program.statements);
        }
    }
}

} // namespace host::basic
