// DRMSFQRX.cpp: a disc address or length in minutes, seconds and frames.
//
// All arithmetic, parsing and formatting is the platform's. Values never change once stored; adding and
// subtracting make new objects.
#include "plugin/bridge/Member.hpp"
#include "plugin/bridge/Registry.hpp"
#include "plugin/frame/ClassTables.hpp"
#include "plugin/frame/Classes.hpp"

namespace {

using namespace bridge;

// The program's integer is 32 bits with a sign, the platform's count 32 bits without.
using Count = Number<uint32_t, int32_t>;

// A value constructor fills the slot once, with the reference that the allocation gave, and registers the
// pair.
template <class Make>
void construct(REALobject self, Make make) {
    if (frame::slot(self)) return raiseConstructorCalledTooOften();
    guarded([&] {
        frame::slot(self) = make();
        RegisterInstance(self, frame::slot(self));
    });
}

void initWithFrames(REALobject self, int32_t frames) {
    construct(self, [frames] {
        return objc::send<"initWithFrames:">(objc::alloc<"DRMSF">(), Count::toPlatform(frames));
    });
}

void initWithString(REALobject self, REALstring s) {
    construct(self, [s] { return objc::send<"initWithString:">(objc::alloc<"DRMSF">(), NewNSString(s)); });
}

// Deliberately no test of the slot in these five: a message to nil answers 0, or nil for the description.
int32_t minutes(REALobject self) { return ask<Count, "minutes">(self); }
int32_t seconds(REALobject self) { return ask<Count, "seconds">(self); }
int32_t frames(REALobject self) { return ask<Count, "frames">(self); }
int32_t sectors(REALobject self) { return ask<Count, "sectors">(self); }
REALstring description(REALobject self) { return ask<String, "description">(self); }

// Both sides must hold a value; anything else answers nil without an exception.
template <objc::FixedString message>
REALobject combined(REALobject self, REALobject value) {
    return guarded([=]() -> REALobject {
        const objc::Id own = frame::held(self), other = frame::held(value);
        return own && other ? NewDRMSFQRX(objc::send<message>(own, other)) : nullptr;
    });
}

REALobject msfByAdding(REALobject self, REALobject value) { return combined<"msfByAdding:">(self, value); }
REALobject msfBySubtracting(REALobject self, REALobject value) {
    return combined<"msfBySubtracting:">(self, value);
}

// A nil argument is compared by the platform. True only when the answer's low byte is 1.
bool isEqualToMSF(REALobject self, REALobject value) {
    return guarded([=] {
        return (objc::send<"isEqualToMSF:", objc::Boolean>(frame::held(self), frame::held(value)) & 0xFF) ==
               1;
    });
}

REALstring descriptionWithFormat(REALobject self, REALstring format) {
    return guarded([=]() -> REALstring {
        const objc::Id own = frame::held(self);
        return own ? NSStringRB(objc::send<"descriptionWithFormat:">(own, NewNSString(format))) : nullptr;
    });
}

REALobject msfWithFrames(int32_t frames) { return make<MSF, "DRMSF", "msfWithFrames:", Count>(frames); }
REALobject msfWithString(REALstring s) { return make<MSF, "DRMSF", "msfWithString:", String>(s); }

REALobject msf() {
    CocoaInit();
    return guarded([] { return NewDRMSFQRX(objc::sendClass<"DRMSF", "msf">()); });
}

void DRMSFConstructor(REALobject self) { constructWrapper(self); }
void DRMSFDestructor(REALobject self) { destroyWrapper(self); }

using frame::method, frame::sharedMethod;

REALmethodDefinition methods[] = {
    method<"Constructor(frames as integer)", initWithFrames>(),
    method<"Constructor(s as string)", initWithString>(),
    // The ordinary flags, deliberately: a program may make an empty value, which answers 0 and nil for ever.
    frame::placeholderConstructor(kREALMemberFlags),
    method<"minutes as integer", minutes>(),
    method<"seconds as integer", seconds>(),
    method<"frames as integer", frames>(),
    method<"sectors as integer", sectors>(),
    method<"description as string", description>(),
    method<"msfByAdding(value as DRMSFQRX) as DRMSFQRX", msfByAdding>(),
    method<"msfBySubtracting(value as DRMSFQRX) as DRMSFQRX", msfBySubtracting>(),
    method<"isEqualToMSF(value as DRMSFQRX) as boolean", isEqualToMSF>(),
    method<"descriptionWithFormat(format as string) as string", descriptionWithFormat>(),
};

REALmethodDefinition sharedMethods[] = {
    sharedMethod<"msfWithFrames(frames as integer) as DRMSFQRX", msfWithFrames>(),
    sharedMethod<"msfWithString(s as string) as DRMSFQRX", msfWithString>(),
    sharedMethod<"msf as DRMSFQRX", msf>(),
};

} // namespace

REALclassDefinition DRMSFQRXClass = frame::makeClass({.name = "DRMSFQRX",
                                                      .dataSize = frame::platformObjectSize,
                                                      .constructor = DRMSFConstructor,
                                                      .destructor = DRMSFDestructor,
                                                      .methods = methods,
                                                      .sharedMethods = sharedMethods});
