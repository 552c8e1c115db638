// ClassEntries.cpp: the services about versions, classes, objects, events and methods.
#include "host/plugin/Closure.hpp"
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Invoke.hpp"
#include "host/services/Entries.hpp"
#include "host/services/State.hpp"

namespace host::entries {
namespace {

// Whether the creation that is asked for now is one that a test wants to fail.
bool mayCreate(const char* className) {
    auto& state = serviceState();
    std::lock_guard guard(state.mutex);
    if (state.hidden.contains(className)) return false;
    const auto failing = state.failing.find(className);
    if (failing == state.failing.end() || --failing->second > 0) return true;
    state.failing.erase(failing);
    return false;
}

bool isHidden(const char* className) {
    auto& state = serviceState();
    std::lock_guard guard(state.mutex);
    return state.hidden.contains(className);
}

// What plug-ins may call of a member: its own function, or a C function made for its body.
REALproc procFor(const Member* member) {
    if (!member) return nullptr;
    if (member->function) return member->function;
    return member->body ? closureFor(*member, member->declaration) : nullptr;
}

template <class T>
uint8_t readProperty(REALobject object, const char* name, T* value, T (*as)(const Value&)) {
    if (!object || !name || !value) return 0;
    return guarded<uint8_t>([&]() -> uint8_t {
        const Value read = invoke(Value::borrow(object), name, {});
        if (!read.isNumber() && read.kind() != Kind::Boolean) return 0;
        *value = as(read);
        return 1;
    });
}

uint8_t writeProperty(REALobject object, const char* name, const Value& value) {
    if (!object || !name) return 0;
    return guarded<uint8_t>([&]() -> uint8_t {
        assign(Value::borrow(object), name, {}, value);
        return 1;
    });
}

} // namespace

void RegisterPluginVersion(int32_t version) {
    auto& state = serviceState();
    std::lock_guard guard(state.mutex);
    state.announced = version;
}

double REALGetRBVersion() {
    auto& state = serviceState();
    std::lock_guard guard(state.mutex);
    return state.version;
}

void PluginRegisterClass(REALclassDefinition* definition) {
    if (definition && definition->name) {
        auto& state = serviceState();
        std::lock_guard guard(state.mutex);
        state.registrations.emplace_back(definition->name);
    }
    guarded<int>([=] { return registerClass(definition), 0; });
}

REALobject PluginNewInstance(const char* className) {
    if (!className || !mayCreate(className)) return nullptr;
    return guarded<REALobject>([=]() -> REALobject {
        Class* found = findClass(className);
        return found ? newObject(*found) : nullptr;
    });
}

REALclassRef pluginObjectType(const char* className) {
    if (!className || isHidden(className)) return nullptr;
    return guarded<REALclassRef>([=] { return reinterpret_cast<REALclassRef>(findClass(className)); });
}

uint8_t RuntimeObjectIsa(REALobject object, REALclassRef classRef) {
    if (!object || !classRef) return 0;
    return guarded<uint8_t>([=]() -> uint8_t { return isA(object, *reinterpret_cast<Class*>(classRef)); });
}

// A plug-in that calls an object's events may hold and drop it without owning it. Once the object has ended, both
// do nothing.
void REALLockObject(REALobject object) {
    if (object && !hasEnded(object)) retain(object);
}

void REALUnlockObject(REALobject object) {
    if (object && !hasEnded(object)) guarded<int>([=] { return release(object), 0; });
}

void RuntimeRaiseException(REALobject exception) {
    guarded<int>([=] {
        // Only exceptions can be raised; anything else would surprise whoever catches it.
        if (isA(exception, "RuntimeException"))
            setPendingException(Value::borrow(exception));
        else
            setPendingException(newException("RuntimeException", "a plug-in raised what is no exception"));
        return 0;
    });
}

REALproc GetEventInstance(REALobject object, uintptr_t identity) {
    if (!object || identity == 0 || hasEnded(object)) return nullptr;
    outlive(object);
    return guarded<REALproc>([=]() -> REALproc {
        const auto& event = *reinterpret_cast<const Member*>(identity);
        const Member* handler = classOf(object).handler(event);
        return handler ? closureFor(*handler, event.declaration) : nullptr;
    });
}

REALproc REALLoadObjectMethod(REALobject object, const char* declaration) {
    if (!object || !declaration) return nullptr;
    return guarded<REALproc>(
        [=] { return procFor(classOf(object).findDeclared(parseDeclaration(declaration))); });
}

REALproc REALLoadGlobalMethod(void*, const char* declaration) {
    if (!declaration) return nullptr;
    return guarded<REALproc>([=] { return procFor(findGlobalDeclared(parseDeclaration(declaration))); });
}

uint8_t REALGetPropValueInt(REALobject object, const char* name, int32_t* value) {
    return readProperty<int32_t>(object, name, value, [](const Value& v) { return v.toInt32(); });
}

uint8_t REALGetPropValueInt64(REALobject object, const char* name, int64_t* value) {
    return readProperty<int64_t>(object, name, value, [](const Value& v) { return v.toInt64(); });
}

uint8_t REALGetPropValueSingle(REALobject object, const char* name, float* value) {
    return readProperty<float>(object, name, value,
                               [](const Value& v) { return static_cast<float>(v.toDouble()); });
}

uint8_t REALGetPropValueDouble(REALobject object, const char* name, double* value) {
    return readProperty<double>(object, name, value, [](const Value& v) { return v.toDouble(); });
}

uint8_t REALGetPropValueString(REALobject object, const char* name, REALstring* value) {
    if (!object || !name || !value) return 0;
    return guarded<uint8_t>([=]() -> uint8_t {
        const Value read = invoke(Value::borrow(object), name, {});
        if (!read.isString()) return 0;
        *value = read.toString().detach();
        return 1;
    });
}

uint8_t REALGetPropValueObject(REALobject object, const char* name, REALobject* value) {
    if (!object || !name || !value) return 0;
    return guarded<uint8_t>([=]() -> uint8_t {
        const Value read = invoke(Value::borrow(object), name, {});
        if (!read.isObject() && !read.isNil()) return 0;
        *value = Ref::borrow(read.object()).detach();
        return 1;
    });
}

uint8_t REALSetPropValueInt(REALobject object, const char* name, int32_t value) {
    return writeProperty(object, name, value);
}

uint8_t REALSetPropValueString(REALobject object, const char* name, REALstring value) {
    return writeProperty(object, name, Value::borrow(value));
}

} // namespace host::entries
