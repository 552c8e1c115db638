// ProducerBridge: an object that produces a track's data, as the engine asks it.
#include "ProducerBridge.hpp"
#import "DRDevicePrivate.h"
#include "EngineThread.hpp"
#include "LivingObjects.hpp"
#include "PathStrings.hpp"
#import "Raised.h"
#include "TrackUse.hpp"
#include "WaitingThread.hpp"

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace discrecording {
namespace {

// Runs what is the producer's; answers what it raised.
template <typename Body> std::optional<std::string> raisedByProducer(Body body) {
    std::optional<std::string> reason;
    callWhereWaited([&] {
        const EngineThread thread;
        if (NSString* raised = raisedBy(body); raised != nil)
            reason = pathnames::bytesOf(raised);
    });
    return reason;
}

class ProducerBridge final : public engine::TrackProducer {
  public:
    ProducerBridge(DRTrack* track, id producer, const engine::ProducedTrack& produced,
                   ProducedFor producedFor)
        : track_(track), producer_(producer),
          bits_(produced.subchannel == engine::SubchannelForm::None ? 0 : DRFlagSubchannelDataRequested),
          blockBytes_(static_cast<uint32_t>(engine::bytesPerBlock(produced.form, produced.subchannel))),
          for_(std::move(producedFor)) {}

    ~ProducerBridge() override { letGo(); }

    // Its answer stands in the track: preparing may have changed the length.
    bool prepare(uint64_t& blocks, const engine::MediumInfo&) override {
        keep();
        const bool prepared = ask(@selector(prepareTrack:forBurn:toMedia:), true, [&] {
            return [producer_ prepareTrack:track_
                                   forBurn:livingObject(for_.burn)
                                   toMedia:[DRDeviceOfDrive(for_.drive) status]] != NO;
        });
        const EngineThread thread;
        if (prepared)
            blocks = [[track_ length] sectors];
        return prepared;
    }

    bool producesPreGap() override {
        return responds(@selector(producePreGapForTrack:intoBuffer:length:atAddress:blockSize:ioFlags:));
    }

    size_t producePreGap(uint64_t block, std::span<std::byte> buffer, engine::ProduceFlags& flags) override {
        return produced(flags, [&](uint32_t* bits) {
            return [producer_ producePreGapForTrack:track_
                                         intoBuffer:reinterpret_cast<char*>(buffer.data())
                                             length:static_cast<uint32_t>(buffer.size())
                                          atAddress:block
                                          blockSize:blockBytes_
                                            ioFlags:bits];
        });
    }

    size_t produce(uint64_t block, std::span<std::byte> buffer, engine::ProduceFlags& flags) override {
        return produced(flags, [&](uint32_t* bits) {
            return [producer_ produceDataForTrack:track_
                                       intoBuffer:reinterpret_cast<char*>(buffer.data())
                                           length:static_cast<uint32_t>(buffer.size())
                                        atAddress:block
                                        blockSize:blockBytes_
                                          ioFlags:bits];
        });
    }

    bool prepareForVerification() override {
        return ask(@selector(prepareTrackForVerification:), true,
                   [&] { return [producer_ prepareTrackForVerification:track_] != NO; });
    }

    bool verifyPreGap(uint64_t block, std::span<const std::byte> bytes) override {
        return ask(@selector(verifyPreGapForTrack:inBuffer:length:atAddress:blockSize:ioFlags:), true, [&] {
            uint32_t bits = bits_;
            return [producer_ verifyPreGapForTrack:track_
                                          inBuffer:reinterpret_cast<const char*>(bytes.data())
                                            length:static_cast<uint32_t>(bytes.size())
                                         atAddress:block
                                         blockSize:blockBytes_
                                           ioFlags:&bits] != NO;
        });
    }

    // Who wants to see the data and has no way to can't find it right.
    bool verify(uint64_t block, std::span<const std::byte> bytes) override {
        return ask(@selector(verifyDataForTrack:inBuffer:length:atAddress:blockSize:ioFlags:), false, [&] {
            uint32_t bits = bits_;
            return [producer_ verifyDataForTrack:track_
                                        inBuffer:reinterpret_cast<const char*>(bytes.data())
                                          length:static_cast<uint32_t>(bytes.size())
                                       atAddress:block
                                       blockSize:blockBytes_
                                         ioFlags:&bits] != NO;
        });
    }

    bool cleanupAfterVerification() override {
        return ask(@selector(cleanupTrackAfterVerification:), true,
                   [&] { return [producer_ cleanupTrackAfterVerification:track_] != NO; });
    }

    void cleanupAfterBurn() override {
        if (!isKept_)
            return; // it never began, because the producer is at work for somebody else
        struct Last {
            ProducerBridge& bridge;
            ~Last() { bridge.letGo(); }
        } const last{*this};
        ask(@selector(cleanupTrackAfterBurn:), true, [&] {
            [producer_ cleanupTrackAfterBurn:track_];
            return true;
        });
    }

  private:
    // From preparing to the end of cleaning up: the engine walks away from a producer that sleeps, and cleans up when
    // the burn that keeps the track may be gone.
    void keep() {
        if (isKept_)
            return;
        beginTrackWork(track_, work());
        isKept_ = true;
        [track_ retain];
        [producer_ retain];
    }
    void letGo() {
        if (!std::exchange(isKept_, false))
            return;
        endTrackWork(track_, work());
        raisedByProducer([&] {
            [producer_ release];
            [track_ release];
        });
    }

    TrackWork work() const noexcept { return for_.burn == 0 ? TrackWork::SpeedTest : TrackWork::Burn; }

    bool responds(SEL selector) const {
        bool answer = false;
        raisedByProducer([&] { answer = [producer_ respondsToSelector:selector] != NO; });
        return answer;
    }

    // What the method answers, or `otherwise` where the producer has none. What it raises is a failure whose
    // detail is what was raised.
    template <typename Answer, typename Call>
    Answer ask(SEL selector, Answer otherwise, const Call& call) const {
        Answer answer = otherwise;
        const auto raised = raisedByProducer([&] {
            if ([producer_ respondsToSelector:selector])
                answer = call();
        });
        if (raised)
            throw std::runtime_error(*raised);
        return answer;
    }

    template <typename Call> size_t produced(engine::ProduceFlags& flags, const Call& call) const {
        uint32_t bits = bits_;
        size_t count = 0;
        if (const auto raised = raisedByProducer([&] { count = call(&bits); }))
            throw std::runtime_error(*raised);
        flags.noMoreData = (bits & DRFlagNoMoreData) != 0;
        return count;
    }

    DRTrack* track_;
    id producer_;
    const uint32_t bits_, blockBytes_; // what the track says later is not this burn's
    bool isKept_ = false;
    const ProducedFor for_;
};

} // namespace

std::shared_ptr<engine::TrackProducer>
makeProducer(DRTrack* track, id producer, const engine::ProducedTrack& produced, ProducedFor producedFor) {
    return std::make_shared<ProducerBridge>(track, producer, produced, std::move(producedFor));
}

} // namespace discrecording
