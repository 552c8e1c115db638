// FileProducers: a file's producer as the engine asks it.
#include "FileProducers.hpp"
#import "DRFilePrivate.h"
#import "ProducerCalls.h"
#include "WaitingThread.hpp"

#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace discrecording {
namespace {

constexpr uint32_t blockSize = 2048;

// What the producer raises becomes a C++ exception, which the engine reports with the file's name.
template <typename Body> void call(Body body) {
    std::unique_ptr<char, void (*)(void*)> reason(nullptr, std::free);
    callWhereWaited([&] {
        reason.reset(DRCallProducer([](void* context) { (*static_cast<Body*>(context))(); }, &body));
    });
    if (reason)
        throw std::runtime_error(reason.get());
}

class ObjectProducer final : public engine::FileProducer {
  public:
    ObjectProducer(DRFile* file, bool estimating)
        : file_([file retain]), producer_([[file producer] retain]), estimating_(estimating) {}

    ~ObjectProducer() override {
        try {
            call([this] {
                [producer_ release];
                [file_ release];
            });
        } catch (const std::exception&) {
            // what an object raises while it goes is nobody's
        }
    }

    bool prepare() override {
        bool isPrepared = true;
        if (!estimating_ && [producer_ respondsToSelector:@selector(prepareFileForBurn:)])
            call([&] { isPrepared = [producer_ prepareFileForBurn:file_]; });
        return isPrepared;
    }

    uint64_t size() override { return sizeOf(DRFileForkData); }
    uint64_t resourceSize() override { return sizeOf(DRFileForkResource); }
    size_t read(uint64_t offset, std::span<std::byte> buffer) override {
        return readFork(DRFileForkData, offset, buffer);
    }
    size_t readResource(uint64_t offset, std::span<std::byte> buffer) override {
        return readFork(DRFileForkResource, offset, buffer);
    }

    bool prepareAgain() override {
        bool isPrepared = true;
        if ([producer_ respondsToSelector:@selector(prepareFileForVerification:)])
            call([&] { isPrepared = [producer_ prepareFileForVerification:file_]; });
        return isPrepared;
    }

    void cleanup() override {
        if (!estimating_ && [producer_ respondsToSelector:@selector(cleanupFileAfterBurn:)])
            call([this] { [producer_ cleanupFileAfterBurn:file_]; });
    }

  private:
    uint64_t sizeOf(int32_t fork) {
        uint64_t bytes = 0;
        if ([producer_ respondsToSelector:@selector(calculateSizeOfFile:fork:estimating:)])
            call([&] { bytes = [producer_ calculateSizeOfFile:file_ fork:fork estimating:estimating_]; });
        return bytes;
    }

    size_t readFork(int32_t fork, uint64_t offset, std::span<std::byte> buffer) {
        const auto length = static_cast<uint32_t>(
            std::min<size_t>(buffer.size(), std::numeric_limits<int32_t>::max() / blockSize * blockSize));
        uint32_t count = 0;
        if ([producer_ respondsToSelector:@selector(produceFile:fork:intoBuffer:length:atAddress:blockSize:)])
            call([&] {
                count = [producer_ produceFile:file_
                                          fork:fork
                                    intoBuffer:buffer.data()
                                        length:length
                                     atAddress:offset
                                     blockSize:blockSize];
            });
        return count;
    }

    DRFile* file_;
    id producer_;
    bool estimating_;
};

} // namespace

std::shared_ptr<engine::FileProducer> producerOfFile(DRFile* file, bool estimating) {
    return std::make_shared<ObjectProducer>(file, estimating);
}

} // namespace discrecording
