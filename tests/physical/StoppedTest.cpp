// Burns that are aborted, fail or are killed: the medium is as before or openly without what was to be on it, never a good
// disc with wrong contents.
#include "Killed.hpp"

using namespace engine;

namespace {

constexpr size_t descriptorsEnd = 32 * blockSize;

// The image of a file system that says it is larger than what comes of it.
class BreaksOff final : public TrackProducer {
  public:
    size_t produce(uint64_t block, std::span<std::byte> buffer, ProduceFlags&) override {
        if (block >= 600) throw std::runtime_error("the source is gone");
        std::fill(buffer.begin(), buffer.end(), std::byte{0x55});
        if (block == 0) {
            std::memcpy(buffer.data() + 16 * blockSize, "\1CD001\1", 7);
            std::memcpy(buffer.data() + 16 * blockSize + 80, "\0\10\0\0", 4);
        }
        return std::min<size_t>(buffer.size(), 64 * blockSize);
    }
};

} // namespace

struct Stopped {
    const char* kind;
    bool appendable;
    bool hasOld;
    friend void PrintTo(const Stopped& each, std::ostream* out) { *out << each.kind; }
};

class PhysicalStopped : public PhysicalKilled, public ::testing::WithParamInterface<Stopped> {
  protected:
    BurnOptions options() const {
        BurnOptions options;
        options.overwrite = true;
        options.appendable = GetParam().appendable;
        return options;
    }
    void prepare() {
        insert(GetParam().kind, {{"capacity", 32768}});
        file("old.bin", noise(900'000, 2));
        if (GetParam().hasOld) EXPECT_DONE(burn(layout("OLD"), options()));
        file("noise.bin", noise(20'000'000));
        change("faults", {{"slowWrites", 10}});
    }
    std::string start() const {
        std::string bytes(descriptorsEnd, '\0');
        std::ifstream(first / "data", std::ios::binary)
            .read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return bytes;
    }
    void isNoDisc() {
        change("faults", Json::object());
        ASSERT_TRUE(drive()->closeTray().ok()); // what was seen before is forgotten
        EXPECT_EQ(start().find_first_not_of('\0'), std::string::npos);
        const MediumInfo after = medium();
        EXPECT_EQ(after.state, MediumState::Blank);
        EXPECT_EQ(after.sessionCount(), 0u);
        EXPECT_NE(run("xorriso -indev /dev/sr0 -toc").find("is blank"), std::string::npos);
    }
    void takesTheNextBurn() {
        fs::remove(source / "noise.bin");
        file("letter.txt", "Dear reader,\n");
        EXPECT_DONE(burn(layout("NEW"), options()));
        EXPECT_EQ(extracted("letter.txt"), "Dear reader,\n");
    }
};

TEST_P(PhysicalStopped, AbortLeavesNoDisc) {
    prepare();
    const int64_t before = state().value("writes", 0);
    BurnJob job(drive());
    ASSERT_TRUE(job.start(layout("NEW"), options()).ok());
    while (state().value("writes", 0) < before + 40 && !job.status().isFinal())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    job.abort();
    EXPECT_EQ(job.wait().error->code, ErrorCode::UserCanceled);
    waitUntilFree();
    isNoDisc();
    takesTheNextBurn();
}

TEST_P(PhysicalStopped, SourceThatFailsLeavesNoDisc) {
    prepare();
    change("faults", Json::object());
    Track track;
    ProducedTrack image;
    image.blocks = 2048;
    image.producer = std::make_shared<BreaksOff>();
    track.content = image;
    const int64_t before = state().value("writes", 0);
    const BurnStatus status = burn(Layout::ofTrack(track), options());
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::DataProduction) << status.error->message;
    EXPECT_GT(state().value("writes", 0), before + 10);
    isNoDisc();
    takesTheNextBurn();
}

TEST_P(PhysicalStopped, KilledProcessLeavesNoDisc) {
    prepare();
    killWhileItWrites(GetParam().appendable ? "appendable" : "closed");
    isNoDisc();
    takesTheNextBurn();
}

INSTANTIATE_TEST_SUITE_P(All, PhysicalStopped,
                         ::testing::Values(Stopped{"DVD+RW", false, true}, Stopped{"DVD+RW", true, true},
                                           Stopped{"DVD+RW", false, false}, Stopped{"DVD-RAM", false, true},
                                           Stopped{"BD-RE", false, true}, Stopped{"BD-RE", true, true}),
                         [](const auto& each) {
                             std::string name = each.param.kind;
                             for (char& letter : name)
                                 letter = letter == '+' ? 'p' : letter == '-' ? '_' : letter;
                             return name + (each.param.appendable ? "StaysOpen" : "") +
                                    (each.param.hasOld ? "OverAnother" : "");
                         });

// Behind a good session nothing changes until the new one is whole.
TEST_F(PhysicalTest, AbortedAppendingLeavesTheEarlierSession) {
    insert("DVD+RW");
    file("old.bin", noise(900'000, 2));
    BurnOptions options;
    options.appendable = true;
    EXPECT_DONE(burn(layout("OLD"), options));
    const MediumInfo before = medium();
    file("noise.bin", noise(20'000'000));
    change("faults", {{"slowWrites", 10}});
    const int64_t writes = state().value("writes", 0);
    BurnJob job(drive());
    ASSERT_TRUE(job.start(layout("NEW"), options).ok());
    while (state().value("writes", 0) < writes + 40 && !job.status().isFinal())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    job.abort();
    EXPECT_EQ(job.wait().error->code, ErrorCode::UserCanceled);
    waitUntilFree();
    change("faults", Json::object());
    EXPECT_EQ(medium().state, MediumState::Appendable);
    EXPECT_EQ(medium().blocksUsed, before.blocksUsed);
    EXPECT_EQ(medium().sessions.front().tracks.front().volumeName, "OLD");
    EXPECT_TRUE(extracted("old.bin") == noise(900'000, 2));
    fs::remove(source / "noise.bin");
    file("letter.txt", "Dear reader,\n");
    EXPECT_DONE(burn(layout("NEW"), options));
    EXPECT_EQ(extracted("letter.txt"), "Dear reader,\n");
    EXPECT_TRUE(extracted("old.bin") == noise(900'000, 2));
}

// The start is written when all else was read back, and is read back itself.
TEST_F(PhysicalTest, WrongBitInTheStartFailsTheBurn) {
    for (const bool verify : {true, false}) {
        insert("DVD+RW");
        ASSERT_TRUE(drive()->closeTray().ok());
        file("noise.bin", noise(900'000));
        change("faults", {{"flipOnWrite", 16}});
        BurnOptions options;
        options.verify = verify;
        const BurnStatus status = burn(layout("WRONG"), options);
        ASSERT_TRUE(status.error.has_value());
        EXPECT_EQ(status.error->code, ErrorCode::VerificationFailed) << status.error->message;
        EXPECT_NE(status.error->message.find("The start of the disc"), std::string::npos)
            << status.error->message;
        EXPECT_TRUE(medium().sessions.empty() || medium().sessions.front().tracks.front().volumeName.empty());
    }
}
