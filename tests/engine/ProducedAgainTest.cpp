// Files whose producers are asked a second time when the disc is verified, and told when all is over.
#include "Fixture.hpp"

#include <cstring>
#include <functional>
#include <mutex>
#include <stdexcept>

using namespace engine;

namespace {

// Gives bytes that depend on its name and their place, and notes what all of them are asked.
class Maker : public FileProducer {
  public:
    Maker(std::string name, uint64_t bytes, std::string& calls)
        : name_(std::move(name)), bytes_(bytes), calls_(calls) {}

    bool prepare() override {
        next_ = 0;
        isAgain_ = false;
        return true;
    }
    uint64_t size() override { return bytes_; }
    size_t read(uint64_t offset, std::span<std::byte> buffer) override {
        if (offset != next_) note(name_ + "!");
        if (offset == 0) note(name_);
        if (isAgain_ && fault) fault();
        const size_t count = std::min(buffer.size(), most);
        for (size_t i = 0; i < count; ++i)
            buffer[i] = at(offset + i);
        if (isAgain_ && spoilt >= offset && spoilt < offset + count)
            buffer[static_cast<size_t>(spoilt - offset)] ^= std::byte{1};
        next_ = offset + count;
        return count;
    }
    bool prepareAgain() override {
        note("again:" + name_);
        isAgain_ = true;
        next_ = 0;
        if (prepareFault) prepareFault();
        return isPrepared;
    }
    void cleanup() override {
        note("end:" + name_);
        if (endFault) endFault();
    }

    size_t most = SIZE_MAX;
    uint64_t spoilt = UINT64_MAX; ///< a byte that is another one the second time
    bool isPrepared = true;
    std::function<void()> fault, prepareFault, endFault;

  private:
    std::byte at(uint64_t offset) const {
        return static_cast<std::byte>((offset * 2654435761u >> 8) + static_cast<uint8_t>(name_[0]));
    }
    void note(const std::string& call) {
        static std::mutex mutex;
        const std::lock_guard lock(mutex);
        calls_ += call + ' ';
    }

    std::string name_;
    uint64_t bytes_, next_ = 0;
    std::string& calls_;
    bool isAgain_ = false;
};

class ProducedAgainTest : public EngineTest {
  protected:
    std::shared_ptr<Maker> add(const std::string& name, uint64_t bytes) {
        const auto made = std::make_shared<Maker>(name, bytes, calls);
        children.push_back(Content::produced(name, made));
        return made;
    }
    Layout disc(Verification way, uint8_t filesystems = filesystem::iso9660 | filesystem::joliet) {
        Layout what = layoutOf(Content::folder("Disc", children));
        what.sessions[0].tracks[0].verification = way;
        std::get<DataTrack>(what.sessions[0].tracks[0].content).filesystems = filesystems;
        return what;
    }
    BurnStatus verified(Verification way = Verification::ProduceAgain, BurnOptions options = {}) {
        fs::remove_all(drivePath());
        return burn(makeDrive(), disc(way), options);
    }
    // The block in which the file of that name begins.
    uint64_t blockOf(const std::string& name) {
        const std::string disc = bytesOf(image());
        const size_t at = disc.find(name + ".;1");
        EXPECT_NE(at, disc.npos);
        uint32_t block = 0;
        std::memcpy(&block, disc.data() + at - 33 + 2, sizeof block);
        return block;
    }

