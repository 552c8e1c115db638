// The nodes that compute values: literals, variables, operators, conversions.
#pragma once

#include "Node.hpp"
#include "Operators.hpp"

namespace host::basic {

struct LiteralNode final : Node {
    Value value;
    LiteralNode(Place p, Value v) : Node(p), value(std::move(v)) {}
    Value eval(Frame&) const override { return value; }
    const Value& view(Frame&, Value&) const override { return value; }
    bool isSimple() const override { return true; }
};

struct LocalNode final : Node {
    size_t slot;
    LocalNode(Place p, size_t s) : Node(p), slot(s) {}
    Value eval(Frame& frame) const override { return frame.slots[slot]; }
    const Value& view(Frame& frame, Value&) const override { return frame.slots[slot]; }
    bool isSimple() const override { return true; }
};
struct LocalTarget final : Target {
    size_t slot;
    explicit LocalTarget(size_t s) : slot(s) {}
    void store(Frame& frame, Value value) const override { frame.slots[slot] = std::move(value); }
};

/// A variable of the program's top level.
struct GlobalNode final : Node {
    Value* variable;
    GlobalNode(Place p, Value* v) : Node(p), variable(v) {}
    Value eval(Frame&) const override { return *variable; }
    const Value& view(Frame&, Value&) const override { return *variable; }
    bool isSimple() const override { return true; }
};
struct GlobalTarget final : Target {
    Value* variable;
    explicit GlobalTarget(Value* v) : variable(v) {}
    // The old value goes after the new one is in place: its destructor may look at the variable.
    void store(Frame&, Value value) const override { std::swap(*variable, value); }
};

struct SelfNode final : Node {
    using Node::Node;
    Value eval(Frame& frame) const override { return Value::borrow(frame.self); }
};

struct IndexNode final : Node {
    NodePtr array, index;
    IndexNode(Place p, NodePtr a, NodePtr i) : Node(p), array(std::move(a)), index(std::move(i)) {}
    Value eval(Frame& frame) const override;
};
struct IndexTarget final : Target {
    Place place;
    const Node* array; // of the node that reads the same element
    const Node* index;
    IndexTarget(Place p, const Node* a, const Node* i) : place(p), array(a), index(i) {}
    void store(Frame& frame, Value value) const override;
};
/// Arrays keep their nodes in the reading node; this one owns it for the target.
struct OwningTarget final : Target {
    NodePtr first, second;
    TargetPtr inner;
    void store(Frame& frame, Value value) const override { inner->store(frame, std::move(value)); }
};

struct ConvertNode final : Node {
    NodePtr operand;
    Type type;
    bool fromVariant;
    std::string what;
    ConvertNode(Place p, NodePtr o, Type t, bool v, std::string w)
        : Node(p), operand(std::move(o)), type(std::move(t)), fromVariant(v), what(std::move(w)) {}
    Value eval(Frame& frame) const override;
};

/// ClassName(value): the value as an object of that class, or IllegalCastException.
struct CastNode final : Node {
    NodePtr operand;
    Class* wanted;
    CastNode(Place p, NodePtr o, Class* w) : Node(p), operand(std::move(o)), wanted(w) {}
    Value eval(Frame& frame) const override;
};

struct ArithmeticNode final : Node {
    ast::Operator op;
    NodePtr left, right;
    ArithmeticNode(Place p, ast::Operator o, NodePtr l, NodePtr r)
        : Node(p), op(o), left(std::move(l)), right(std::move(r)) {}
    Value eval(Frame& frame) const override;
};
struct CompareNode final : Node {
    ast::Operator op;
    NodePtr left, right;
    CompareNode(Place p, ast::Operator o, NodePtr l, NodePtr r)
        : Node(p), op(o), left(std::move(l)), right(std::move(r)) {}
    Value eval(Frame& frame) const override;
};
/// And and Or do not look at their right side when the left one, a boolean, decides.
struct LogicalNode final : Node {
    ast::Operator op;
    NodePtr left, right;
    LogicalNode(Place p, ast::Operator o, NodePtr l, NodePtr r)
        : Node(p), op(o), left(std::move(l)), right(std::move(r)) {}
    Value eval(Frame& frame) const override;
};
struct JoinNode final : Node {
    std::vector<NodePtr> parts; // a & b & c at once
    JoinNode(Place p, std::vector<NodePtr> s) : Node(p), parts(std::move(s)) {}
    Value eval(Frame& frame) const override;
};
struct UnaryNode final : Node {
    ast::Operator op;
    NodePtr operand;
    UnaryNode(Place p, ast::Operator o, NodePtr e) : Node(p), op(o), operand(std::move(e)) {}
    Value eval(Frame& frame) const override;
};
struct IsANode final : Node {
    NodePtr operand;
    Class* wanted;
    IsANode(Place p, NodePtr e, Class* w) : Node(p), operand(std::move(e)), wanted(w) {}
    Value eval(Frame& frame) const override;
};
struct ChooseNode final : Node {
    NodePtr condition, yes, no;
    ChooseNode(Place p, NodePtr c, NodePtr y, NodePtr n)
        : Node(p), condition(std::move(c)), yes(std::move(y)), no(std::move(n)) {}
    Value eval(Frame& frame) const override;
};
/// A new array: with elements, or with a last index and default elements.
struct ArrayNode final : Node {
    Type element;
    std::vector<NodePtr> elements;
    NodePtr bound;
    ArrayNode(Place p, Type e) : Node(p), element(std::move(e)) {}
    Value eval(Frame& frame) const override;
};

} // namespace host::basic
