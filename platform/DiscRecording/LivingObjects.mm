// LivingObjects: objects that another thread may look for without keeping them alive.
#include "LivingObjects.hpp"

#include <map>
#include <mutex>

namespace discrecording {
namespace {

struct Living {
    std::mutex mutex;
    std::map<uint64_t, id> objects;
    uint64_t last = 0;
};

// Never destroyed: objects may go while the process ends.
Living& living() {
    static Living& all = *new Living;
    return all;
}

} // namespace

uint64_t enterLiving(id object) {
    const std::lock_guard lock(living().mutex);
    living().objects.emplace(++living().last, object);
    return living().last;
}

// Counting down and forgetting are one step: in between another thread could find what is about to go.
bool releaseLiving(uint64_t number, id object) {
    const std::lock_guard lock(living().mutex);
    if (!NSDecrementExtraRefCountWasZero(object))
        return false;
    living().objects.erase(number);
    return true;
}

id livingObject(uint64_t number) {
    const std::lock_guard lock(living().mutex);
    const auto found = living().objects.find(number);
    return found == living().objects.end() ? nil : [[found->second retain] autorelease];
}

} // namespace discrecording
