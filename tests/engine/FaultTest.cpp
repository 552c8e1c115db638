// Sources that change or fail while they are burned, and a computer without room: nothing is padded in
// silence.
#include "Fixture.hpp"
#include "NoThreads.hpp"
#include "Producers.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

using namespace engine;

class FaultTest : public EngineTest {
  protected:
    // Burns, and does `fault` when the contents are about to be read.
    BurnStatus burnWith(const std::function<void()>& fault, DriveRef drive,
                        BurnState when = BurnState::TrackOpen) {
        BurnJob job(std::move(drive));
        bool done = false;
        job.setObserver([&](const BurnStatus& status) {
            if (status.state != when || done) return;
            done = true;
            fault();
        });
        EXPECT_TRUE(job.start(layout()).ok());
        return job.wait();
    }
    void stillBlank() {
        EXPECT_TRUE(openDrive()->mediumInfo()->blank);
        EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
    }
    std::string changed(const fs::path& path, const std::string& how) const {
        return "The file \"" + path.string() + "\" " + how +
               " while it was burned: burn it again when nothing writes to it.";
    }
};

TEST_F(FaultTest, aFileThatGetsShorter) {
    const auto path = write("a.bin", noise(3'000'000));
    EXPECT_FAILED(burnWith([&] { fs::resize_file(path, 2'999'999); }, makeDrive()), FileModifiedDuringBurn,
                  changed(path, "got shorter"));
    stillBlank();
}

TEST_F(FaultTest, aFileThatGetsLonger) {
    const auto path = write("a.bin", noise(3'000'000));
    EXPECT_FAILED(burnWith([&] { std::ofstream(path, std::ios::app) << 'x'; }, makeDrive()),
                  FileModifiedDuringBurn, changed(path, "got longer"));
    stillBlank();
}

TEST_F(FaultTest, anEmptyFileThatIsFilled) {
    write("a.bin", "a");
    const auto path = write("folder/empty", "");
    EXPECT_FAILED(burnWith([&] { std::ofstream(path) << 'x'; }, makeDrive()), FileModifiedDuringBurn,
                  changed(path, "got longer"));
    stillBlank();
}

TEST_F(FaultTest, aFileThatVanishes) {
    write("a.bin", "a");
    const auto path = write("folder/b.bin", "b");
    EXPECT_FAILED(burnWith([&] { fs::remove(path); }, makeDrive()), FileModifiedDuringBurn,
                  changed(path, "went away"));
    stillBlank();
}