    std::string calls;
    std::vector<Content> children;
};

TEST_F(ProducedAgainTest, eachIsAskedOnceInTheOrderOfTheBurn) {
    write("real/r", noise(70'000));
    add("c", 3'000'000)->most = 100'001; // over several pieces, in parts that don't fit them
    children.push_back(Content::file("d", noise(5000)));
    add("a", 1);
    add("b", 2048);
    add("e", 0);
    children.push_back(Content::real((source / "real").string()));
    children[0].identity = 1;
    children.push_back({"hard link", HardLink{1}, {}});
    EXPECT_DONE(burn(makeDrive(), disc(Verification::ProduceAgain, filesystem::all)));
    EXPECT_EQ(calls, "a b c again:a a again:b b again:c c end:a end:b end:c end:e ");
}

TEST_F(ProducedAgainTest, onlyWhereTheTrackAndTheBurnWantThat) {
    add("a", 5000);
    for (const Verification way : {Verification::None, Verification::Checksum, Verification::ReceiveData}) {
        calls.clear();
        EXPECT_DONE(verified(way));
        EXPECT_EQ(calls, "a end:a ");
    }
    BurnOptions options;
    options.verify = false;
    calls.clear();
    EXPECT_DONE(verified(Verification::ProduceAgain, options));
    EXPECT_EQ(calls, "a end:a ");
}

TEST_F(ProducedAgainTest, whatIsNotTheSameTheSecondTimeIsNamed) {
    add("a", 1'500'000);
    const auto second = add("b", 2'000'000);
    second->spoilt = 1'234'567;
    add("c", 10);
    EXPECT_DONE(verified(Verification::Checksum));
    const uint64_t block = blockOf("B") + 1'234'567 / blockSize;
    calls.clear();
    const auto status = verified();
    EXPECT_FAILED(status, VerificationFailed,
                  "The disc in \"Virtual Disc Drive 1\" is not what was written, from block " +
                      std::to_string(block) + " on; don't trust it, and burn again.");
    EXPECT_EQ(status.error->info,
              "The file \"b\" is not what its producer gives when it is asked again, from byte 1234567 on.");
    EXPECT_EQ(calls, "a b c again:a a again:b b end:a end:b end:c ") << "nothing more is asked";
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Incomplete);
}

TEST_F(ProducedAgainTest, aDiscThatIsDamagedThereIsNamedToo) {
    add("a", 3'000'000);
    children.push_back(Content::file("d", noise(50'000)));
    EXPECT_DONE(verified());
    const uint64_t inProduced = blockOf("A") * blockSize + 2'100'000, inData = blockOf("D") * blockSize;
    const auto infoWhenHarmedAt = [&](uint64_t offset) {
        fs::remove_all(drivePath());
        BurnJob job(makeDrive());
        bool done = false;
        job.setObserver([&](const BurnStatus& status) {
            if (status.state != BurnState::Verifying || std::exchange(done, true)) return;
            std::fstream file(growingImage(), std::ios::in | std::ios::out | std::ios::binary);
            file.seekp(static_cast<std::streamoff>(offset));
            file.write("harmed", 6);
        });
        EXPECT_TRUE(job.start(disc(Verification::ProduceAgain)).ok());
        const BurnStatus status = job.wait();
        EXPECT_EQ(nameOf(status.state), "Failed");
        return status.error ? status.error->info : "";
    };
    EXPECT_EQ(infoWhenHarmedAt(inProduced),
              "The file \"a\" is not what its producer gives when it is asked again, from byte 2100000 on.");
    EXPECT_TRUE(infoWhenHarmedAt(inData).starts_with("block ")) << "the sums find all else";
}

TEST_F(ProducedAgainTest, whoCantProduceAgainFailsTheVerification) {
    const auto maker = add("a", 5000);
    EXPECT_DONE(verified());
    const std::string block = std::to_string(blockOf("A"));
    const auto expectInfo = [&](const std::string& info) {
        const auto status = verified();
        EXPECT_FAILED(status, VerificationFailed,
                      "The disc in \"Virtual Disc Drive 1\" is not what was written, from block " + block +
                          " on; don't trust it, and burn again.");
        EXPECT_EQ(status.error->info, info);
        EXPECT_TRUE(calls.ends_with("end:a ")) << calls;
    };
    maker->isPrepared = false;
    expectInfo("The producer of the file \"a\" could not prepare its verification.");
    maker->prepareFault = [] { throw std::runtime_error("no second time"); };
    expectInfo("The producer of the file \"a\" could not prepare its verification. no second time");
}

TEST_F(ProducedAgainTest, whoHasNoBytesLeftFailsTheVerification) {
    const auto maker = add("a", 5000);
    maker->fault = [] { throw std::runtime_error("all gone"); };
    const auto status = verified();
    EXPECT_EQ(status.error.value_or(Error{}).code, ErrorCode::VerificationFailed);
    EXPECT_EQ(status.error.value_or(Error{}).info,
              "The producer of the file \"a\" gave 0 bytes of the 5000 that it had announced. all gone");
}

TEST_F(ProducedAgainTest, whoFailsWhenAllIsOverFailsTheBurnOfADiscThatIsWhole) {
    add("a", 5000);
    add("b", 3000)->endFault = [] { throw std::runtime_error("no broom"); };
    add("c", 0)->endFault = [] { throw 5; };
    add("d", 100);
    for (const MediumKind kind : {MediumKind::DVDPlusRW, MediumKind::DVDPlusR}) {
        fs::remove_all(drivePath());
        calls.clear();
        const auto status = burn(makeDrive(kind), disc(Verification::Checksum));
        EXPECT_FAILED(
            status, DataProduction,
            "The producer of the file \"b\" failed when it was to clean up; the burn itself was over.");
        EXPECT_EQ(status.error->info, "no broom") << "what went wrong first";
        EXPECT_EQ(calls, "a b d end:a end:b end:c end:d ") << "each once, also behind the one that failed";
        EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Complete);
        EXPECT_NE(bytesOf(image()).find("B.;1"), std::string::npos);
    }
}

// Deliberate: what went wrong in the burn is what is told.
TEST_F(ProducedAgainTest, whoFailsWhenAllIsOverHidesNothing) {
    const auto maker = add("a", 5000);
    maker->isPrepared = false;
    maker->endFault = [] { throw std::runtime_error("no broom"); };
    EXPECT_EQ(verified().error.value_or(Error{}).code, ErrorCode::VerificationFailed);
    EXPECT_EQ(calls, "a again:a end:a ");
}

} // namespace
