// Verification reads the medium, not memory, and finds a single byte.
#include "Fixture.hpp"
#include "TrackSum.hpp"

#include <functional>
#include <xxhash.h>

using namespace engine;

class VerifyTest : public EngineTest {
  protected:
    static constexpr size_t size = 5'000'000;

    // Burns a.bin and lets `harm` at the image before it is read back.
    BurnStatus burnWith(const std::function<void(const fs::path&)>& harm, DriveRef drive,
                        const fs::path& path) {
        write("a.bin", noise(size));
        BurnJob job(std::move(drive));
        bool done = false;
        job.setObserver([&](const BurnStatus& status) {
            if (status.state != BurnState::Verifying || done) return;
            done = true;
            harm(path);
        });
        EXPECT_TRUE(job.start(layout()).ok());
        return job.wait();
    }
    static void flipByte(const fs::path& path, uint64_t offset) {
        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        file.seekg(static_cast<std::streamoff>(offset));
        const char byte = static_cast<char>(file.get());
        file.seekp(static_cast<std::streamoff>(offset));
        file.put(static_cast<char>(byte ^ 1));
        ASSERT_TRUE(file.good());
    }
};

TEST_F(VerifyTest, findsOneFlippedByteAndMarksTheMedium) {
    const auto status =
        burnWith([](const fs::path& path) { flipByte(path, 3'333'333); }, makeDrive(), growingImage());
    EXPECT_FAILED(status, VerificationFailed,
                  "The disc in \"Virtual Disc Drive 1\" is not what was written, from block 1536 on; don't "
                  "trust it, and burn again.");
    EXPECT_EQ(status.error->info, "block 1536 to 2047");
    const auto medium = openDrive()->mediumInfo();
    ASSERT_TRUE(medium);
    EXPECT_EQ(medium->state, MediumState::Incomplete);
    EXPECT_TRUE(medium->overwritable);
    BurnOptions options;
    options.overwrite = true;
    EXPECT_DONE(burn(openDrive(), layout(), options));
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Complete);
}

TEST_F(VerifyTest, findsTheLastByte) {
    const auto status = burnWith([](const fs::path& path) { flipByte(path, fs::file_size(path) - 1); },
                                 makeDrive(), growingImage());
    EXPECT_EQ(nameOf(status.state), "Failed");
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->code, ErrorCode::VerificationFailed);
}

TEST_F(VerifyTest, findsAnImageThatWasCut) {
    const auto status =
        burnWith([](const fs::path& path) { fs::resize_file(path, fs::file_size(path) - 2048); }, makeDrive(),
                 growingImage());
    EXPECT_EQ(nameOf(status.state), "Failed");
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->code, ErrorCode::VerificationFailed);
}

TEST_F(VerifyTest, marksAWriteOnceMedium) {
    const auto status =
        burnWith([](const fs::path& path) { flipByte(path, 40'000); }, makeDrive(MediumKind::CDR), image());
    EXPECT_EQ(nameOf(status.state), "Failed");
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Incomplete);
    EXPECT_FALSE(openDrive()->mediumInfo()->overwritable);
}

// Media keep sums, and go to computers with other processors.
TEST_F(VerifyTest, aTracksSumIsThatOfItsBytesOnEveryProcessor) {
    for (const size_t bytes : {0u, 1u, 240u, 241u, 5'000u, 3'000'001u}) {
        const std::string all = noise(bytes);
        TrackSum sum;
        for (size_t at = 0; at < bytes; at += 1'000'000)
            sum.add(std::as_bytes(std::span(all).subspan(at, std::min<size_t>(1'000'000, bytes - at))));
        EXPECT_EQ(sum.value(), XXH3_64bits(all.data(), all.size())) << bytes;
    }
}

TEST_F(VerifyTest, isLeftOutWhenTheBurnOrTheTrackSaysSo) {
    write("a.bin", noise(size));
    std::string states;
    const auto statesOf = [&](bool option, bool trackOption) {
        fs::remove_all(drivePath());
        BurnJob job(makeDrive());
        states.clear();
        job.setObserver(
            [&](const BurnStatus& status) { states += status.state == BurnState::Verifying ? "v" : ""; });
        Layout what = layout();
        what.sessions[0].tracks[0].verification = trackOption ? Verification::Checksum : Verification::None;
        BurnOptions options;
        options.verify = option;
        EXPECT_TRUE(job.start(what, options).ok());
        EXPECT_DONE(job.wait());
        return states;
    };
    EXPECT_EQ(statesOf(false, true), "");
    EXPECT_EQ(statesOf(true, false), "");
    EXPECT_NE(statesOf(true, true), "");
}
