// MyDRTrack.cpp: turns the burn engine's questions into events of a host object.
//
// The callbacks come on the burn engine's threads, and each calls its event there and then. What an event raises
// is neither caught nor guarded here: that is between host and platform.
#include "plugin/track/MyDRTrack.hpp"

#include "plugin/bridge/HostReference.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "plugin/objc/ClassBuilder.hpp"
#include "plugin/objc/Ownership.hpp"
#include "plugin/track/TrackEvents.hpp"

namespace track {

constinit decltype(events) events;

namespace {

using objc::Id, objc::Sel;

Id myDRTrackClass();

constexpr char hostField[] = "host";

REALobject& hostOf(Id self) { return *objc::ivar<REALobject>(self, hostField); }

objc::Class superclassUser() { return reinterpret_cast<objc::Class>(myDRTrackClass()); }

template <class Wanted, class Result>
Result answer(Id self, Result missing) {
    return frame::callEvent<Wanted>(events, hostOf(self), missing,
                                    [host = hostOf(self)](auto event) -> Result { return event(host); });
}

// ---- making and ending -------------------------------------------------------------------------------

// The field is set again because initialising may answer another object.
Id initWithInstance(Id self, Sel, REALobject host) {
    hostOf(self) = host;
    const Id made = objc::sendSuper<"initWithProducer:">(self, superclassUser(), self);
    if (made) hostOf(made) = host;
    return made;
}

// Deliberately drops a reference that was never taken: initWithInstance: only keeps the address. Programs and
// hosts have settled into this count, so neither side of it may be "mended" alone.
void dealloc(Id self, Sel) {
    if (const REALobject host = std::exchange(hostOf(self), nullptr)) REALUnlockObject(host);
    objc::sendSuper<"dealloc", void>(self, superclassUser());
}

// A track is never duplicated.
Id copyWithZone(Id self, Sel, void*) { return objc::retained(self); }

// ---- the producer's callbacks ------------------------------------------------------------------------
// The platform's own track argument is the receiver, so it is not passed on.

uint64_t estimateLengthOfTrack(Id self, Sel, Id) { return answer<EstimateLength>(self, uint64_t{0}); }

// The media dictionary is not passed on.
objc::Boolean prepareTrack(Id self, Sel, Id, Id burn, Id) {
    return frame::callEvent<Prepare>(events, hostOf(self), objc::Boolean{0},
                                     [&](auto event) -> objc::Boolean {
                                         const HostReference wrapper(NewDRBurnQRX(burn));
                                         return event(hostOf(self), wrapper.get());
                                     });
}

void cleanupTrackAfterBurn(Id self, Sel, Id) { frame::callEvent<CleanupAfterBurn>(events, hostOf(self)); }

// The block refers to the platform's buffer in place: what the event writes lands there. The flags cross in both
// directions, changed or not.
template <class Wanted, class Result>
Result onBuffer(Id self, Sel, Id, void* buffer, uint32_t length, uint64_t address, uint32_t blockSize,
                uint32_t* ioFlags) {
    return frame::callEvent<Wanted>(events, hostOf(self), Result{}, [&](auto event) -> Result {
        const HostReference block(REALPtrToMemoryBlock(buffer));
        uint32_t flags = *ioFlags;
        const Result result = event(hostOf(self), block.get(), length, address, blockSize, &flags);
        *ioFlags = flags;
        return result;
    });
}

objc::Boolean prepareTrackForVerification(Id self, Sel, Id) {
    return answer<PrepareForVerification>(self, objc::Boolean{0});
}

objc::Boolean cleanupTrackAfterVerification(Id self, Sel, Id) {
    return answer<CleanupAfterVerification>(self, objc::Boolean{0});
}

// ---- what the platform asks before it calls ----------------------------------------------------------

template <objc::FixedString selectorName, class Wanted>
bool isMissing(Sel asked, REALobject host) {
    return objc::sel_isEqual(asked, objc::selector<selectorName>()) && !events.of<Wanted>(host);
}

// Denies the callbacks whose events the host object lacks, so that the burn engine uses its own default there.
// Looked up at every question, also without a host object, which then implements nothing.
objc::Boolean respondsToSelector(Id self, Sel, Sel asked) {
    const REALobject host = hostOf(self);
    if (isMissing<"estimateLengthOfTrack:", EstimateLength>(asked, host) ||
        isMissing<"prepareTrack:forBurn:toMedia:", Prepare>(asked, host) ||
        isMissing<"cleanupTrackAfterBurn:", CleanupAfterBurn>(asked, host) ||
        isMissing<"producePreGapForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:", ProducePreGap>(
            asked, host) ||
        isMissing<"produceDataForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:", ProduceData>(asked,
                                                                                                     host) ||
        isMissing<"prepareTrackForVerification:", PrepareForVerification>(asked, host) ||
        isMissing<"verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:", VerifyPreGap>(asked,
                                                                                                     host) ||
        isMissing<"verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:", VerifyData>(asked,
                                                                                                 host) ||
        isMissing<"cleanupTrackAfterVerification:", CleanupAfterVerification>(asked, host))
        return 0;
    return objc::sendSuper<"respondsToSelector:", objc::Boolean>(self, superclassUser(), asked);
}

Id myDRTrackClass() {
    static const objc::Class made =
        objc::ClassBuilder("DRTrack", "MyDRTrack")
            .ivar<REALobject>(hostField)
            .method<"initWithInstance:", initWithInstance>()
            .method<"dealloc", dealloc>()
            .method<"copyWithZone:", copyWithZone>()
            .method<"estimateLengthOfTrack:", estimateLengthOfTrack>()
            .method<"prepareTrack:forBurn:toMedia:", prepareTrack>()
            .method<"cleanupTrackAfterBurn:", cleanupTrackAfterBurn>()
            .method<"producePreGapForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:",
                    onBuffer<ProducePreGap, uint32_t>>()
            .method<"produceDataForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:",
                    onBuffer<ProduceData, uint32_t>>()
            .method<"prepareTrackForVerification:", prepareTrackForVerification>()
            .method<"verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:",
                    onBuffer<VerifyPreGap, objc::Boolean>>()
            .method<"verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:",
                    onBuffer<VerifyData, objc::Boolean>>()
            .method<"cleanupTrackAfterVerification:", cleanupTrackAfterVerification>()
            .method<"respondsToSelector:", respondsToSelector>()
            .finish();
    return reinterpret_cast<Id>(made);
}

} // namespace

Id newProducerTrack(REALobject host) {
    return objc::send<"initWithInstance:">(objc::send<"alloc">(myDRTrackClass()), host);
}

} // namespace track
