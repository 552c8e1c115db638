// MyDRFile.cpp: turns the burn engine's questions about a file into events of a host object.
//
// The callbacks come on the burn engine's threads, and each calls its event there and then. What an event raises
// is neither caught nor guarded here: that is between host and platform.
#include "plugin/fs/MyDRFile.hpp"

#include "plugin/bridge/HostReference.hpp"
#include "plugin/fs/FileEvents.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"

#include <utility>

namespace fs {

constinit decltype(events) events;

namespace {

using objc::Id, objc::Sel;

objc::Class myDRFileClass();

constexpr char hostField[] = "host";

REALobject& hostOf(Id self) { return *objc::ivar<REALobject>(self, hostField); }

// ---- copying and ending ----------------------------------------------------------------------------------

void dealloc(Id self, Sel) {
    if (const REALobject host = std::exchange(hostOf(self), nullptr)) REALUnlockObject(host);
    objc::sendSuper<"dealloc", void>(self, myDRFileClass());
}

// A file is never duplicated.
Id copyWithZone(Id self, Sel, void*) { return objc::retained(self); }

// ---- the producer's callbacks ----------------------------------------------------------------------------
// The platform's own file argument is the receiver, so it is not passed on. What an event answers goes over as it
// is: a size of 0 stays 0, and so does a count below the buffer's length.

// This one and the next take no reference to the host object for the call, the others do. The difference is
// deliberate and kept: hosts have seen these counts for as long as there are producers.
template <class Wanted>
auto eventOf(REALobject host) {
    return host ? events.of<Wanted>(host) : nullptr;
}

uint64_t calculateSizeOfFile(Id self, Sel, Id, int32_t fork, objc::Boolean estimating) {
    const REALobject host = hostOf(self);
    const auto event = eventOf<CalculateSize>(host);
    return event ? event(host, fork, REALboolean{estimating}) : 0;
}

objc::Boolean prepareFileForBurn(Id self, Sel, Id) {
    const REALobject host = hostOf(self);
    const auto event = eventOf<PrepareForBurn>(host);
    return event ? objc::Boolean{event(host)} : objc::Boolean{0};
}

// The block refers to the platform's buffer in place, so what the event writes lands there without a copy. It is
// made once the host object is held, and gone before that is let go.
uint32_t produceFile(Id self, Sel, Id, int32_t fork, void* buffer, uint32_t length, uint64_t address,
                     uint32_t blockSize) {
    const REALobject host = hostOf(self);
    return frame::callEvent<Produce>(events, host, uint32_t{0}, [=](auto event) {
        const HostReference block(REALPtrToMemoryBlock(buffer));
        return event(host, fork, block.get(), length, address, blockSize);
    });
}

objc::Boolean prepareFileForVerification(Id self, Sel, Id) {
    const REALobject host = hostOf(self);
    return frame::callEvent<PrepareForVerification>(events, host, objc::Boolean{0},
                                                    [=](auto event) { return objc::Boolean{event(host)}; });
}

void cleanupFileAfterBurn(Id self, Sel, Id) { frame::callEvent<CleanupAfterBurn>(events, hostOf(self)); }

// ---- what the platform asks before it calls --------------------------------------------------------------

template <objc::FixedString selectorName, class Wanted>
bool isMissing(Sel asked, REALobject host) {
    return objc::sel_isEqual(asked, objc::selector<selectorName>()) && !events.of<Wanted>(host);
}

// Denies the callbacks whose events the host object lacks, so that the burn engine uses its own default there. A
// file without a host object denies none: deliberately not as MyDRTrack, which then looks its events up too.
objc::Boolean respondsToSelector(Id self, Sel, Sel asked) {
    const REALobject host = hostOf(self);
    if (host && (isMissing<"calculateSizeOfFile:fork:estimating:", CalculateSize>(asked, host) ||
                 isMissing<"prepareFileForBurn:", PrepareForBurn>(asked, host) ||
                 isMissing<"produceFile:fork:intoBuffer:length:atAddress:blockSize:", Produce>(asked, host) ||
                 isMissing<"prepareFileForVerification:", PrepareForVerification>(asked, host) ||
                 isMissing<"cleanupFileAfterBurn:", CleanupAfterBurn>(asked, host)))
        return 0;
    return objc::sendSuper<"respondsToSelector:", objc::Boolean>(self, myDRFileClass(), asked);
}

objc::Class myDRFileClass() {
    static const objc::Class made =
        objc::ClassBuilder("DRFile", "MyDRFile")
            .ivar<REALobject>(hostField)
            .method<"dealloc", dealloc>()
            .method<"copyWithZone:", copyWithZone>()
            .method<"calculateSizeOfFile:fork:estimating:", calculateSizeOfFile>()
            .method<"prepareFileForBurn:", prepareFileForBurn>()
            .method<"produceFile:fork:intoBuffer:length:atAddress:blockSize:", produceFile>()
            .method<"prepareFileForVerification:", prepareFileForVerification>()
            .method<"cleanupFileAfterBurn:", cleanupFileAfterBurn>()
            .method<"respondsToSelector:", respondsToSelector>()
            .finish();
    return made;
}

} // namespace

objc::Id newProducedFile(REALobject host) {
    const Id made = objc::send<"alloc">(reinterpret_cast<Id>(myDRFileClass()));
    if (!made) return nullptr;
    hostOf(made) = host;
    REALLockObject(host);
    return made;
}

} // namespace fs
