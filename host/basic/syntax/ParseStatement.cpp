// Reads statements.
#include "ParserState.hpp"

namespace host::basic {

using namespace ast;

// The condition of a block: when it is broken, the block is read all the same, so that its end is no second
// error.
ExpressionPtr Parser::header() {
    try {
        return expression();
    } catch (const StatementBroken&) {
        while (!atLineEnd() && !at("then"))
            take();
        return std::make_unique<BooleanLiteral>(now().place, true);
    }
}

StatementPtr Parser::statement() {
    if (at("if")) return branch();
    if (at("select")) return select();
    if (at("for")) return forLoop();
    if (at("while")) return whileLoop();
    if (at("do")) return doLoop();
    if (at("try")) return guard();
    return simpleStatement();
}

StatementPtr Parser::simpleStatement() {
    const Place place = now().place;
    if (at("dim") || at("var")) return declare();
    if (at("static") && ahead().kind == TokenKind::name) return declare();
    if (at("const")) return constant();
    if (at("exit")) return leave();
    if (at("continue")) return proceed();
    if (at("#")) { // directives to other compilers of the dialect are of no concern here
        if (!ahead().is("pragma")) fail(place, "Only #Pragma, which is ignored, may begin with '#'.");
        while (!atLineEnd())
            take();
        return nullptr;
    }
    if (accept("return")) {
        auto made = std::make_unique<ReturnStatement>(place);
        if (!atLineEnd() && !at("else")) made->value = expression();
        return made;
    }
    if (accept("raise")) {
        auto made = std::make_unique<RaiseStatement>(place);
        if (!atLineEnd() && !at("else")) made->exception = expression();
        return made;
    }
    if (accept("redim")) {
        ExpressionPtr target = postfix(true);
        auto* call =
            target->kind == ExpressionKind::call ? static_cast<CallExpression*>(target.get()) : nullptr;
        if (!call || call->arguments.size() != 1)
            fail(place, "Redim needs an array and its new last index: Redim a(10).");
        auto made = std::make_unique<ResizeStatement>(place);
        made->bound = std::move(call->arguments[0]);
        made->array = std::move(call->callee);
        return made;
    }
    if (at("call") && ahead().kind == TokenKind::name) take();
    return assignmentOrCall();
}

StatementPtr Parser::declare() {
    auto made = std::make_unique<DeclareStatement>(now().place);
    made->isStatic = take().is("static");
    do {
        Declarator one;
        one.place = now().place;
        one.name = name("a variable's name");
        if (at("(")) {
            one.array = true;
            one.bounds = argumentList();
            if (one.bounds.size() > 1) fail(one.place, "Arrays have one dimension.");
        }
        made->names.push_back(std::move(one));
    } while (accept(","));
    if (accept("as")) {
        if (accept("new")) {
            made->makesNew = true;
            made->type.place = now().place;
            made->type.name = name("a class after 'New'");
            if (at("(")) made->arguments = argumentList();
            return made;
        }
        made->type = typeName();
    }
    if (accept("=")) made->value = expression();
    return made;
}

StatementPtr Parser::constant() {
    take();
    auto made = std::make_unique<ConstantStatement>(now().place);
    made->name = name("a constant's name");
    if (accept("as")) made->type = typeName();
    expect("=", "and the constant's value");
    made->value = expression();
    return made;
}

StatementPtr Parser::leave() {
    const Place place = take().place;
    if (accept("sub") || accept("function")) {
        auto made = std::make_unique<ReturnStatement>(place);
        made->isExit = true;
        return made;
    }
    auto made = std::make_unique<LeaveStatement>(place);
    if (accept("for"))
        made->loop = LoopKind::forLoop;
    else if (accept("while"))
        made->loop = LoopKind::whileLoop;
    else if (accept("do"))
        made->loop = LoopKind::doLoop;
    else if (!atLineEnd() && !at("else"))
        fail(now().place, "Exit leaves For, While, Do, Sub or Function, not " + shown(now()) + ".");
    return made;
}

StatementPtr Parser::proceed() {
    auto made = std::make_unique<ProceedStatement>(take().place);
    if (accept("for"))
        made->loop = LoopKind::forLoop;
    else if (accept("while"))
        made->loop = LoopKind::whileLoop;
    else if (accept("do"))
        made->loop = LoopKind::doLoop;
    else if (!atLineEnd() && !at("else"))
        fail(now().place, "Continue goes on with For, While or Do, not " + shown(now()) + ".");
    return made;
}

StatementPtr Parser::branch() {
    auto made = std::make_unique<BranchStatement>(take().place);
    const Place opened = made->place;
    made->arms.emplace_back();
    made->arms.back().condition = header();
    if (!accept("then") && !atLineEnd()) {
        diagnostics_.report(now().place, "Expected 'Then' but found " + shown(now()) + ".");
        skipToLineEnd();
    }
    if (!atLineEnd()) return oneLineBranch(std::move(made));
    for (;;) {
        if (!block(made->arms.back().body, {"elseif", "else", "end if"}, opened, "The If")) return made;
        if (accept("elseif")) {
            made->arms.emplace_back();
            made->arms.back().condition = header();
            accept("then");
            endStatement();
            continue;
        }
        if (at("else") && ahead().is("if")) fail(now().place, "Write 'ElseIf' as one word.");
        if (accept("else")) {
            endStatement();
            if (!block(made->otherwise, {"end if"}, opened, "The If")) return made;
        }
        take();
        take();
        return made;
    }
}

// Statements up to the end of the line or an Else, separated by colons.
bool Parser::lineBlock(Block& into) {
    const Deeper deeper(*this);
    for (;;) {
        if (at("else")) return true;
        if (now().kind == TokenKind::newline && now().colon) {
            take();
            continue;
        }
        if (atLineEnd()) return false;
        if (StatementPtr made = statement()) into.push_back(std::move(made));
        if (!at("else")) endStatement();
    }
}

StatementPtr Parser::oneLineBranch(std::unique_ptr<BranchStatement> made) {
    if (lineBlock(made->arms.back().body)) {
        take();
        if (atLineEnd())
            fail(now().place, "Expected a statement after 'Else'; an If on one line has no 'End If'.");
        lineBlock(made->otherwise);
    }
    return made;
}

StatementPtr Parser::select() {
    auto made = std::make_unique<SelectStatement>(take().place);
    expect("case", "after 'Select'");
    made->subject = header();
    endStatement();
    Block before;
    if (!block(before, {"case", "else", "end select"}, made->place, "The Select Case")) return made;
    if (!before.empty()) fail(before.front()->place, "This statement stands before the first Case.");
    for (;;) {
        if (at("end")) {
            take();
            take();
            return made;
        }
        Block* body = &made->otherwise;
        const bool caseWord = accept("case");
        if (!accept("else")) {
            if (!caseWord) return made;
            made->arms.emplace_back();
            body = &made->arms.back().body;
            try {
                do {
                    made->arms.back().tests.push_back(selectTest());
                } while (accept(","));
                endStatement();
            } catch (const StatementBroken&) {
                skipToLineEnd();
            }
        }
        if (!block(*body, {"case", "else", "end select"}, made->place, "The Select Case")) return made;
    }
}

SelectStatement::Test Parser::selectTest() {
    using Test = SelectStatement::Test;
    Test test;
    test.place = now().place;
    if (accept("isa")) {
        test.isA = typeName();
        return test;
    }
    static constexpr std::pair<std::string_view, Operator> kRelations[] = {
        {"=", Operator::equal},        {"<>", Operator::notEqual}, {"<", Operator::less},
        {"<=", Operator::lessOrEqual}, {">", Operator::greater},   {">=", Operator::greaterOrEqual}};
    const bool is = accept("is");
    for (const auto& [symbol, op] : kRelations) {
        if (!accept(symbol)) continue;
        test.kind = Test::Kind::relation;
        test.relation = op;
        test.first = expression();
        return test;
    }
    if (is) fail(now().place, "Expected a comparison after 'Is', such as Is > 3.");
    test.first = expression();
    if (accept("to")) {
        test.kind = Test::Kind::range;
        test.last = expression();
    }
    return test;
}

StatementPtr Parser::guard() {
    auto made = std::make_unique<GuardStatement>(take().place);
    endStatement();
    if (!block(made->body, {"catch", "finally", "end try"}, made->place, "The Try")) return made;
    while (at("catch")) {
        GuardStatement::Handler handler;
        handler.place = take().place;
        if (!atLineEnd() && !at("as")) {
            handler.place = now().place;
            handler.name = name("the exception's name");
        }
        if (accept("as")) handler.type = typeName();
        endStatement();
        made->handlers.push_back(std::move(handler));
        if (!block(made->handlers.back().body, {"catch", "finally", "end try"}, made->place, "The Try"))
            return made;
    }
    if (accept("finally")) {
        endStatement();
        made->hasLast = true;
        if (!block(made->last, {"end try"}, made->place, "The Try")) return made;
    }
    take();
    take();
    return made;
}

StatementPtr Parser::assignmentOrCall() {
    const size_t start = at_;
    const Place place = now().place;
    ExpressionPtr target = postfix(true);

    static constexpr std::pair<std::string_view, Operator> kUpdates[] = {
        {"+=", Operator::add},           {"-=", Operator::subtract}, {"*=", Operator::multiply},
        {"/=", Operator::divide},        {"&=", Operator::join},     {"^=", Operator::power},
        {"\\=", Operator::integerDivide}};
    std::optional<Operator> update;
    for (const auto& [symbol, op] : kUpdates) {
        if (at(symbol)) update = op;
    }
    if (update || at("=")) {
        const Place sign = take().place;
        if (target->kind != ExpressionKind::name && target->kind != ExpressionKind::member &&
            target->kind != ExpressionKind::call)
            fail(sign, "Only a variable, a property or an element of an array can be assigned to.");
        auto made = std::make_unique<AssignStatement>(place);
        made->target = std::move(target);
        made->op = update;
        made->value = expression();
        return made;
    }
    // "Print (a).b" prints a.b; "Print(a)" is a call however it is spaced.
    const bool spaced = tokens_[start].kind == TokenKind::name && tokens_[start + 1].is("(") &&
                        tokens_[start + 1].spaceBefore;
    const bool command =
        spaced && !(target->kind == ExpressionKind::call &&
                    static_cast<CallExpression&>(*target).callee->kind == ExpressionKind::name);
    if (command && atLineEnd()) {
        at_ = start;
        target = primary();
        std::vector<ExpressionPtr> arguments = commandArguments();
        target = checked(std::make_unique<CallExpression>(place, std::move(target), std::move(arguments)));
    }
    if (!atLineEnd() && !at("else")) { // a call whose arguments stand without parentheses
        at_ = start;
        target = commandTarget();
        if (target->kind != ExpressionKind::name && target->kind != ExpressionKind::member)
            fail(now().place, "Expected the end of the statement but found " + shown(now()) + ".");
        std::vector<ExpressionPtr> arguments = commandArguments();
        target = checked(std::make_unique<CallExpression>(place, std::move(target), std::move(arguments)));
    }
    if (target->kind != ExpressionKind::name && target->kind != ExpressionKind::member &&
        target->kind != ExpressionKind::call && target->kind != ExpressionKind::make)
        fail(place, "This value is not used; a statement has to do something.");
    auto made = std::make_unique<CallStatement>(place);
    made->call = std::move(target);
    return made;
}

// The callee of a call without parentheses: "Print (a) + b" calls Print with (a) + b, "f(1).Go x" calls
// f(1).Go.
ExpressionPtr Parser::commandTarget() {
    ExpressionPtr made = primary();
    for (;;) {
        if (at(".")) {
            take();
            const Place place = now().place;
            std::string member = memberName();
            made = checked(std::make_unique<MemberExpression>(place, std::move(made), std::move(member)));
            continue;
        }
        if (!at("(") || (made->kind == ExpressionKind::name && now().spaceBefore)) return made;
        const size_t start = at_;
        const Place place = made->place;
        std::vector<ExpressionPtr> arguments = argumentList();
        if (!at(".") && !at("(")) {
            at_ = start;
            return made;
        }
        made = checked(std::make_unique<CallExpression>(place, std::move(made), std::move(arguments)));
    }
}

} // namespace host::basic
