// Cells.hpp: selectors and classes by name, looked up at first use and then kept.
//
// A cell is filled at its first use and not before. A selector exists as soon as it is asked for; a class may
// not, and then the answer is nil and the next use asks again. Two threads that race on the first use store the
// same value.
#pragma once

#include "plugin/objc/FixedString.hpp"
#include "plugin/objc/Runtime.hpp"

#include <atomic>

namespace objc {

template <FixedString name>
Sel selector() {
    static constinit std::atomic<Sel> cell{nullptr};
    Sel found = cell.load(std::memory_order_relaxed);
    if (!found) {
        found = sel_registerName(name.c_str());
        cell.store(found, std::memory_order_relaxed);
    }
    return found;
}

// The platform class of that name as an object that takes messages, or nil while there is none.
template <FixedString name>
Id classNamed() {
    static constinit std::atomic<Class> cell{nullptr};
    Class found = cell.load(std::memory_order_relaxed);
    if (!found) {
        found = objc_getClass(name.c_str());
        if (found) cell.store(found, std::memory_order_relaxed);
    }
    return reinterpret_cast<Id>(found);
}

} // namespace objc
