// Compiles expressions: names, operators, conversions.
#include "CompilerState.hpp"

namespace host::basic {

using namespace ast;

namespace {

const Type kBooleanType{Kind::Boolean, {}, false};
const Type kVariantType{Kind::Variant, {}, false};
const Type kStringType{Kind::String, {}, false};

Typed literal(Place place, Value value) {
    const Kind kind = value.kind();
    return {std::make_unique<LiteralNode>(place, std::move(value)), {kind, {}, false}, true};
}

const char* symbolOf(Operator op) {
    switch (op) {
    case Operator::add:
        return "+";
    case Operator::subtract:
        return "-";
    case Operator::multiply:
        return "*";
    case Operator::divide:
        return "/";
    case Operator::integerDivide:
        return "\\";
    case Operator::modulo:
        return "Mod";
    case Operator::power:
        return "^";
    case Operator::logicalAnd:
        return "And";
    case Operator::logicalOr:
        return "Or";
    case Operator::logicalXor:
        return "Xor";
    default:
        return "this operator";
    }
}

bool isComparison(Operator op) { return op >= Operator::equal && op <= Operator::is; }

} // namespace

Typed Compiler::required(const Expression& tree, const Type* wanted) {
    Typed made = expression(tree, wanted);
    if (made.type.kind == Kind::None) fail(tree.place, "This call gives no value: it is a Sub.");
    return made;
}

Typed Compiler::expression(const Expression& tree, const Type* wanted) {
    switch (tree.kind) {
    case ExpressionKind::integer: {
        const uint64_t value = static_cast<const IntegerLiteral&>(tree).value;
        if (value <= INT32_MAX) return literal(tree.place, Value(static_cast<int32_t>(value)));
        if (value <= INT64_MAX) return literal(tree.place, Value(static_cast<int64_t>(value)));
        return literal(tree.place, Value(value));
    }
    case ExpressionKind::real:
        return literal(tree.place, Value(static_cast<const RealLiteral&>(tree).value));
    case ExpressionKind::text:
        return literal(tree.place, Value(static_cast<const TextLiteral&>(tree).value));
    case ExpressionKind::boolean:
        return literal(tree.place, Value(static_cast<const BooleanLiteral&>(tree).value));
    case ExpressionKind::nil:
        return {std::make_unique<LiteralNode>(tree.place, Value()), {Kind::Nil, {}, false}};
    case ExpressionKind::name:
        return nameValue(static_cast<const NameExpression&>(tree));
    case ExpressionKind::member:
        return member(static_cast<const MemberExpression&>(tree), {}, false);
    case ExpressionKind::call:
        return call(static_cast<const CallExpression&>(tree), wanted);
    case ExpressionKind::make:
        return makeNew(static_cast<const NewExpression&>(tree));
    case ExpressionKind::unary:
        return unary(static_cast<const UnaryExpression&>(tree));
    case ExpressionKind::binary:
        return binary(static_cast<const BinaryExpression&>(tree));
    case ExpressionKind::isA:
        return isA(static_cast<const IsAExpression&>(tree));
    case ExpressionKind::self:
        return selfValue(tree.place);
    case ExpressionKind::choose:
        return choose(static_cast<const ChooseExpression&>(tree));
    case ExpressionKind::super:
        break;
    }
    fail(tree.place, "'Super' needs a member: write Super.Name.");
}

const Variable* Compiler::findVariable(std::string_view name) const {
    if (scope_) {
        for (auto block = scope_->blocks.rbegin(); block != scope_->blocks.rend(); ++block) {
            const auto found = block->find(name);
            if (found != block->end()) return &found->second;
        }
    }
    // In a class its own members come before what the top level declares.
    if (scope_ && scope_->owner && !scope_->owner->find(name).empty()) return nullptr;
    const auto found = globals_.find(name);
    return found == globals_.end() ? nullptr : &found->second;
}

Typed Compiler::variableValue(Place place, const Variable& variable) {
    switch (variable.where) {
    case Variable::Where::local:
        return {std::make_unique<LocalNode>(place, variable.slot), variable.type};
    case Variable::Where::global:
        return {std::make_unique<GlobalNode>(place, variable.global), variable.type};
    default:
        return {std::make_unique<LiteralNode>(place, variable.value), variable.type, true};
    }
}

Typed Compiler::selfValue(Place place) {
    if (!scope_->owner || scope_->shared) fail(place, "There is no object here that 'Me' could mean.");
    return {std::make_unique<SelfNode>(place), {Kind::Object, scope_->owner->name(), false}};
}

// A node whose parts are all constant is computed now; what fails here fails again, with its place, when it
// runs.
Typed Compiler::folded(Typed made) {
    if (!made.constant) return made;
    Frame frame{Context::ofThisThread(), nullptr, nullptr, Value(), 0};
    try {
        Value value = made.node->eval(frame);
        Type type{value.kind(), {}, false};
        const Place place = made.node->place;
        return {std::make_unique<LiteralNode>(place, std::move(value)), std::move(type), true};
    } catch (const Exception&) {
        frame.context.forgetRaised();
        made.constant = false;
        return made;
    }
}

Typed Compiler::unary(const UnaryExpression& tree) {
    Typed operand = required(*tree.operand);
    const bool number = isNumber(operand.type) || isVariant(operand.type);
    const bool truth = isBoolean(operand.type) || isInteger(operand.type) || isVariant(operand.type);
    if (tree.op == Operator::logicalNot ? !truth : !number)
        fail(tree.place, std::string(tree.op == Operator::logicalNot ? "Not takes a Boolean or an integer"
                                                                     : "A sign takes a number") +
                             ", not " + described(operand.type) + ".");
    Typed made;
    made.type = tree.op == Operator::negate && isInteger(operand.type)
                    ? arithmeticType(operand.type, operand.type)
                    : operand.type;
    if (tree.op == Operator::negate && made.type.kind == Kind::UInt64) made.type.kind = Kind::Int64;
    made.constant = operand.constant;
    made.loose = operand.loose || tree.op == Operator::negate;
    made.node = std::make_unique<UnaryNode>(tree.place, tree.op, std::move(operand.node));
    return folded(std::move(made));
}

void Compiler::flattenJoin(const Expression& tree, std::vector<NodePtr>& parts) {
    if (tree.kind == ExpressionKind::binary) {
        const auto& binary = static_cast<const BinaryExpression&>(tree);
        if (binary.op == Operator::join) {
            flattenJoin(*binary.left, parts);
            flattenJoin(*binary.right, parts);
            return;
        }
    }
    Typed part = required(tree);
    const bool shown =
        isText(part.type) || isNumber(part.type) || isBoolean(part.type) || isVariant(part.type) ||
        (part.type.kind == Kind::Object && !part.type.array && sameName(part.type.className, "Date"));
    if (!shown) fail(tree.place, "& joins texts and numbers, not " + described(part.type) + ".");
    parts.push_back(std::move(part.node));
}

Typed Compiler::binary(const BinaryExpression& tree) {
    if (tree.op == Operator::join) {
        std::vector<NodePtr> parts;
        flattenJoin(tree, parts);
        bool constant = true;
        for (const NodePtr& part : parts)
            constant = constant && dynamic_cast<const LiteralNode*>(part.get()) != nullptr;
        // The first part decides that this is a text.
        Typed made{std::make_unique<JoinNode>(tree.place, std::move(parts)), kStringType, constant};
        return folded(std::move(made));
    }
    Typed left = required(*tree.left);
    Typed right = required(*tree.right);
    return combine(tree.op, std::move(left), std::move(right), tree.place);
}

Typed Compiler::combine(Operator op, Typed left, Typed right, Place place) {
    const bool constant = left.constant && right.constant;
    const bool variant = isVariant(left.type) || isVariant(right.type);
    const auto mismatch = [&](const std::string& advice) {
        fail(place, std::string("'") + symbolOf(op) + "' " + advice + ", not " + described(left.type) +
                        " and " + described(right.type) + ".");
    };
    Typed made;
    made.constant = constant;
    if (isComparison(op)) {
        checkComparable(op, left.type, right.type, place);
        made.type = kBooleanType;
        made.node = std::make_unique<CompareNode>(place, op, std::move(left.node), std::move(right.node));
        return folded(std::move(made));
    }
    if (op == Operator::join) {
        std::vector<NodePtr> parts;
        for (const Typed* part : {&left, &right}) {
            if (part->type.array || part->type.kind == Kind::Object || part->type.kind == Kind::Nil)
                mismatch("joins texts and numbers");
        }
        parts.push_back(std::move(left.node));
        parts.push_back(std::move(right.node));
        return {std::make_unique<JoinNode>(place, std::move(parts)), kStringType};
    }
    if (op == Operator::logicalAnd || op == Operator::logicalOr || op == Operator::logicalXor) {
        const bool booleans = isBoolean(left.type) && isBoolean(right.type);
        const bool integers = isInteger(left.type) && isInteger(right.type);
        const auto possible = [](const Type& type) {
            return isVariant(type) || isBoolean(type) || isInteger(type);
        };
        if (!booleans && !integers && !(variant && possible(left.type) && possible(right.type)))
            mismatch("takes two Booleans or two integers");
        made.type = booleans ? kBooleanType : integers ? arithmeticType(left.type, right.type) : kVariantType;
        made.loose = integers;
        made.node = std::make_unique<LogicalNode>(place, op, std::move(left.node), std::move(right.node));
        return folded(std::move(made));
    }
    if (op == Operator::add && isText(left.type) && isText(right.type)) {
        made.type = kStringType;
    } else if (isNumber(left.type) && isNumber(right.type)) {
        made.type =
            op == Operator::divide ? Type{Kind::Double, {}, false} : arithmeticType(left.type, right.type);
        made.loose = true;
    } else {
        const auto possible = [&](const Type& type) {
            return isVariant(type) || isNumber(type) || (op == Operator::add && isText(type));
        };
        if (!variant || !possible(left.type) || !possible(right.type))
            mismatch(op == Operator::add ? "adds two numbers or joins two texts (use & to join others)"
                                         : "takes two numbers");
        made.type = kVariantType;
    }
    made.node = std::make_unique<ArithmeticNode>(place, op, std::move(left.node), std::move(right.node));
    return folded(std::move(made));
}

void Compiler::checkComparable(Operator op, const Type& left, const Type& right, Place place) {
    const auto isReference = [](const Type& type) {
        return type.array || type.kind == Kind::Object || type.kind == Kind::Nil;
    };
    const bool identity = op == Operator::equal || op == Operator::notEqual || op == Operator::is;
    bool good = isVariant(left) || isVariant(right);
    if (op == Operator::is)
        good = (isVariant(left) || isReference(left)) && (isVariant(right) || isReference(right));
    else
        good = good || (isNumber(left) && isNumber(right)) || (isText(left) && isText(right));
    if (identity)
        good = good || (isReference(left) && isReference(right)) ||
               (op != Operator::is && isBoolean(left) && isBoolean(right));
    const auto isDate = [](const Type& type) {
        return type.kind == Kind::Object && !type.array && sameName(type.className, "Date");
    };
    good = good || (isDate(left) && isDate(right));
    if (!good)
        fail(place, "These can't be compared" + std::string(op == Operator::is ? " with Is" : "") + ": " +
                        described(left) + " and " + described(right) + ".");
}

Typed Compiler::isA(const IsAExpression& tree) {
    Typed operand = required(*tree.operand);
    if (isNumber(operand.type) || isText(operand.type) || isBoolean(operand.type))
        fail(tree.place, "IsA asks for the class of an object, not of " + described(operand.type) + ".");
    Class& wanted = classNamed(tree.type);
    return {std::make_unique<IsANode>(tree.place, std::move(operand.node), &wanted), kBooleanType};
}

Typed Compiler::choose(const ChooseExpression& tree) {
    NodePtr test = condition(*tree.condition);
    Typed yes = required(*tree.yes);
    Typed no = required(*tree.no);
    Type type = yes.type;
    if (typeFit(no.type, yes.type) < 0 || yes.type.kind == Kind::Nil) type = no.type;
    if (isNumber(yes.type) && isNumber(no.type)) type = arithmeticType(yes.type, no.type);
    if (isVariant(yes.type) || isVariant(no.type)) type = kVariantType;
    if (typeFit(yes.type, type) < 0 || typeFit(no.type, type) < 0)
        fail(tree.place, "The two values of If have types that do not go together: " + described(yes.type) +
                             " and " + described(no.type) + ".");
    NodePtr first = coerce(std::move(yes), type, tree.yes->place, "The value of If");
    NodePtr second = coerce(std::move(no), type, tree.no->place, "The value of If");
    return {std::make_unique<ChooseNode>(tree.place, std::move(test), std::move(first), std::move(second)),
            type};
}

NodePtr Compiler::valueFor(const Expression& tree, const Type& type, const std::string& what) {
    return coerce(required(tree, &type), type, tree.place, what);
}

NodePtr Compiler::coerce(Typed value, const Type& type, Place place, const std::string& what) {
    const int fits = typeFit(value.type, type);
    if (fits < 0) {
        std::string advice;
        if (isText(type) && isNumber(value.type))
            advice = "; Str makes a text of a number";
        else if (isNumber(type) && isText(value.type))
            advice = "; Val reads a number from a text";
        else if (typeFit(type, value.type) >= 0 && classOfType(type))
            advice = "; if it is one, convert it: " + type.className + "(value)";
        fail(place, what + " must be " + described(type) + ", not " + described(value.type) + advice + ".");
    }
    if (isVariant(type) || value.type.kind == Kind::Nil) return std::move(value.node);
    if (isVariant(value.type))
        return std::make_unique<ConvertNode>(place, std::move(value.node), type, true, what);
    if (!isNumber(type)) return std::move(value.node);
    if (value.type == type && !value.loose) return std::move(value.node);
    if (value.constant) {
        Frame frame{Context::ofThisThread(), nullptr, nullptr, Value(), 0};
        const Value given = value.node->eval(frame);
        const bool whole = given.isInteger() && isIntegerKind(type.kind) && sizeOf(type.kind) < 8;
        const int bits = static_cast<int>(sizeOf(type.kind)) * 8;
        const int64_t number = given.toInt64();
        if (whole && (given.kind() == Kind::UInt64 || number >= (int64_t{1} << bits) ||
                      number < -(int64_t{1} << (bits - 1))))
            fail(place, "The number " + given.toText() + " does not fit into " + described(type) + ".");
        return std::make_unique<LiteralNode>(place, converted(given, type, false, what));
    }
    return std::make_unique<ConvertNode>(place, std::move(value.node), type, false, what);
}

} // namespace host::basic
