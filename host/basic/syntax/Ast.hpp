// The tree that a program's text is read into: names are not resolved here, types are only spelled.
#pragma once

#include "Source.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host::basic::ast {

/// A type as written. `array` counts for "T()".
struct TypeName {
    std::string name; // as written; empty when no type was given
    bool array = false;
    Place place;
    bool given() const { return !name.empty(); }
};

// ---- expressions ------------------------------------------------------------------------------------------

enum class ExpressionKind : uint8_t {
    integer,
    real,
    text,
    boolean,
    nil,
    name,
    member,
    call,
    make,
    unary,
    binary,
    isA,
    self,
    super,
    choose
};

struct Expression {
    ExpressionKind kind;
    Place place;
    uint32_t height = 1; // of the tree, so that recursion over it stays bounded
    explicit Expression(ExpressionKind k, Place p) : kind(k), place(p) {}
    virtual ~Expression() = default;
};
using ExpressionPtr = std::unique_ptr<Expression>;

struct IntegerLiteral final : Expression {
    uint64_t value;
    IntegerLiteral(Place p, uint64_t v) : Expression(ExpressionKind::integer, p), value(v) {}
};
struct RealLiteral final : Expression {
    double value;
    RealLiteral(Place p, double v) : Expression(ExpressionKind::real, p), value(v) {}
};
struct TextLiteral final : Expression {
    std::string value;
    TextLiteral(Place p, std::string v) : Expression(ExpressionKind::text, p), value(std::move(v)) {}
};
struct BooleanLiteral final : Expression {
    bool value;
    BooleanLiteral(Place p, bool v) : Expression(ExpressionKind::boolean, p), value(v) {}
};
struct NilLiteral final : Expression {
    explicit NilLiteral(Place p) : Expression(ExpressionKind::nil, p) {}
};
struct NameExpression final : Expression {
    std::string name;
    NameExpression(Place p, std::string n) : Expression(ExpressionKind::name, p), name(std::move(n)) {}
};
struct MemberExpression final : Expression {
    ExpressionPtr object;
    std::string name; // `place` is that of the name
    MemberExpression(Place p, ExpressionPtr o, std::string n)
        : Expression(ExpressionKind::member, p), object(std::move(o)), name(std::move(n)) {
        height = object->height + 1;
    }
};
/// callee(arguments): a call, an element of an array, or a conversion; which, the names decide.
struct CallExpression final : Expression {
    ExpressionPtr callee;
    std::vector<ExpressionPtr> arguments;
    CallExpression(Place p, ExpressionPtr c, std::vector<ExpressionPtr> a)
        : Expression(ExpressionKind::call, p), callee(std::move(c)), arguments(std::move(a)) {
        height = callee->height;
        for (const auto& argument : arguments)
            height = argument->height > height ? argument->height : height;
        ++height;
    }
};
struct NewExpression final : Expression {
    TypeName type;
    std::vector<ExpressionPtr> arguments;
    NewExpression(Place p, TypeName t, std::vector<ExpressionPtr> a)
        : Expression(ExpressionKind::make, p), type(std::move(t)), arguments(std::move(a)) {
        for (const auto& argument : arguments)
            height = argument->height >= height ? argument->height + 1 : height;
    }
};
enum class Operator : uint8_t {
    add,
    subtract,
    multiply,
    divide,
    integerDivide,
    modulo,
    power,
    join,
    equal,
    notEqual,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    is,
    logicalAnd,
    logicalOr,
    logicalXor,
    logicalNot,
    negate,
    plus
};
struct UnaryExpression final : Expression {
    Operator op;
    ExpressionPtr operand;
    UnaryExpression(Place p, Operator o, ExpressionPtr e)
        : Expression(ExpressionKind::unary, p), op(o), operand(std::move(e)) {
        height = operand->height + 1;
    }
};
struct BinaryExpression final : Expression {
    Operator op;
    ExpressionPtr left, right;
    BinaryExpression(Place p, Operator o, ExpressionPtr l, ExpressionPtr r)
        : Expression(ExpressionKind::binary, p), op(o), left(std::move(l)), right(std::move(r)) {
        height = (left->height > right->height ? left->height : right->height) + 1;
    }
};
struct IsAExpression final : Expression {
    ExpressionPtr operand;
    TypeName type;
    IsAExpression(Place p, ExpressionPtr e, TypeName t)
        : Expression(ExpressionKind::isA, p), operand(std::move(e)), type(std::move(t)) {
        height = operand->height + 1;
    }
};
struct SelfExpression final : Expression {
    explicit SelfExpression(Place p) : Expression(ExpressionKind::self, p) {}
};
/// Super, always the object of a member.
struct SuperExpression final : Expression {
    explicit SuperExpression(Place p) : Expression(ExpressionKind::super, p) {}
};
/// If(condition, a, b).
struct ChooseExpression final : Expression {
    ExpressionPtr condition, yes, no;
    ChooseExpression(Place p, ExpressionPtr c, ExpressionPtr y, ExpressionPtr n)
        : Expression(ExpressionKind::choose, p), condition(std::move(c)), yes(std::move(y)),
          no(std::move(n)) {
        for (const auto* part : {&condition, &yes, &no})
            height = (*part)->height >= height ? (*part)->height + 1 : height;
    }
};