TEST_F(FaultTest, aFileThatIsWrittenAnew) {
    const auto path = write("a.bin", noise(100'000));
    const auto rewrite = [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // the clock of file times ticks every few
        std::ofstream(path, std::ios::binary) << noise(100'000, 9);
    };
    EXPECT_FAILED(burnWith(rewrite, makeDrive()), FileModifiedDuringBurn, changed(path, "changed"));
    stillBlank();
}

TEST_F(FaultTest, aFileThatBecomesAPipeDoesNotHangTheBurn) {
    const auto path = write("a.bin", noise(100'000));
    const auto status = burnWith(
        [&] {
            fs::remove(path);
            ASSERT_EQ(::mkfifo(path.c_str(), 0644), 0);
        },
        makeDrive());
    EXPECT_FAILED(status, FileModifiedDuringBurn, changed(path, "got shorter"));
    stillBlank();
}

TEST_F(FaultTest, aFolderThatGetsAnotherFile) {
    write("a.bin", "a");
    const auto add = [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        write("new.bin", "n");
    };
    EXPECT_FAILED(burnWith(add, makeDrive()), FileModifiedDuringBurn,
                  "The folder \"" + source.string() +
                      "\" changed while it was burned: burn it again when nothing writes to it.");
    stillBlank();
}

TEST_F(FaultTest, aWriteOnceMediumIsOpenlyIncompleteAfterwards) {
    const auto path = write("a.bin", noise(3'000'000));
    EXPECT_FAILED(burnWith([&] { fs::resize_file(path, 5); }, makeDrive(MediumKind::DVDPlusR)),
                  FileModifiedDuringBurn, changed(path, "got shorter"));
    const auto medium = openDrive()->mediumInfo();
    ASSERT_TRUE(medium);
    EXPECT_EQ(medium->state, MediumState::Incomplete);
    EXPECT_FALSE(medium->blank || medium->appendable || medium->overwritable);
    EXPECT_EQ(medium->blocksFree, 0u);
}

// Zeros are not written where they stand already; what a burn left behind that was cut off doesn't.
TEST_F(FaultTest, zerosTakeThePlaceOfWhatFailed) {
    const auto drive = makeDrive();
    BurnOptions options;
    options.appendable = true;
    write("first", "stays");
    EXPECT_DONE(burn(drive, layout(), options));
    const std::string left = noise(9'000'000), part = left.substr(5'000'000, 4096);
    const auto path = write("second", left);
    EXPECT_FAILED(burnWith([&] { std::ofstream(path, std::ios::app) << 'x'; }, drive), FileModifiedDuringBurn,
                  changed(path, "got longer"));
    EXPECT_NE(bytesOf(image()).find(part), std::string::npos) << "or nothing is shown below";
    write("second", std::string(left.size(), '\0'));
    EXPECT_DONE(burn(drive, layout(), options));
    const std::string disc = bytesOf(image());
    EXPECT_EQ(disc.find(part), std::string::npos);
    size_t zeros = 0, most = 0;
    for (const char byte : disc)
        most = std::max(most, zeros = byte == 0 ? zeros + 1 : 0);
    EXPECT_GE(most, left.size());
}

namespace {
class Producer : public FileProducer {
  public:
    Producer(uint64_t size, std::function<size_t(uint64_t)> answer)
        : size_(size), answer_(std::move(answer)) {}
    uint64_t size() override { return size_; }
    size_t read(uint64_t offset, std::span<std::byte> buffer) override {
        return std::min(answer_(offset), buffer.size() + 1);
    }

  private:
    uint64_t size_;
    std::function<size_t(uint64_t)> answer_;
};
} // namespace

TEST_F(FaultTest, aProducerThatGivesTooLittle) {
    const auto drive = makeDrive();
    const auto shortOne =
        std::make_shared<Producer>(5000, [](uint64_t offset) -> size_t { return offset < 3000 ? 1500 : 0; });
    EXPECT_FAILED(burn(drive, layoutOf(Content::folder("X", {Content::produced("p", shortOne)}))),
                  DataProduction,
                  "The producer of the file \"p\" gave 3000 bytes of the 5000 that it had announced.");
    stillBlank();
}

TEST_F(FaultTest, aProducerThatThrows) {
    const auto drive = makeDrive();
    const auto bad = std::make_shared<Producer>(
        5000, [](uint64_t) -> size_t { throw std::runtime_error("no more paper"); });
    const auto status = burn(drive, layoutOf(Content::folder("X", {Content::produced("p", bad)})));
    EXPECT_FAILED(status, DataProduction,
                  "The producer of the file \"p\" gave 0 bytes of the 5000 that it had announced.");
    EXPECT_EQ(status.error->info, "no more paper");
    stillBlank();
}

TEST_F(FaultTest, aProducerThatClaimsTooMuch) {
    const auto drive = makeDrive();
    const auto liar = std::make_shared<Producer>(5000, [](uint64_t) -> size_t { return SIZE_MAX; });
    EXPECT_FAILED(burn(drive, layoutOf(Content::folder("X", {Content::produced("p", liar)}))), DataProduction,
                  "The producer of the file \"p\" says that it gave more than it was asked for.");
    stillBlank();
}

TEST_F(FaultTest, noProducerAtAll) {
    const auto drive = makeDrive();
    EXPECT_FAILED(burn(drive, layoutOf(Content::folder("X", {Content::produced("p", nullptr)}))),
                  DataProduction, "The file \"p\" has no producer of its bytes.");
    stillBlank();
}

TEST_F(FaultTest, aComputerWithoutRoomIsToldBeforeWriting) {
    write("a.bin", noise(3'000'000));
    const auto drive = makeDrive();
    const rlimit limit{1'000'000, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const auto status = burn(drive, layout());
    EXPECT_EQ(nameOf(status.state), "Failed");
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->code, ErrorCode::MediaWriteFailure);
    EXPECT_EQ(status.error->message,
              "The disc in \"Virtual Disc Drive 1\" needs a file of 3.1 MB, which is larger than this "
              "program is allowed to write.");
    stillBlank();
}

TEST_F(FaultTest, aWriteOnceMediumStaysBlankWhenThereIsNoRoom) {
    write("a.bin", noise(3'000'000));
    const auto drive = makeDrive(MediumKind::CDR);
    const rlimit limit{1'000'000, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const auto status = burn(drive, layout());
    EXPECT_EQ(nameOf(status.state), "Failed");
    stillBlank();
}

TEST_F(FaultTest, aDriveFolderThatCannotBeWritten) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become nobody";
    makeDrive();
    ASSERT_EQ(::chmod(base.c_str(), 0755), 0);
    const auto drive = openDrive();
    ASSERT_EQ(::seteuid(65534), 0);
    const auto status = burn(drive, layout());
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_FAILED(status, DeviceAccess, "The drive's lock can't be opened.");
}

TEST_F(FaultTest, aDriveFolderThatIsRemovedMeanwhile) {
    write("a.bin", noise(3'000'000));
    for (const MediumKind kind : {MediumKind::DVDPlusRW, MediumKind::CDR})
        for (const BurnState when :
             {BurnState::TrackOpen, BurnState::TrackWrite, BurnState::TrackClose, BurnState::Finishing}) {
            const auto drive = makeDrive(kind);
            EXPECT_FAILED(burnWith([&] { fs::remove_all(drivePath()); }, drive, when), DeviceInvalid,
                          "The drive \"Virtual Disc Drive 1\" went away while it wrote.");
            EXPECT_FALSE(fs::exists(drivePath())) << nameOf(when);
            EXPECT_TRUE(fs::is_empty(base / "drives")) << nameOf(when);
            EXPECT_FALSE(drive->isValid() || drive->isBusy());
            EXPECT_EQ(burn(drive, layout()).error->code, ErrorCode::DeviceInvalid);
        }
}

TEST_F(FaultTest, aComputerWithoutThreads) {
    write("a.bin", noise(3'000'000));
    auto drive = makeDrive();
    BurnStatus told;
    BurnJob job(drive);
    job.setObserver([&](const BurnStatus& status) { told = status; });
    {
        const NoThreads none;
        EXPECT_TRUE(job.start(layout()).ok());
        ASSERT_TRUE(job.waitFor(std::chrono::milliseconds(0)));
    }
    EXPECT_FAILED(job.wait(), BurnNotAllowed,
                  "The computer starts no thread any more; end other programs, and try again.");
    EXPECT_EQ(nameOf(told.state), "Failed");
    stillBlank();
    EXPECT_DONE(burn(drive, layout()));
}

// Its thread is not to be had when all is written; what the producer then throws counts as ever.
TEST_F(FaultTest, aComputerThatStartsNoMoreThreadsCleansUpAllTheSame) {
    class Last final : public TestProducer {
      public:
        Last() : TestProducer(blockSize) {}
        bool cleanupAfterVerification() override {
            none.emplace();
            return true;
        }
        void cleanupAfterBurn() override {
            ++cleanups;
            throw std::runtime_error("no");
        }
        std::optional<NoThreads> none;
        int cleanups = 0;
    };
    auto drive = makeDrive();
    const auto last = std::make_shared<Last>();
    Track track;
    ProducedTrack data;
    data.blocks = 640;
    data.producer = last;
    track.content = data;
    track.verification = Verification::ProduceAgain;
    const BurnStatus status = burn(drive, Layout::ofTrack(track));
    EXPECT_EQ(last->cleanups, 1);
    EXPECT_EQ(nameOf(status.state), "Failed");
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->code, ErrorCode::DataProduction) << status.error->message;
}

// What is on the disc by then counts, not that nobody tidies up beside it.
TEST_F(FaultTest, aComputerThatStartsNoMoreThreadsAtTheEnd) {
    class Last final : public TestProducer {
      public:
        Last() : TestProducer(blockSize) {}
        bool cleanupAfterVerification() override {
            none.emplace();
            return true;
        }
        std::optional<NoThreads> none;
    };
    auto drive = makeDrive();
    BurnOptions options;
    options.overwrite = true;
    for (int round = 0; round < 2; ++round) { // the second one replaces what the first one wrote
        const auto last = std::make_shared<Last>();
        Track track;
        ProducedTrack data;
        data.blocks = 640;
        data.producer = last;
        track.content = data;
        track.verification = Verification::ProduceAgain;
        EXPECT_DONE(burn(drive, Layout::ofTrack(track), options));
        EXPECT_TRUE(last->none);
    }
    EXPECT_FALSE(drive->isBusy());
}
