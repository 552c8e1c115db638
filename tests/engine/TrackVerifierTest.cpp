// Reading back and comparing go on at the same time, piece by piece, and differences are told in order.
#include "TrackVerifier.hpp"
#include "Background.hpp"
#include "Failure.hpp"
#include "Fixture.hpp"

#include <condition_variable>
#include <mutex>

using namespace engine;
using namespace std::chrono_literals;

namespace {

constexpr size_t blockBytes = 2048, piece = 8 * blockBytes;

// A medium in memory that counts what was read. Of a pre-gap it gives two blocks at a time.
class Medium final : public MediumReader {
  public:
    Result<size_t> read(const TrackInfo& track, int64_t block, std::span<std::byte> buffer) override {
        return guarded([&]() -> size_t {
            if (block < 0) {
                const size_t left = static_cast<size_t>(-block) * blockBytes;
                const size_t count = std::min({buffer.size(), left, 2 * blockBytes});
                std::copy_n(std::as_bytes(std::span(preGap).last(left)).begin(), count, buffer.begin());
                return count;
            }
            const auto from = static_cast<size_t>(block) * blockBytes;
            if (from == damagedAt) fail(ErrorCode::MediaInvalid, "A scratch.", "here");
            if (inside.exchange(true)) ADD_FAILURE() << "two threads read";
            const size_t count = std::min(buffer.size(), from < bytes.size() ? bytes.size() - from : 0);
            std::copy_n(std::as_bytes(std::span(bytes)).begin() + static_cast<std::ptrdiff_t>(block * 2048),
                        count, buffer.begin());
            EXPECT_EQ(track.number, 1u);
            inside = false;
            const std::lock_guard lock(mutex);
            ++reads;
            changed.notify_all();
            return count;
        });
    }
    Result<std::vector<uint8_t>> cdText() override { return std::vector<uint8_t>(); }
    bool wasRead(int times) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, 10s, [&] { return reads >= times; });
    }

    std::string bytes, preGap;
    size_t damagedAt = SIZE_MAX;
    std::atomic<bool> inside{false};
    std::mutex mutex;
    std::condition_variable changed;
    int reads = 0;
};

// Gives the same bytes once more, and notes what it is shown.
class Again final : public TrackSource {
  public:
    explicit Again(std::string all) : bytes(std::move(all)) {}
    uint64_t prepare(const MediumInfo&, const ImagePlace&, const Signal&) override { return 0; }
    size_t readPreGap(std::span<std::byte>, uint64_t) override { return 0; }
    size_t read(std::span<std::byte> buffer) override {
        if (whenAsked) whenAsked();
        const size_t count = std::min({buffer.size(), bytes.size() - given, size_t{5000}});
        std::copy_n(std::as_bytes(std::span(bytes)).begin() + static_cast<ptrdiff_t>(given), count,
                    buffer.begin());
        given += count;
        return count;
    }
    bool endVerification() override {
        ++ends;
        return true;
    }
    bool verifyPreGap(uint64_t block, std::span<const std::byte> read) override {
        EXPECT_EQ(block, preGapFrom + preGap.size() / blockBytes);
        EXPECT_TRUE(received.empty()) << "the pre-gap comes first";
        preGap.append(reinterpret_cast<const char*>(read.data()), read.size());
        return true;
    }
    bool verify(uint64_t block, std::span<const std::byte> read) override {
        EXPECT_FALSE(read.empty());
        EXPECT_EQ(block, received.size() / blockBytes);
        received.append(reinterpret_cast<const char*>(read.data()), read.size());
        return true;
    }

    std::string bytes, preGap, received;
    uint64_t preGapFrom = 0; ///< the first block that is expected
    size_t given = 0;
    int ends = 0;
    std::function<void()> whenAsked;
};

class TrackVerifierTest : public EngineTest {
  protected:
    TrackVerifierTest() {
        medium->bytes = noise(5 * piece + 3 * blockBytes);
        source = std::make_shared<Again>(medium->bytes);
    }
    std::shared_ptr<TrackVerifier> verifier(Verification way) {
        TrackVerifier::Written written;
        written.track.startBlock = 100;
        written.track.blocks = source->bytes.size() / blockBytes;
        written.bytes = source->bytes.size();
        written.pieceBytes = piece;
        written.track.preGapBlocks = preGapBlocks;
        written.preGapBlocks = medium->preGap.size() / blockBytes;
        TrackSum sum;
        for (size_t from = 0; from < source->bytes.size(); from += piece) {
            sum.add(std::as_bytes(std::span(source->bytes))
                        .subspan(from, std::min(piece, source->bytes.size() - from)));
            written.sums.push_back(sum.value());
        }
        return std::make_shared<TrackVerifier>(written, signal, medium, source, way);
    }
    // What is found: "all" of it right, or the block and how.
    std::string found(Verification way) {
        const auto checked = verifier(way);
        std::vector<std::byte> scratch(piece);
        size_t bytes = 0;
        try {
            while (const size_t count = checked->next(scratch))
                bytes += count;
        } catch (const Mismatch& mismatch) {
            return std::to_string(mismatch.block) + ": " + mismatch.how + " after " +
                   std::to_string(bytes / piece);
        }
        return bytes == source->bytes.size() ? "all" : "less";
    }