// ---- statements -------------------------------------------------------------------------------------------

enum class StatementKind : uint8_t {
    declare,
    constant,
    assign,
    call,
    branch,
    select,
    countLoop,
    eachLoop,
    conditionLoop,
    leave,
    proceed,
    giveBack,
    guard,
    raise,
    resize
};

struct Statement {
    StatementKind kind;
    Place place;
    explicit Statement(StatementKind k, Place p) : kind(k), place(p) {}
    virtual ~Statement() = default;
};
using StatementPtr = std::unique_ptr<Statement>;
using Block = std::vector<StatementPtr>;

/// One name of a Dim or Var.
struct Declarator {
    std::string name;
    Place place;
    std::vector<ExpressionPtr> bounds; // "a(10)": one; "a()": none
    bool array = false;
};
/// Dim a, b As T = value.
struct DeclareStatement final : Statement {
    std::vector<Declarator> names;
    TypeName type;
    bool makesNew = false; // As New T(arguments)
    std::vector<ExpressionPtr> arguments;
    ExpressionPtr value;
    bool isStatic = false;
    explicit DeclareStatement(Place p) : Statement(StatementKind::declare, p) {}
};
struct ConstantStatement final : Statement {
    std::string name;
    TypeName type;
    ExpressionPtr value;
    explicit ConstantStatement(Place p) : Statement(StatementKind::constant, p) {}
};
struct AssignStatement final : Statement {
    ExpressionPtr target;
    ExpressionPtr value;
    std::optional<Operator> op; // a += b
    explicit AssignStatement(Place p) : Statement(StatementKind::assign, p) {}
};
struct CallStatement final : Statement {
    ExpressionPtr call;
    explicit CallStatement(Place p) : Statement(StatementKind::call, p) {}
};
struct BranchStatement final : Statement {
    struct Arm {
        ExpressionPtr condition;
        Block body;
    };
    std::vector<Arm> arms;
    Block otherwise;
    explicit BranchStatement(Place p) : Statement(StatementKind::branch, p) {}
};
struct SelectStatement final : Statement {
    struct Test {
        enum class Kind : uint8_t { value, range, relation } kind = Kind::value;
        Operator relation = Operator::equal;
        ExpressionPtr first, last;
        TypeName isA; // Case IsA T
        Place place;
    };
    struct Arm {
        std::vector<Test> tests;
        Block body;
    };
    ExpressionPtr subject;
    std::vector<Arm> arms;
    Block otherwise;
    explicit SelectStatement(Place p) : Statement(StatementKind::select, p) {}
};
struct CountLoop final : Statement {
    ExpressionPtr variable; // a name or member
    TypeName type;          // For i As T: a variable of the loop's own
    ExpressionPtr from, to, step;
    bool down = false;
    Block body;
    explicit CountLoop(Place p) : Statement(StatementKind::countLoop, p) {}
};
struct EachLoop final : Statement {
    std::string name;
    Place namePlace;
    TypeName type;
    ExpressionPtr list;
    Block body;
    explicit EachLoop(Place p) : Statement(StatementKind::eachLoop, p) {}
};
/// While, and Do with a condition at its head, its foot, both or neither.
struct ConditionLoop final : Statement {
    bool isWhile = false;
    ExpressionPtr head, foot;
    bool headUntil = false, footUntil = false;
    Block body;
    explicit ConditionLoop(Place p) : Statement(StatementKind::conditionLoop, p) {}
};
enum class LoopKind : uint8_t { any, forLoop, whileLoop, doLoop };
/// Exit For, Exit While, Exit Do, Exit.
struct LeaveStatement final : Statement {
    LoopKind loop = LoopKind::any;
    explicit LeaveStatement(Place p) : Statement(StatementKind::leave, p) {}
};
struct ProceedStatement final : Statement {
    LoopKind loop = LoopKind::any;
    explicit ProceedStatement(Place p) : Statement(StatementKind::proceed, p) {}
};
/// Return, Exit Sub and Exit Function.
struct ReturnStatement final : Statement {
    ExpressionPtr value;
    bool isExit = false;
    explicit ReturnStatement(Place p) : Statement(StatementKind::giveBack, p) {}
};
struct GuardStatement final : Statement {
    struct Handler {
        std::string name; // empty: not named
        TypeName type;
        Place place;
        Block body;
    };
    Block body;
    std::vector<Handler> handlers;
    Block last; // Finally
    bool hasLast = false;
    explicit GuardStatement(Place p) : Statement(StatementKind::guard, p) {}
};
struct RaiseStatement final : Statement {
    ExpressionPtr exception; // null: the one being handled, again
    explicit RaiseStatement(Place p) : Statement(StatementKind::raise, p) {}
};
struct ResizeStatement final : Statement {
    ExpressionPtr array;
    ExpressionPtr bound;
    explicit ResizeStatement(Place p) : Statement(StatementKind::resize, p) {}
};

