// Reads loops.
#include "ParserState.hpp"

namespace host::basic {

using namespace ast;

StatementPtr Parser::forLoop() {
    const Place place = take().place;
    Block* body = nullptr;
    StatementPtr result;
    if (accept("each")) {
        auto made = std::make_unique<EachLoop>(place);
        made->namePlace = now().place;
        made->name = name("a variable's name");
        if (accept("as")) made->type = typeName();
        expect("in", "and the array");
        made->list = header();
        endStatement();
        body = &made->body;
        result = std::move(made);
    } else {
        auto made = std::make_unique<CountLoop>(place);
        made->variable = postfix(false);
        if (accept("as")) made->type = typeName();
        expect("=", "and the loop's first value");
        made->from = expression();
        made->down = at("downto");
        if (!accept("downto")) expect("to", "and the loop's last value");
        made->to = expression();
        if (accept("step")) made->step = expression();
        endStatement();
        body = &made->body;
        result = std::move(made);
    }
    if (!block(*body, {"next"}, place, "The For")) return result;
    take();
    if (now().kind == TokenKind::name && !at("else")) take();
    return result;
}

StatementPtr Parser::whileLoop() {
    auto made = std::make_unique<ConditionLoop>(take().place);
    made->isWhile = true;
    made->head = header();
    endStatement();
    if (!block(made->body, {"end while", "wend"}, made->place, "The While")) return made;
    if (take().is("end")) take();
    return made;
}

StatementPtr Parser::doLoop() {
    auto made = std::make_unique<ConditionLoop>(take().place);
    if (at("while") || at("until")) {
        made->headUntil = take().is("until");
        made->head = header();
    }
    endStatement();
    if (!block(made->body, {"loop"}, made->place, "The Do")) return made;
    take();
    if (at("while") || at("until")) {
        made->footUntil = take().is("until");
        made->foot = expression();
    }
    return made;
}

} // namespace host::basic
