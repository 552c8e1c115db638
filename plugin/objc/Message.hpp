// Message.hpp: sending messages, the only place that gives a method's code its signature.
//
//   Id text = send<"description">(object);
//   auto n  = send<"unsignedIntValue", std::uint32_t>(number);
//   Id half = send<"objectAtIndex:">(array, std::size_t{2});
//
// The result type and the argument types are those of the C++ call, so arguments must have the exact types
// that the method declares. A nil receiver answers zero, for numbers, structures and floating results alike.
#pragma once

#include "plugin/objc/Cells.hpp"

#include <algorithm>

namespace objc {

// The runtime's portable look-up: it answers a method's code, which is then called like any function. A runtime
// that only sends (the objc_msgSend family) would be served here and nowhere else.
extern "C" Imp objc_msg_lookup(Id receiver, Sel selector);
extern "C" Imp objc_msg_lookup_super(Super* super, Sel selector);

namespace detail {

constexpr std::size_t colons(std::string_view selectorName) {
    return static_cast<std::size_t>(std::ranges::count(selectorName, ':'));
}

template <class Result, class... Args>
using Method = Result (*)(Id, Sel, Args...);

} // namespace detail

template <FixedString name, class Result = Id, class... Args>
Result send(Id receiver, Args... args) {
    static_assert(detail::colons(name.view()) == sizeof...(Args),
                  "one argument for each colon of the selector");
    if (!receiver) return Result();
    const Sel sel = selector<name>();
    const Imp code = objc_msg_lookup(receiver, sel);
    return reinterpret_cast<detail::Method<Result, Args...>>(code)(receiver, sel, args...);
}

// Sends the message as the superclass of `cls` implements it; `cls` is the class whose method is sending.
template <FixedString name, class Result = Id, class... Args>
Result sendSuper(Id receiver, Class cls, Args... args) {
    static_assert(detail::colons(name.view()) == sizeof...(Args),
                  "one argument for each colon of the selector");
    if (!receiver) return Result();
    const Sel sel = selector<name>();
    Super super{receiver, class_getSuperclass(cls)};
    const Imp code = objc_msg_lookup_super(&super, sel);
    return reinterpret_cast<detail::Method<Result, Args...>>(code)(receiver, sel, args...);
}

// [[Name alloc] init...] and class messages read as `sendClass<"DRDevice", "devices">()`. No class, no
// answer.
template <FixedString className, FixedString name, class Result = Id, class... Args>
Result sendClass(Args... args) {
    return send<name, Result>(classNamed<className>(), args...);
}

template <FixedString className>
Id alloc() {
    return sendClass<className, "alloc">();
}

// True if the object is of that class or a subclass; false for nil and where there is no such class.
template <FixedString className>
bool isKindOf(Id object) {
    const Id cls = classNamed<className>();
    return cls && send<"isKindOfClass:", Boolean>(object, cls) != 0;
}

template <FixedString name>
bool respondsTo(Id object) {
    return send<"respondsToSelector:", Boolean>(object, selector<name>()) != 0;
}

} // namespace objc