    SignalRef signal = std::make_shared<Signal>();
    std::shared_ptr<Medium> medium = std::make_shared<Medium>();
    std::shared_ptr<Again> source;
    uint64_t preGapBlocks = 0;
};

TEST_F(TrackVerifierTest, findsTheFirstPieceThatDiffers) {
    for (const Verification way : {Verification::Checksum, Verification::ProduceAgain}) {
        source->given = 0;
        EXPECT_EQ(found(way), "all");
        medium->bytes[4 * piece + 1] ^= 1;
        medium->bytes[2 * piece + 5000] ^= 1;
        source->given = 0;
        EXPECT_EQ(found(way), "116: block 116 to 123 after 2");
        medium->bytes = source->bytes;
        medium->bytes.back() ^= 1;
        source->given = 0;
        EXPECT_EQ(found(way), "140: block 140 to 142 after 5");
        medium->bytes = source->bytes;
    }
    EXPECT_EQ(source->ends, 3) << "after each where the source was asked";
}

TEST_F(TrackVerifierTest, findsBytesThatChangedPlaces) {
    std::swap_ranges(medium->bytes.begin(), medium->bytes.begin() + piece, medium->bytes.begin() + piece);
    EXPECT_EQ(found(Verification::Checksum), "100: block 100 to 107 after 0");
}

TEST_F(TrackVerifierTest, tellsWhatCantBeReadBehindAllThatCan) {
    medium->damagedAt = 3 * piece;
    EXPECT_EQ(found(Verification::Checksum), "124: A scratch. here after 3");
    medium->bytes[piece] ^= 1;
    EXPECT_EQ(found(Verification::Checksum), "108: block 108 to 115 after 1") << "that comes first";
}

TEST_F(TrackVerifierTest, findsThatTheEndIsMissing) {
    for (const Verification way :
         {Verification::Checksum, Verification::ProduceAgain, Verification::ReceiveData}) {
        for (const auto& [left, what] :
             {std::pair(4 * piece + 2 * blockBytes, "134: 69632"), std::pair(4 * piece, "132: 65536"),
              std::pair(size_t{0}, "100: 0")}) {
            medium->bytes = source->bytes.substr(0, left);
            source->given = 0;
            source->received.clear();
            EXPECT_EQ(found(way), what + (" bytes read back of 88064 after " + std::to_string(left / piece)));
            if (way == Verification::ReceiveData) {
                EXPECT_TRUE(source->received == medium->bytes);
            }
        }
    }
}

TEST_F(TrackVerifierTest, showsThePreGapAndNothingBehindItAsOne) {
    medium->preGap = noise(11 * blockBytes, 2);
    preGapBlocks = 150; // a medium may keep less of it
    source->preGapFrom = 139;
    EXPECT_EQ(found(Verification::ReceiveData), "all");
    EXPECT_TRUE(source->preGap == medium->preGap);
    EXPECT_TRUE(source->received == source->bytes);
}

TEST_F(TrackVerifierTest, readsOnWhileTheSourceIsAsked) {
    source->whenAsked = [&] {
        if (source->given > 0) return;
        EXPECT_TRUE(medium->wasRead(3)) << "the medium waits for the source";
    };
    EXPECT_EQ(found(Verification::ProduceAgain), "all");
}

TEST_F(TrackVerifierTest, endsWhenTheBurnIsCanceled) {
    const auto checked = verifier(Verification::ProduceAgain);
    std::vector<std::byte> scratch(piece);
    EXPECT_EQ(checked->next(scratch), piece);
    signal->cancel();
    try {
        checked->next(scratch);
        ADD_FAILURE() << "not canceled";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.error().code, ErrorCode::UserCanceled);
    }
    EXPECT_EQ(source->ends, 0);
    EXPECT_TRUE(waitForBackground(10s));
}

// Whoever was asked to prepare is told of the end, whatever ended it.
TEST_F(TrackVerifierTest, letsTheSourceCleanUpWhateverIsThrown) {
    source->whenAsked = [] { throw std::bad_alloc(); };
    EXPECT_THROW(found(Verification::ProduceAgain), std::bad_alloc);
    EXPECT_EQ(source->ends, 1);
}

} // namespace
