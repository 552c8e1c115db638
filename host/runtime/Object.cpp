// Object.cpp: making and destroying objects.
#include "host/runtime/Object.hpp"

#include "host/runtime/Class.hpp"
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Lock.hpp"
#include "host/runtime/Pending.hpp"

#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace host {
namespace {

// The header's words.
enum { kClassWord, kCountWord, kElementsWord, kMarkWord };

// Stands in the last word while the object lives.
const char kAlive = 0;

// While destructors run the count is far from 0, so that what they hold and drop does not destroy a second
// time.
constexpr intptr_t kDying = intptr_t{1} << (sizeof(intptr_t) * 8 - 2);

// The compiler's own atomics: a header word is a pointer by type, and here a number.
uintptr_t addToCount(REALobject object, intptr_t change) {
    return reinterpret_cast<uintptr_t>(
        __atomic_fetch_add(&object->header[kCountWord], change, __ATOMIC_ACQ_REL));
}

std::vector<Class*> chainOf(Class& objectClass) { // the root first
    std::vector<Class*> chain;
    for (Class* c = &objectClass; c; c = c->super())
        chain.insert(chain.begin(), c);
    return chain;
}

void setInitialFields(Class& objectClass, REALobject object) {
    for (const auto& member : objectClass.members())
        if (member->field != kNoField && !member->shared)
            fieldOf(object, member->field) =
                member->value.isNil() ? Value::defaultFor(member->declaration.result) : member->value;
}

void runDestructor(const Class& objectClass, REALobject object) {
    if (!objectClass.destructor()) return;
    Locked lock;
    PendingAside aside; // a destructor runs at any time, also while an exception is on its way
    try {
        objectClass.destructor()(object);
    } catch (const Exception& exception) {
        setStrayException(exception.object());
    }
}

void destroy(REALobject object) {
    Class& objectClass = classOf(object);
    addToCount(object, kDying);
    for (const Class* c = &objectClass; c; c = c->superOrNull())
        runDestructor(*c, object);
    for (std::size_t i = objectClass.fieldCount(); i-- > 0;)
        fieldOf(object, i).~Value();
    for (const Class* c = &objectClass; c; c = c->superOrNull())
        if (c->nativeDestructor()) c->nativeDestructor()(object);
    if (!isInForeignCall()) strayPendingException();
    object->header[kMarkWord] = nullptr;
    --objectClass.liveCount;
    std::free(object);
}

} // namespace

REALobject newObject(Class& objectClass) {
    const auto chain = chainOf(objectClass);
    auto* object = static_cast<REALobject>(std::calloc(1, objectClass.objectSize()));
    if (!object) throw std::bad_alloc();
    object->header[kClassWord] = &objectClass;
    object->header[kCountWord] = reinterpret_cast<void*>(uintptr_t{1});
    object->header[kMarkWord] = const_cast<char*>(&kAlive);
    ++objectClass.liveCount;
    for (std::size_t i = 0; i < objectClass.fieldCount(); ++i)
        new (&fieldOf(object, i)) Value();
    Ref guard = Ref::adopt(object); // an initializer may raise
    for (Class* c : chain)
        if (c->nativeConstructor()) c->nativeConstructor()(object);
    for (Class* c : chain) {
        setInitialFields(*c, object);
        if (c->initializer()) c->initializer()(object);
    }
    return guard.detach();
}

void retain(REALobject object) {
    if (object) addToCount(object, 1);
}

void release(REALobject object) {
    if (object && addToCount(object, -1) == 1) destroy(object);
}

Class& classOf(REALobject object) { return *static_cast<Class*>(object->header[kClassWord]); }

uintptr_t referencesOf(REALobject object) { return object ? addToCount(object, 0) : 0; }

bool isA(REALobject object, const Class& objectClass) { return object && classOf(object).isA(objectClass); }

bool isA(REALobject object, std::string_view className) {
    if (!object) return false;
    for (const Class* c = &classOf(object); c; c = c->superOrNull())
        if (sameName(c->name(), className)) return true;
    return false;
}

void* instanceData(REALobject object) { return object + 1; }

Value& fieldOf(REALobject object, std::size_t index) {
    auto* fields = reinterpret_cast<Value*>(reinterpret_cast<char*>(object) + classOf(object).fieldsOffset());
    return fields[index];
}

} // namespace host
