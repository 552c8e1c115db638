// Member.hpp: the shape of nearly every function that a host calls.
//
// A direct member is one line that says what it is called, what it asks and what it answers:
//
//   REALstring mediaType(REALobject self) { return ask<String, "mediaType">(self); }
//   void setAppendable(REALobject self, bool value) { tell<"setAppendable:", Boolean>(self, value); }
//
// The guard, the empty result and the conversions come from the types. Anything else is written out inside
// guarded().
#pragma once

#include "plugin/bridge/Errors.hpp"
#include "plugin/bridge/Startup.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Variants.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/Guard.hpp"
#include "plugin/objc/Message.hpp"

namespace bridge {

// Runs the body inside the platform exception frame. What the platform raises becomes a host exception, and
// the result is then empty: 0, false, null.
template <class Body>
auto guarded(Body body) {
    using Result = decltype(body());
    if constexpr (std::is_void_v<Result>) {
        if (const objc::Id raised = objc::caughtIn(body)) RaiseNSExceptionQRX(raised);
    } else {
        Result result{}; // lives outside the frame, so it holds when the body is left by a raise
        if (const objc::Id raised = objc::caughtIn([&] { result = body(); })) {
            result = Result{};
            RaiseNSExceptionQRX(raised);
        }
        return result;
    }
}

// How a value crosses: `Platform` is what the message takes or answers, `Host` what the program sees.

struct String {
    using Platform = objc::Id;
    using Host = REALstring;
    static Host toHost(Platform value) { return NSStringRB(value); }
    static Platform toPlatform(Host value) { return NewNSString(value); }
};

// The one byte crosses as it is, in both directions.
struct Boolean {
    using Platform = objc::Boolean;
    using Host = REALboolean;
    static Host toHost(Platform value) { return static_cast<Host>(value); }
    static Platform toPlatform(Host value) { return value; }
};

// A number that crosses unchanged; `As` is the host's type where it differs only in sign.
template <class T, class As = T>
struct Number {
    using Platform = T;
    using Host = As;
    static Host toHost(Platform value) { return static_cast<Host>(value); }
    static Platform toPlatform(Host value) { return static_cast<Platform>(value); }
};

// A whole dictionary, converted at every crossing.
struct Dictionary {
    using Platform = objc::Id;
    using Host = REALdictionary;
    static Host toHost(Platform value) { return NSDictionaryRB(value); }
    static Platform toPlatform(Host value) { return NewNSDictionary(value); }
};

// A value of any kind; nil stays nil.
struct Variant {
    using Platform = objc::Id;
    using Host = REALvariant;
    static Host toHost(Platform value) { return NewVariantFromNSObject(value); }
    static Platform toPlatform(Host value) { return GetVariantAsNSObject(value); }
};

// A platform object that comes back as its wrapper, made by `wrap`, and goes over as what a wrapper holds.
template <REALobject (*wrap)(objc::Id)>
struct Wrapped {
    using Platform = objc::Id;
    using Host = REALobject;
    static Host toHost(Platform value) { return wrap(value); }
    static Platform toPlatform(Host value) { return frame::held(value); }
};

using Device = Wrapped<NewDRDeviceQRX>;
using MSF = Wrapped<NewDRMSFQRX>;
using Track = Wrapped<NewDRTrackQRX>;
using Burn = Wrapped<NewDRBurnQRX>;
using Erase = Wrapped<NewDREraseQRX>;
using File = Wrapped<NewDRFileQRX>;
using Folder = Wrapped<NewDRFolderQRX>;
using FSObject = Wrapped<NewDRFSObjectQRX>;

// Sends a message without arguments to the held object and answers what it answers. An empty slot answers
// empty: a message to nil does.
template <class Answer, objc::FixedString message>
typename Answer::Host ask(REALobject self) {
    return guarded(
        [self] { return Answer::toHost(objc::send<message, typename Answer::Platform>(frame::held(self))); });
}

// Sends a message without arguments and without a result.
template <objc::FixedString message>
void tell(REALobject self) {
    guarded([self] { objc::send<message, void>(frame::held(self)); });
}

// Sends a message with one argument and without a result.
template <objc::FixedString message, class Argument>
void tell(REALobject self, typename Argument::Host value) {
    guarded([self, value] { objc::send<message, void>(frame::held(self), Argument::toPlatform(value)); });
}

// Shared factories: platform start-up, then the class message with one argument, and the answer wrapped.
template <class Answer, objc::FixedString className, objc::FixedString message, class Argument>
typename Answer::Host make(typename Argument::Host value) {
    CocoaInit();
    return guarded(
        [value] { return Answer::toHost(objc::sendClass<className, message>(Argument::toPlatform(value))); });
}

// The class constructor and destructor of every wrapper class.
inline void constructWrapper(REALobject) { CocoaInit(); }

inline void destroyWrapper(REALobject self) {
    CocoaInit();
    guarded([self] { releaseHeld(self); });
}

} // namespace bridge
