// Invoke.cpp: making objects, calling members, reading and assigning properties, raising events.
#include "host/runtime/Invoke.hpp"

#include "host/plugin/ForeignCall.hpp"
#include "host/runtime/Array.hpp"
#include "host/runtime/Pending.hpp"
#include "host/runtime/Variant.hpp"

#include <algorithm>

namespace host {
namespace {

std::string nameFor(const Class& owner, std::string_view name) {
    return owner.name() + "." + std::string(name);
}

std::vector<const Member*> onlyShared(std::vector<const Member*> members, bool shared) {
    std::erase_if(members,
                  [=](const Member* m) { return m->kind != MemberKind::Constant && m->shared != shared; });
    return members;
}

[[noreturn]] void refuseNil(std::string_view name) {
    raise("NilObjectException", std::string(name) + " can't be used: the object is nil");
}

[[noreturn]] void refuseUnknown(const std::string& owner, std::string_view name) {
    raise("UnsupportedOperationException", owner + " has no member " + std::string(name));
}

// Members for instances; shared ones may be reached through an instance too, instance members come first.
std::vector<const Member*> instanceMembers(const Class& objectClass, std::string_view name) {
    auto all = objectClass.find(name);
    std::stable_partition(all.begin(), all.end(), [](const Member* m) { return !m->shared; });
    return all;
}

// Arguments that a member does not take, after one that takes none and answers an array: an index into that
// array.
const Member* indexedMember(const std::vector<const Member*>& members, std::size_t count) {
    if (count != 1) return nullptr;
    const Member* bare = nullptr;
    for (const auto* member : members) {
        if (!member->declaration.parameters.empty()) return nullptr;
        if (member->declaration.result.array) bare = member;
    }
    return bare;
}

Value readMembers(const std::vector<const Member*>& members, REALobject self, Arguments arguments,
                  const std::string& what) {
    if (const auto* member = indexedMember(members, arguments.size())) {
        const Value array = call(*member, self, {});
        if (array.isNil()) refuseNil(what);
        return arrayGet(array.object(), arguments[0].toInt64());
    }
    return call(select(members, arguments, false, what), self, arguments);
}

void assignMembers(const std::vector<const Member*>& members, REALobject self, Arguments arguments,
                   const Value& value, const std::string& what) {
    if (const auto* member = indexedMember(members, arguments.size())) {
        const Value array = call(*member, self, {});
        if (array.isNil()) refuseNil(what);
        return arraySet(array.object(), arguments[0].toInt64(), value);
    }
    std::vector<Value> all(arguments.begin(), arguments.end());
    all.push_back(value);
    const Member& member = select(members, all, true, what);
    if (member.kind == MemberKind::Property) return callSetter(member, self, arguments, value);
    call(member, self, all);
    std::copy_n(all.begin(), arguments.size(), arguments.begin());
}

Value callBody(const Member& member, REALobject self, Arguments arguments) {
    Value result = member.body(self, arguments);
    if (member.declaration.result.kind == Kind::None) return {};
    return convertOr(result, member.declaration.result,
                     [&] { return "the result of " + member.declaration.name; });
}

Value readStored(const Member& member, REALobject self) {
    if (member.field == kNoField) return member.value;
    return fieldOf(self, member.field);
}

std::string argumentName(const Member& member, std::size_t index) {
    return "argument " + member.declaration.parameters[index].name + " of " + member.declaration.name;
}

// One value per parameter: converted, left-out ones filled in.
std::vector<Value> fullArguments(const Member& member, Arguments arguments) {
    const auto& parameters = member.declaration.parameters;
    std::vector<Value> full;
    full.reserve(parameters.size() + 1);
    if (arguments.size() > parameters.size())
        raise("TypeMismatchException", member.declaration.name + " takes " +
                                           std::to_string(parameters.size()) + " arguments, not " +
                                           std::to_string(arguments.size()));
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (i < arguments.size())
            full.push_back(
                convertOr(arguments[i], parameters[i].type, [&] { return argumentName(member, i); }));
        else if (parameters[i].defaultValue)
            full.push_back(*parameters[i].defaultValue);
        else
            raise("TypeMismatchException", argumentName(member, i) + " is missing");
    }
    return full;
}

void writeBack(const Member& member, std::vector<Value>& full, Arguments arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (member.declaration.parameters[i].byRef) arguments[i] = std::move(full[i]);
}

} // namespace

Value construct(Class& objectClass, Arguments arguments) {
    const ClassShape& shape = objectClass.shape();
    if (shape.isNotMadeWithNew)
        raise("UnsupportedOperationException",
              objectClass.name() + " objects are not made with New: ask the members that answer one");
    Value object = Value::adopt(newObject(objectClass));
    throwPendingException();
    if (!shape.constructors.empty()) {
        const Member* constructor = bestOf(shape.constructors, arguments, false);
        if (!constructor)
            refuseAll(shape.constructors, arguments, false, nameFor(objectClass, "Constructor"));
        call(*constructor, object.object(), arguments);
    } else if (!arguments.empty()) {
        raise("TypeMismatchException", "New " + objectClass.name() + " takes no arguments");
    }
    return object;
}

