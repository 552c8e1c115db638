// Which objects of a program's classes live. Reference counts alone never free objects that hold each other.
#include "LiveObjects.hpp"

#include "host/runtime/Class.hpp"
#include "host/runtime/Exceptions.hpp"
#include "host/runtime/Invoke.hpp"

#include <mutex>
#include <unordered_set>
#include <vector>

namespace host::basic {

namespace {

std::mutex mutex;
std::unordered_set<REALobject>& alive() {
    static std::unordered_set<REALobject> objects;
    return objects;
}

// What has none can't let go of anybody. It is known all the same as long as it lives, such as a produced file: that and the
// platform's object for it hold each other.
bool hasFields(REALobject object) { return classOf(object).shape().fieldCount > 0; }

} // namespace

void noteAlive(REALobject object) {
    const std::lock_guard guard(mutex);
    alive().insert(object);
}

void noteGone(REALobject object) {
    const std::lock_guard guard(mutex);
    alive().erase(object);
}

void dropCycles() {
    std::vector<Ref> left;
    {
        const std::lock_guard guard(mutex);
        for (REALobject object : alive())
            if (hasFields(object)) left.push_back(Ref::borrow(object));
    }
    std::vector<Value> fields; // dropped only when no object refers to another any more
    for (const Ref& object : left) {
        const size_t count = classOf(object.get()).shape().fieldCount;
        for (size_t i = 0; i < count; ++i)
            fields.push_back(std::exchange(fieldOf(object.get(), i), Value()));
    }
    fields.clear();
}

void clearSharedProperties() {
    for (Class* one : allClasses()) {
        if (!one->isBasic()) continue;
        for (const auto& member : one->members()) {
            if (!member->shared || member->kind != MemberKind::Property || member->body ||
                member->value.isNil())
                continue;
            try {
                callSetter(*member, nullptr, {}, Value::defaultFor(member->declaration.result));
            } catch (const Exception&) { // a destructor's exception; the program is over
            }
        }
    }
}

} // namespace host::basic
