// Guard.hpp: runs C++ inside the exception frame and hands back what the platform raised.
#pragma once

#include "plugin/objc/ExceptionFrame.h"
#include "plugin/objc/Runtime.hpp"

#include <type_traits>

namespace objc {

// Runs the body. Answers the NSException that the platform raised in it, or nil. C++ frames between the raise
// and this call run their destructors: the runtime's exceptions unwind by the same tables as C++'s.
template <class Body>
Id caughtIn(Body&& body) {
    using Plain = std::remove_reference_t<Body>;
    return static_cast<Id>(objcRunInExceptionFrame([](void* context) { (*static_cast<Plain*>(context))(); },
                                                   const_cast<void*>(static_cast<const void*>(&body))));
}

} // namespace objc
