// Object.cpp: making and destroying objects.
#include "host/runtime/Object.hpp"

#include "host/runtime/Class.hpp"
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Lock.hpp"
#include "host/runtime/Pending.hpp"

#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>
#include <new>
#include <optional>
#include <vector>

namespace host {
namespace {

// The header's words.
enum { kClassWord, kCountWord, kElementsWord, kMarkWord };

// Stand in the last word: the object lives; it lives, and its memory outlives it. Neither: it has ended.
const char kAlive = 0, kOutlived = 0;

// Memory of ended objects that outlives them. The oldest is given up when there is too much of it.
constexpr std::size_t kMostKept = 65536;

// While destructors run the count is far from 0, so that what they hold and drop does not destroy a second
// time.
constexpr intptr_t kDying = intptr_t{1} << (sizeof(intptr_t) * 8 - 2);

// The compiler's own atomics: a header word is a pointer by type, and here a number.
uintptr_t addToCount(REALobject object, intptr_t change) {
    return reinterpret_cast<uintptr_t>(
        __atomic_fetch_add(&object->header[kCountWord], change, __ATOMIC_ACQ_REL));
}

// Drops a reference that is not the last one; false when it is.
bool dropsOneOfMany(REALobject object) {
    auto* word = &object->header[kCountWord];
    void* count = __atomic_load_n(word, __ATOMIC_RELAXED);
    for (;;) {
        const auto number = reinterpret_cast<intptr_t>(count);
        if (number == 1) return false;
        if (__atomic_compare_exchange_n(word, &count, reinterpret_cast<void*>(number - 1), true,
                                        __ATOMIC_ACQ_REL, __ATOMIC_RELAXED))
            return true;
    }
}

// The last reference is given up in one step with the count's change to dying, so that nobody who takes and drops
// one in between ends the object a second time.
bool dropsTheLast(REALobject object) {
    auto* word = &object->header[kCountWord];
    void* count = __atomic_load_n(word, __ATOMIC_RELAXED);
    for (;;) {
        const auto number = reinterpret_cast<intptr_t>(count);
        void* next = reinterpret_cast<void*>(number == 1 ? kDying : number - 1);
        if (__atomic_compare_exchange_n(word, &count, next, true, __ATOMIC_ACQ_REL, __ATOMIC_RELAXED))
            return number == 1;
    }
}

void freeOrKeep(REALobject object, bool isOutlived) {
    if (!isOutlived) return std::free(object);
    static auto& mutex = *new std::mutex;
    static auto& kept = *new std::deque<REALobject>;
    const std::lock_guard guard(mutex);
    kept.push_back(object);
    if (kept.size() <= kMostKept) return;
    std::free(kept.front());
    kept.pop_front();
}

void setInitialFields(Class& objectClass, REALobject object) {
    for (const auto& member : objectClass.members())
        if (member->field != kNoField && !member->shared)
            fieldOf(object, member->field) =
                member->value.isNil() ? Value::defaultFor(member->declaration.result) : member->value;
}

void runDestructor(const Class& objectClass, REALobject object) {
    if (!objectClass.destructor()) return;
    PendingAside aside; // a destructor runs at any time, also while an exception is on its way
    try {
        objectClass.destructor()(object);
    } catch (const Exception& exception) {
        setStrayException(exception.object());
    }
}

void destroy(REALobject object) {
    Class& objectClass = classOf(object);
    const void* mark = __atomic_exchange_n(&object->header[kMarkWord], nullptr, __ATOMIC_ACQ_REL);
    for (const Class* c = &objectClass; c; c = c->superOrNull())
        runDestructor(*c, object);
    for (std::size_t i = objectClass.shape().fieldCount; i-- > 0;)
        fieldOf(object, i).~Value();
    for (const Class* c = &objectClass; c; c = c->superOrNull())
        if (c->nativeDestructor()) c->nativeDestructor()(object);
    if (!isInForeignCall()) strayPendingException();
    --objectClass.liveCount;
    freeOrKeep(object, mark == &kOutlived);
}

} // namespace

REALobject newObject(Class& objectClass) {
    const ClassShape& shape = objectClass.shape();
    auto* object = static_cast<REALobject>(std::calloc(1, shape.objectSize));
    if (!object) throw std::bad_alloc();
    object->header[kClassWord] = &objectClass;
    object->header[kCountWord] = reinterpret_cast<void*>(uintptr_t{1});
    object->header[kMarkWord] = const_cast<char*>(shape.isKeptByAddress ? &kOutlived : &kAlive);
    ++objectClass.liveCount;
    for (std::size_t i = 0; i < shape.fieldCount; ++i)
        new (&fieldOf(object, i)) Value();
    Ref guard = Ref::adopt(object); // an initializer may raise
    for (Class* c : shape.chain)
        if (c->nativeConstructor()) c->nativeConstructor()(object);
    for (Class* c : shape.chain) {
        setInitialFields(*c, object);
        if (c->initializer()) c->initializer()(object);
    }
    return guard.detach();
}

void retain(REALobject object) {
    if (object) addToCount(object, 1);
}

void release(REALobject object) {
    if (!object || dropsOneOfMany(object)) return;
    // The lock comes before the last reference goes, not only before the destructors: else who holds it would find
    // in a table an object that can't be saved any more. Found in time it lives on, and this was not the last.
    std::optional<Locked> lock;
    if (classOf(object).shape().endsUnderLock) lock.emplace();
    if (dropsTheLast(object)) destroy(object);
}

void outlive(REALobject object) {
    void* alive = const_cast<char*>(&kAlive);
    __atomic_compare_exchange_n(&object->header[kMarkWord], &alive, const_cast<char*>(&kOutlived), false,
                                __ATOMIC_ACQ_REL, __ATOMIC_RELAXED);
}

bool hasEnded(REALobject object) { return !__atomic_load_n(&object->header[kMarkWord], __ATOMIC_ACQUIRE); }

Ref Ref::borrowAlive(REALobject object) {
    if (!object || hasEnded(object)) return {};
    auto* word = &object->header[kCountWord];
    void* count = __atomic_load_n(word, __ATOMIC_RELAXED);
    for (;;) {
        const auto number = reinterpret_cast<intptr_t>(count);
        if (number >= kDying / 2) return {};
        if (__atomic_compare_exchange_n(word, &count, reinterpret_cast<void*>(number + 1), true,
                                        __ATOMIC_ACQ_REL, __ATOMIC_RELAXED))
            return adopt(object);
    }
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
    auto* fields =
        reinterpret_cast<Value*>(reinterpret_cast<char*>(object) + classOf(object).shape().fieldsOffset);
    return fields[index];
}

} // namespace host