Value invoke(const Value& target, std::string_view name, Arguments arguments) {
    if (target.isNil()) refuseNil(name);
    if (!target.isObject()) refuseUnknown("a " + target.typeName(), name);
    const Class& objectClass = classOf(target.object());
    const auto members = instanceMembers(objectClass, name);
    if (members.empty()) {
        if (arguments.empty())
            if (const auto value = variantProperty(target, name)) return *value;
        refuseUnknown(objectClass.name(), name);
    }
    return readMembers(members, target.object(), arguments, nameFor(objectClass, name));
}

void assign(const Value& target, std::string_view name, Arguments arguments, const Value& value) {
    if (target.isNil()) refuseNil(name);
    if (!target.isObject()) refuseUnknown("a " + target.typeName(), name);
    const Class& objectClass = classOf(target.object());
    const auto members = instanceMembers(objectClass, name);
    if (members.empty()) refuseUnknown(objectClass.name(), name);
    assignMembers(members, target.object(), arguments, value, nameFor(objectClass, name));
}

Value invokeShared(Class& objectClass, std::string_view name, Arguments arguments) {
    const auto members = onlyShared(objectClass.find(name), true);
    if (members.empty()) {
        if (objectClass.has(name))
            raise("UnsupportedOperationException",
                  nameFor(objectClass, name) + " needs an object: it is no shared member");
        refuseUnknown("class " + objectClass.name(), name);
    }
    return readMembers(members, nullptr, arguments, nameFor(objectClass, name));
}

void assignShared(Class& objectClass, std::string_view name, Arguments arguments, const Value& value) {
    const auto members = onlyShared(objectClass.find(name), true);
    if (members.empty()) refuseUnknown("class " + objectClass.name(), name);
    assignMembers(members, nullptr, arguments, value, nameFor(objectClass, name));
}

Value invokeFrom(Class& start, const Value& self, std::string_view name, Arguments arguments) {
    if (self.isNil()) refuseNil(name);
    const auto members = instanceMembers(start, name);
    if (members.empty()) {
        // A class without a declared constructor has one that does nothing.
        if (sameName(name, "Constructor") && arguments.empty()) return {};
        refuseUnknown(start.name(), name);
    }
    return readMembers(members, self.object(), arguments, nameFor(start, name));
}

void assignFrom(Class& start, const Value& self, std::string_view name, Arguments arguments,
                const Value& value) {
    if (self.isNil()) refuseNil(name);
    const auto members = instanceMembers(start, name);
    if (members.empty()) refuseUnknown(start.name(), name);
    assignMembers(members, self.object(), arguments, value, nameFor(start, name));
}

Value call(const Member& member, REALobject self, Arguments arguments) {
    if (member.kind == MemberKind::Constant) return member.value;
    if (member.shared)
        self = nullptr;
    else if (!self && member.owner)
        refuseNil(member.declaration.name);
    const Ref alive = Ref::borrow(self); // the object may lose its last variable during its own method
    auto full = fullArguments(member, arguments);
    Value result;
    if (member.function)
        result = foreignCall(member, self, full);
    else if (member.body)
        result = callBody(member, self, full);
    else if (member.kind == MemberKind::Property && !member.setterBody)
        return readStored(member, self);
    else
        raise("UnsupportedOperationException", member.declaration.name + " can only be assigned to");
    writeBack(member, full, arguments);
    return result;
}

void callSetter(const Member& member, REALobject self, Arguments parameters, const Value& value) {
    if (!member.canAssign())
        raise("UnsupportedOperationException", member.declaration.name + " can't be assigned to");
    if (member.shared)
        self = nullptr;
    else if (!self && member.owner)
        refuseNil(member.declaration.name);
    const Ref alive = Ref::borrow(self);
    auto full = fullArguments(member, parameters);
    Value converted = convertOr(value, member.declaration.result,
                                [&] { return "the value of " + member.declaration.name; });
    if (member.setter || member.setterBody) {
        full.push_back(std::move(converted));
        if (member.setter)
            foreignSet(member, self, full);
        else
            member.setterBody(self, full);
        return;
    }
    Value& stored =
        member.field == kNoField ? const_cast<Member&>(member).value : fieldOf(self, member.field);
    std::swap(stored, converted); // the old value goes after the new one is in place: its destructor may look
}

Value raiseEvent(REALobject object, std::string_view eventName, Arguments arguments, bool* handled) {
    if (handled) *handled = false;
    if (!object) refuseNil(eventName);
    const Class& objectClass = classOf(object);
    const Member* event = objectClass.event(eventName);
    if (!event) refuseUnknown(objectClass.name(), "event " + std::string(eventName));
    const Member* handler = objectClass.handler(*event);
    if (!handler) return Value::defaultFor(event->declaration.result);
    if (handled) *handled = true;
    const Ref alive = Ref::borrow(object);
    auto full = fullArguments(*event, arguments);
    Value result = handler->body(object, full);
    writeBack(*event, full, arguments);
    if (event->declaration.result.kind == Kind::None) return {};
    return convertOr(result, event->declaration.result,
                     [&] { return "the result of " + event->declaration.name; });
}

} // namespace host
