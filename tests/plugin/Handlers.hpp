// Handlers.hpp: event handlers of programs' classes, and whether a platform object answers for a callback.
#pragma once

#include "host/runtime/Class.hpp"
#include "plugin/objc/Message.hpp"

#include <string_view>
#include <utility>

namespace test {

using host::Arguments, host::Value;

// A member that implements an event.
inline host::MemberSpec on(std::string_view declaration, host::Body body) {
    host::MemberSpec spec;
    spec.kind = host::MemberKind::Event;
    spec.declaration = host::parseDeclaration(declaration);
    spec.body = std::move(body);
    return spec;
}

inline bool responds(objc::Id object, const char* selector) {
    return objc::send<"respondsToSelector:", objc::Boolean>(object, objc::sel_registerName(selector)) != 0;
}

} // namespace test
