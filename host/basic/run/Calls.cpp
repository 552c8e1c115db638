// Calling.
#include "Calls.hpp"

#include "host/runtime/Variant.hpp"
#include "host/services/Platform.hpp"

namespace host::basic {

namespace {

[[noreturn]] void raiseNil(const std::string& member) {
    raise("NilObjectException", "the object whose '" + member + "' is asked for is nil");
}

const Code* codeOf(const Body& body) {
    const auto* compiled = body.target<CodeBody>();
    return compiled ? compiled->code.get() : nullptr;
}

// Room for the arguments of a call that the runtime makes.
struct Prepared {
    Slots slots;
    Arguments span;
    Prepared(Frame& frame, const CallArguments& arguments, size_t extra = 0)
        : slots(arguments.size() + extra), span(slots.data(), arguments.size() + extra) {
        arguments.eval(frame, slots.data());
    }
};

Value runCode(Frame& frame, const Code& code, REALobject self, const CallArguments& arguments, Place place) {
    Slots slots(code.slotCount);
    arguments.eval(frame, slots.data());
    frame.context.place = place;
    Value result = code.run(frame.context, self, slots.data());
    arguments.writeBack(frame, slots.data());
    return result;
}

} // namespace

const Member* overrideIn(Class& objectClass, const Member& member) {
    if (member.owner == &objectClass) return &member;
    const auto& wanted = member.declaration.parameters;
    for (const Member* candidate : objectClass.find(member.declaration.name)) {
        const auto& has = candidate->declaration.parameters;
        if (candidate->shared != member.shared || candidate->kind != member.kind ||
            has.size() != wanted.size())
            continue;
        bool same = true;
        for (size_t i = 0; i < has.size(); ++i)
            same = same && has[i].type == wanted[i].type && has[i].byRef == wanted[i].byRef;
        // A private member is invisible to subclasses, so none of theirs overrides it.
        if (same && (member.scope != Scope::Private || candidate == &member)) return candidate;
    }
    return &member;
}

Value CallCodeNode::eval(Frame& frame) const { return runCode(frame, *code, nullptr, arguments, place); }

Value CallMemberNode::eval(Frame& frame) const {
    const Value target = object->eval(frame);
    if (!target.object()) {
        frame.context.place = place;
        raiseNil(member->declaration.name);
    }
    const Member* chosen = member;
    if (!fixed) {
        Class& actual = classOf(target.object());
        if (seenClass_ != &actual) {
            seenMember_ = overrideIn(actual, *member);
            seenClass_ = &actual;
        }
        chosen = seenMember_;
    }
    if (const Code* code = codeOf(chosen->body))
        return runCode(frame, *code, target.object(), arguments, place);
    Prepared prepared(frame, arguments);
    frame.context.place = place;
    Value result = call(*chosen, target.object(), prepared.span);
    arguments.writeBack(frame, prepared.slots.data());
    return result;
}

Value CallSharedNode::eval(Frame& frame) const {
    if (const Code* code = codeOf(member->body)) return runCode(frame, *code, nullptr, arguments, place);
    Prepared prepared(frame, arguments);
    frame.context.place = place;
    Value result = call(*member, nullptr, prepared.span);
    arguments.writeBack(frame, prepared.slots.data());
    return result;
}

Value InvokeNode::eval(Frame& frame) const {
    Value target = object ? object->eval(frame) : Value();
    // Numbers and texts in a variant have the members that variants have.
    if (!target.isNil() && !target.isObject()) target = Value::adopt(boxVariant(target));
    Prepared prepared(frame, arguments);
    frame.context.place = place;
    if (object && target.isNil()) raiseNil(name);
    Value result = !start   ? invoke(target, name, prepared.span)
                   : object ? invokeFrom(*start, target, name, prepared.span)
                            : invokeShared(*start, name, prepared.span);
    arguments.writeBack(frame, prepared.slots.data());
    return result;
}

Value PoolNode::eval(Frame& frame) const {
    const Pool pool;
    return inner->eval(frame);
}

Value NewNode::eval(Frame& frame) const {
    Prepared prepared(frame, arguments);
    frame.context.place = place;
    Value result = construct(*made, prepared.span);
    arguments.writeBack(frame, prepared.slots.data());
    return result;
}

Value CallNativeNode::eval(Frame& frame) const {
    Prepared prepared(frame, arguments);
    frame.context.place = place;
    Value result = function(frame.context, prepared.span);
    arguments.writeBack(frame, prepared.slots.data());
    return result;
}

void NativeTarget::store(Frame& frame, Value value) const {
    Prepared prepared(frame, arguments, 1);
    prepared.span.back() = std::move(value);
    frame.context.place = place;
    function(frame.context, prepared.span);
}

Value FieldNode::eval(Frame& frame) const {
    Value scratch;
    const Value target = object->eval(frame);
    if (!target.object()) {
        frame.context.place = place;
        raiseNil(member->declaration.name);
    }
    return fieldOf(target.object(), member->field);
}

void PropertyTarget::store(Frame& frame, Value value) const {
    Value target;
    if (object) {
        target = object->eval(frame);
        if (!target.object()) {
            frame.context.place = place;
            raiseNil(member->declaration.name);
        }
    }
    const Member* chosen = object && !fixed ? overrideIn(classOf(target.object()), *member) : member;
    if (chosen->field != kNoField && target.object()) {
        std::swap(fieldOf(target.object(), chosen->field), value);
        return;
    }
    if (chosen->kind == MemberKind::Method) { // one with an Assigns parameter
        Prepared prepared(frame, arguments, 1);
        prepared.span.back() = std::move(value);
        frame.context.place = place;
        call(*chosen, target.object(), prepared.span);
        return;
    }
    Prepared prepared(frame, arguments);
    frame.context.place = place;
    callSetter(*chosen, target.object(), prepared.span, value);
}

void InvokeTarget::store(Frame& frame, Value value) const {
    const Value target = object->eval(frame);
    Prepared prepared(frame, arguments);
    frame.context.place = place;
    if (target.isNil()) raiseNil(name);
    assign(target, name, prepared.span, value);
}

} // namespace host::basic
