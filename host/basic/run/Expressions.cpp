// Computing values.
#include "Expressions.hpp"

#include "host/runtime/Array.hpp"
#include "host/runtime/Invoke.hpp"

namespace host::basic {

using ast::Operator;

namespace {

// Both operands, without copies where they are variables that nothing can change in between.
struct Operands {
    Value leftScratch, rightScratch;
    const Value& left;
    const Value& right;
    Operands(Frame& frame, const Node& l, const Node& r)
        : left(r.isSimple() ? l.view(frame, leftScratch) : (leftScratch = l.eval(frame))),
          right(r.view(frame, rightScratch)) {}
};

} // namespace

Value IndexNode::eval(Frame& frame) const {
    const Value list = array->eval(frame);
    Value scratch;
    const Value& at = index->view(frame, scratch);
    frame.context.place = place;
    if (list.isNil()) raise("NilObjectException", "the array is nil");
    if (!list.isArray()) raise("TypeMismatchException", "only arrays have elements, not " + list.typeName());
    if (!at.isNumber()) raise("TypeMismatchException", "an index must be a number, not " + at.typeName());
    return arrayGet(list.object(), at.toInt64());
}

void IndexTarget::store(Frame& frame, Value value) const {
    const Value list = array->eval(frame);
    Value scratch;
    const Value& at = index->view(frame, scratch);
    frame.context.place = place;
    if (list.isNil()) raise("NilObjectException", "the array is nil");
    if (!list.isArray()) raise("TypeMismatchException", "only arrays have elements, not " + list.typeName());
    if (!at.isNumber()) raise("TypeMismatchException", "an index must be a number, not " + at.typeName());
    arraySet(list.object(), at.toInt64(), value);
}

Value ConvertNode::eval(Frame& frame) const {
    Value value = operand->eval(frame);
    frame.context.place = place;
    return converted(std::move(value), type, fromVariant, what);
}

Value CastNode::eval(Frame& frame) const {
    Value value = operand->eval(frame);
    if (value.isNil() || (value.object() && isA(value.object(), *wanted))) return value;
    frame.context.place = place;
    raise("IllegalCastException", "the value is of type " + value.typeName() + ", not " + wanted->name());
}

Value ArithmeticNode::eval(Frame& frame) const {
    const Operands both(frame, *left, *right);
    frame.context.place = place;
    return arithmetic(op, both.left, both.right);
}

Value CompareNode::eval(Frame& frame) const {
    const Operands both(frame, *left, *right);
    frame.context.place = place;
    return Value(compared(op, both.left, both.right));
}

Value LogicalNode::eval(Frame& frame) const {
    const Value first = left->eval(frame);
    if (first.kind() == Kind::Boolean) {
        if (op == Operator::logicalAnd && !first.toBoolean()) return first;
        if (op == Operator::logicalOr && first.toBoolean()) return first;
    }
    Value scratch;
    const Value& second = right->view(frame, scratch);
    frame.context.place = place;
    return logical(op, first, second);
}

Value JoinNode::eval(Frame& frame) const {
    Value whole = parts.front()->eval(frame);
    if (parts.size() == 2) {
        Value scratch;
        const Value& second = parts[1]->view(frame, scratch);
        return joined(whole, second);
    }
    std::vector<Value> values;
    bool plain = whole.isString() && encodingOf(whole.string()) == kREALEncodingUTF8;
    for (size_t i = 1; i < parts.size(); ++i) {
        values.push_back(parts[i]->eval(frame));
        plain =
            plain && (!values.back().isString() || encodingOf(values.back().string()) == kREALEncodingUTF8);
    }
    if (!plain) {
        for (const Value& value : values)
            whole = joined(whole, value);
        return whole;
    }
    std::string text(bytesOf(whole.string()));
    for (const Value& value : values)
        value.isString() ? text.append(bytesOf(value.string())) : text.append(value.toText());
    return Value(text);
}

Value UnaryNode::eval(Frame& frame) const {
    const Value value = operand->eval(frame);
    frame.context.place = place;
    if (op == Operator::logicalNot) return inverted(value);
    if (op == Operator::negate) return negated(value);
    if (!value.isNumber()) raise("TypeMismatchException", "'+' takes a number here, not " + value.typeName());
    return value;
}

Value IsANode::eval(Frame& frame) const {
    Value scratch;
    const Value& value = operand->view(frame, scratch);
    return Value(value.object() != nullptr && isA(value.object(), *wanted));
}

Value ChooseNode::eval(Frame& frame) const {
    return isTrue(condition->eval(frame)) ? yes->eval(frame) : no->eval(frame);
}

Value ArrayNode::eval(Frame& frame) const {
    int64_t last = -1;
    if (bound) last = bound->eval(frame).toInt64();
    std::vector<Value> values;
    for (const NodePtr& one : elements)
        values.push_back(one->eval(frame));
    frame.context.place = place;
    if (last < -1 || last >= INT32_MAX)
        raise("OutOfBoundsException", "an array can't have the last index " + std::to_string(last));
    const Ref made = newArray(element, static_cast<int32_t>(last));
    for (const Value& value : values)
        arrayAppend(made.get(), value);
    return Value::borrow(made.get());
}

} // namespace host::basic
