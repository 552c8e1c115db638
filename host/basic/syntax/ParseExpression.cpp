// Reads expressions: operators by precedence, calls, members, literals.
#include "ParserState.hpp"

namespace host::basic {

using namespace ast;

namespace {

struct Level {
    std::string_view symbol;
    Operator op;
    int level;
};

// From the loosest to the tightest. Not stands between And and the comparisons, and - (sign) and ^ above all.
constexpr Level kLevels[] = {
    {"or", Operator::logicalOr, 0},   {"xor", Operator::logicalXor, 0}, {"and", Operator::logicalAnd, 1},
    {"=", Operator::equal, 2},        {"<>", Operator::notEqual, 2},    {"<", Operator::less, 2},
    {"<=", Operator::lessOrEqual, 2}, {">", Operator::greater, 2},      {">=", Operator::greaterOrEqual, 2},
    {"is", Operator::is, 2},          {"&", Operator::join, 3},         {"+", Operator::add, 4},
    {"-", Operator::subtract, 4},     {"mod", Operator::modulo, 5},     {"\\", Operator::integerDivide, 6},
    {"*", Operator::multiply, 7},     {"/", Operator::divide, 7},
};
constexpr int kComparison = 2;
constexpr int kTightest = 8;

const Level* operatorAt(const Token& token, int level) {
    if (token.kind != TokenKind::symbol && token.kind != TokenKind::name) return nullptr;
    for (const Level& one : kLevels) {
        if (one.level == level && token.lower == one.symbol) return &one;
    }
    return nullptr;
}

} // namespace

ExpressionPtr Parser::expression() {
    const Deeper deeper(*this);
    return binary(0);
}

ExpressionPtr Parser::binary(int level) {
    if (level == kTightest) return unary();
    if (level == kComparison && at("not")) {
        const Deeper deeper(*this);
        const Place place = take().place;
        return checked(std::make_unique<UnaryExpression>(place, Operator::logicalNot, binary(kComparison)));
    }
    ExpressionPtr left = binary(level + 1);
    for (;;) {
        if (level == kComparison && at("isa")) {
            const Place place = take().place;
            left = checked(std::make_unique<IsAExpression>(place, std::move(left), typeName()));
            continue;
        }
        const Level* found = operatorAt(now(), level);
        if (!found) return left;
        const Place place = take().place;
        if (found->op == Operator::is && at("not")) { // a Is Not b
            take();
            auto same = checked(
                std::make_unique<BinaryExpression>(place, Operator::is, std::move(left), binary(level + 1)));
            left = checked(std::make_unique<UnaryExpression>(place, Operator::logicalNot, std::move(same)));
            continue;
        }
        ExpressionPtr right = at("not") ? binary(kComparison) : binary(level + 1);
        left =
            checked(std::make_unique<BinaryExpression>(place, found->op, std::move(left), std::move(right)));
    }
}

ExpressionPtr Parser::unary() {
    if (at("-") || at("+")) {
        const Deeper deeper(*this);
        const Token& sign = take();
        const Operator op = sign.is("-") ? Operator::negate : Operator::plus;
        const Place place = sign.place;
        return checked(std::make_unique<UnaryExpression>(place, op, unary()));
    }
    return powerOf();
}

ExpressionPtr Parser::powerOf() {
    ExpressionPtr base = postfix(true);
    while (at("^")) {
        const Place place = take().place;
        ExpressionPtr exponent;
        if (at("-") || at("+")) {
            const Deeper deeper(*this);
            const Token& sign = take();
            const Place signPlace = sign.place;
            const Operator op = sign.is("-") ? Operator::negate : Operator::plus;
            exponent = checked(std::make_unique<UnaryExpression>(signPlace, op, postfix(true)));
        } else {
            exponent = postfix(true);
        }
        base = checked(
            std::make_unique<BinaryExpression>(place, Operator::power, std::move(base), std::move(exponent)));
    }
    return base;
}

ExpressionPtr Parser::postfix(bool withCalls) {
    ExpressionPtr made = primary();
    for (;;) {
        if (at(".")) {
            take();
            const Place place = now().place;
            std::string member = memberName();
            made = checked(std::make_unique<MemberExpression>(place, std::move(made), std::move(member)));
        } else if (at("(") && (withCalls || !now().spaceBefore)) {
            const Place place = made->place;
            std::vector<ExpressionPtr> arguments = argumentList();
            made = checked(std::make_unique<CallExpression>(place, std::move(made), std::move(arguments)));
        } else {
            break;
        }
    }
    if (made->kind == ExpressionKind::super) fail(made->place, "'Super' needs a member: write Super.Name.");
    return made;
}

std::vector<ExpressionPtr> Parser::argumentList() {
    expect("(", "to begin the arguments");
    std::vector<ExpressionPtr> arguments;
    if (accept(")")) return arguments;
    for (;;) {
        arguments.push_back(expression());
        if (accept(")")) return arguments;
        if (!accept(",")) fail(now().place, "Expected ',' or ')' but found " + shown(now()) + ".");
    }
}

std::vector<ExpressionPtr> Parser::commandArguments() {
    std::vector<ExpressionPtr> arguments;
    if (atLineEnd() || at("else")) return arguments;
    do {
        arguments.push_back(expression());
    } while (accept(","));
    return arguments;
}

ExpressionPtr Parser::primary() {
    const Token& token = now();
    const Place place = token.place;
    switch (token.kind) {
    case TokenKind::integer:
        take();
        return std::make_unique<IntegerLiteral>(place, token.integer);
    case TokenKind::real:
        take();
        return std::make_unique<RealLiteral>(place, token.real);
    case TokenKind::text:
        take();
        return std::make_unique<TextLiteral>(place, token.lower);
    case TokenKind::symbol:
        if (accept("(")) {
            ExpressionPtr inner = expression();
            if (!accept(")")) fail(now().place, "Expected ')' but found " + shown(now()) + ".");
            return inner;
        }
        break;
    case TokenKind::name:
        if (accept("true")) return std::make_unique<BooleanLiteral>(place, true);
        if (accept("false")) return std::make_unique<BooleanLiteral>(place, false);
        if (accept("nil")) return std::make_unique<NilLiteral>(place);
        if (accept("me") || accept("self")) return std::make_unique<SelfExpression>(place);
        if (accept("super")) {
            if (!at(".")) fail(place, "'Super' needs a member: write Super.Name.");
            return std::make_unique<SuperExpression>(place);
        }
        if (at("new")) return makeNew();
        if (at("if") && ahead().is("(")) return choose();
        if (!isReserved(token.lower))
            return std::make_unique<NameExpression>(place, std::string(take().spelling));
        break;
    default:
        break;
    }
    fail(place, "Expected a value but found " + shown(token) + ".");
}

ExpressionPtr Parser::choose() {
    const Place place = take().place;
    std::vector<ExpressionPtr> parts = argumentList();
    if (parts.size() != 3) fail(place, "If(condition, value, value) takes three arguments.");
    return checked(std::make_unique<ChooseExpression>(place, std::move(parts[0]), std::move(parts[1]),
                                                      std::move(parts[2])));
}

ExpressionPtr Parser::makeNew() {
    const Place place = take().place;
    TypeName type;
    type.place = now().place;
    type.name = name("a class after 'New'");
    std::vector<ExpressionPtr> arguments;
    if (at("(")) arguments = argumentList();
    return checked(std::make_unique<NewExpression>(place, std::move(type), std::move(arguments)));
}

TypeName Parser::typeName() {
    TypeName type;
    type.place = now().place;
    type.name = name("a type");
    if (at("(") && ahead().is(")")) {
        take();
        take();
        type.array = true;
    }
    return type;
}

} // namespace host::basic