// ---- declarations -----------------------------------------------------------------------------------------

struct Parameter {
    std::string name;
    Place place;
    TypeName type;
    ExpressionPtr defaultValue;
    bool byRef = false;
    bool optional = false;
    bool assigns = false;
};

enum class Access : uint8_t { everyone, family, classOnly };

/// Sub, Function, a method, a constructor, a destructor, or the implementation of an event.
struct Routine {
    enum class Kind : uint8_t { method, constructor, destructor, event } kind = Kind::method;
    std::string name;
    Place place;
    std::vector<Parameter> parameters;
    TypeName result; // not given: a Sub
    Block body;
    bool shared = false;
    Access access = Access::everyone;
};

struct PropertyDeclaration {
    std::string name;
    Place place;
    TypeName type;
    std::vector<ExpressionPtr> bounds;
    bool array = false;
    bool makesNew = false;
    std::vector<ExpressionPtr> arguments;
    ExpressionPtr value;
    bool shared = false;
    Access access = Access::everyone;
    std::unique_ptr<Routine> getter, setter; // a computed property has at least one of them
};

struct ClassDeclaration {
    std::string name;
    Place place;
    TypeName superclass;
    std::vector<std::unique_ptr<ConstantStatement>> constants;
    std::vector<PropertyDeclaration> properties;
    std::vector<std::unique_ptr<Routine>> routines;
    bool module = false; // Module … End Module: everything in it is shared
};

struct Program {
    Block statements;
    std::vector<std::unique_ptr<Routine>> routines;
    std::vector<std::unique_ptr<ClassDeclaration>> classes;
};

} // namespace host::basic::ast
