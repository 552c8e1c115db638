// Tracks with subchannel data: what can't be burned, what is damaged, and burns that are cut off.
#include "Failure.hpp"
#include "SubchannelFixture.hpp"

#include <csignal>
#include <sys/wait.h>

using namespace engine;

namespace {

BurnOptions overwriting() {
    BurnOptions options;
    options.overwrite = true;
    return options;
}

TEST_F(SubchannelTest, WhatCannotTakeThemRefusesBeforeAnythingIsWritten) {
    const Track data = song(singer(1, BlockForm::Data), 300, SubchannelForm::Raw, BlockForm::Data);
    for (const MediumKind kind :
         {MediumKind::DVDPlusRW, MediumKind::DVDR, MediumKind::BDR, MediumKind::BDRE}) {
        fs::remove_all(drivePath());
        const auto drive = makeDrive(kind);
        EXPECT_FAILED(burn(drive, Layout::ofTrack(data)), FunctionNotSupported,
                      "Track 1 brings subchannel data, which a " + std::string(factsOf(kind).name) +
                          " can't take; burn it without.");
        EXPECT_TRUE(drive->mediumInfo()->blank);
    }
    fs::remove_all(drivePath());
    VirtualDriveSetup setup;
    setup.medium = MediumKind::CDR;
    setup.lacks = {"subchannel"};
    ASSERT_TRUE(makeVirtualDrive(drivePath().string(), setup).ok());
    EXPECT_FAILED(burn(openDrive(), Layout::ofTrack(song(singer(), 300))), FunctionNotSupported,
                  "Track 1 brings subchannel data, which the drive \"Virtual Disc Drive 1\" can't take; burn "
                  "it without.");
    EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
}

TEST_F(SubchannelTest, ASymbolThatIsAnotherOneIsFound) {
    const auto producer = singer();
    producer->spoilt = 200;
    Track track = song(producer, 320);
    track.verification = Verification::ProduceAgain;
    const BurnStatus status = burn(makeDrive(MediumKind::CDRW), Layout::ofTrack(track));
    ASSERT_TRUE(status.error);
    EXPECT_EQ(status.error->code, ErrorCode::VerificationFailed) << status.error->message;
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Incomplete);
}

TEST_F(SubchannelTest, DamageIsSaidAndNotRead) {
    const auto drive = makeDrive(MediumKind::CDR);
    EXPECT_DONE(burn(drive, Layout::ofTrack(song(singer(), 320))));
    const std::string whole = bytesOf(file("medium.sub"));
    const auto put = [&](const std::string& bytes) {
        std::ofstream(file("medium.sub"), std::ios::binary) << bytes;
    };
    std::string wrong = whole;
    wrong[100 * subchannelBytes + 15] = static_cast<char>(wrong[100 * subchannelBytes + 15] ^ 1);
    put(wrong);
    EXPECT_EQ(readBack(0, 0),
              "The disc can't be read at block 100: its subchannel Q is not what its code says.");
    put(whole.substr(0, 200 * subchannelBytes));
    EXPECT_EQ(readBack(0, 0), "The disc can't be read at block 200: its subchannels are not there.");
    fs::remove(file("medium.sub"));
    EXPECT_EQ(readBack(0, 0), "The disc can't be read: its file \"medium.sub\" can't be opened.");
}

TEST_F(SubchannelTest, ADamagedDescriptionIsSaid) {
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), Layout::ofTrack(song(singer(), 320))));
    const std::string whole = bytesOf(file("medium.json"));
    const auto damage = [&](const std::string& what, const std::string& instead) {
        std::string text = whole;
        text.replace(text.find(what), what.size(), instead);
        std::ofstream(file("medium.json")) << text;
        const auto medium = openDrive()->readMedium();
        return medium.ok() ? "no error" : medium.error().info;
    };
    EXPECT_EQ(damage("\"raw\"", "\"roh\""), "a track's subchannel data are of an unknown form");
    EXPECT_EQ(damage("\"raw\"", "7"), "\"subchannel\" is of the wrong type");
    EXPECT_EQ(damage("\"medium.sub\"", "\"\""), "a track's subchannel data are in no file");
    EXPECT_EQ(damage("\"medium.sub\"", "\"../medium.sub\""),
              "a track's subchannel data lie in another folder");
    EXPECT_EQ(damage("\"raw\"", "\"pack\""), "no error");
}

TEST_F(SubchannelTest, AnErasedMediumHasNone) {
    for (const EraseType type : {EraseType::Quick, EraseType::Complete}) {
        fs::remove_all(drivePath());
        const auto drive = makeDrive(MediumKind::CDRW);
        EXPECT_DONE(burn(drive, Layout::ofTrack(song(singer(), 320))));
        EXPECT_TRUE(drive->erase(type, [](double) { return true; }).ok());
        EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
        EXPECT_TRUE(drive->mediumInfo()->blank);
    }
}

TEST_F(SubchannelTest, ATestBurnWritesNothing) {
    BurnOptions options;
    options.testing = true;
    const auto drive = makeDrive(MediumKind::CDR);
    EXPECT_DONE(burn(drive, Layout::ofTrack(song(singer(), 320)), options));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
}

TEST_F(SubchannelTest, ADiscWithoutAnyTakesThePlaceOfOneWithThem) {
    const auto drive = makeDrive(MediumKind::CDRW);
    EXPECT_DONE(burn(drive, Layout::ofTrack(song(singer(), 320))));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.bin medium.cue medium.json medium.sub ");
    write("letter.txt", "Dear reader,\n");
    EXPECT_DONE(burn(drive, layout(), overwriting()));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.iso medium.json ");
    EXPECT_DONE(burn(drive, Layout::ofTrack(song(singer(4), 330)), overwriting()));
    EXPECT_EQ(driveFiles(), "drive.json lock medium.bin medium.cue medium.json medium.sub ");
    EXPECT_TRUE(readBack(0, 0) == blocksOf(*singer(4), 330));
}

class CutOff : public SubchannelTest, public ::testing::WithParamInterface<BurnState> {
  protected:
    // By a child, so that this process has no threads when it forks; with a state, it dies as soon as it is entered.
    void burnInChild(uint64_t seed, std::optional<BurnState> dies) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            BurnJob job(openDrive());
            job.setObserver([&](const BurnStatus& status) {
                if (status.state == dies) ::kill(::getpid(), SIGKILL);
            });
            if (!job.start(Layout::ofTrack(song(singer(seed), 900)), overwriting())) ::_exit(3);
            ::_exit(job.wait().state == BurnState::Done ? 0 : 4);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        if (dies)
            ASSERT_TRUE(WIFSIGNALED(status)) << WEXITSTATUS(status);
        else
            ASSERT_EQ(status, 0);
    }
    BurnStatus abortIn(BurnState state, DriveRef drive) {
        BurnJob job(std::move(drive));
        job.setObserver([&](const BurnStatus& status) {
            if (status.state == state) job.abort();
        });
        EXPECT_TRUE(job.start(Layout::ofTrack(song(singer(2), 900)), overwriting()).ok());
        return job.wait();
    }
};

INSTANTIATE_TEST_SUITE_P(EveryState, CutOff,
                         ::testing::Values(BurnState::TrackOpen, BurnState::TrackWrite, BurnState::TrackClose,
                                           BurnState::Finishing, BurnState::Verifying, BurnState::Done),
                         [](const auto& each) { return std::string(nameOf(each.param)); });

TEST_P(CutOff, AKilledBurnLeavesTheOldMediumOrTheNewOne) {
    makeDrive(MediumKind::CDRW);
    burnInChild(1, std::nullopt);
    burnInChild(2, GetParam());
    const auto drive = openDrive();
    EXPECT_EQ(drive->mediumInfo()->state, MediumState::Complete);
    EXPECT_EQ(driveFiles(), "drive.json lock medium.bin medium.cue medium.json medium.sub ");
    EXPECT_TRUE(readBack(0, 0) == blocksOf(*singer(GetParam() == BurnState::Done ? 2 : 1), 900));
}

TEST_P(CutOff, AKilledBurnOfAWriteOnceMediumIsOpenlyIncomplete) {
    makeDrive(MediumKind::CDR);
    burnInChild(1, GetParam());
    const auto medium = openDrive()->mediumInfo();
    ASSERT_TRUE(medium);
    if (GetParam() == BurnState::TrackOpen) {
        EXPECT_EQ(medium->state, MediumState::Blank);
        EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
        return;
    }
    EXPECT_EQ(medium->state, GetParam() == BurnState::Done ? MediumState::Complete : MediumState::Incomplete);
    EXPECT_EQ(driveFiles(), "drive.json lock medium.bin medium.cue medium.json medium.sub ");
}

TEST_P(CutOff, AnAbortedBurnLeavesTheOldMediumUnlessItIsDone) {
    const auto drive = makeDrive(MediumKind::CDRW);
    EXPECT_DONE(burn(drive, Layout::ofTrack(song(singer(1), 900))));
    if (GetParam() == BurnState::Done) { // nothing is left to abort
        EXPECT_DONE(abortIn(GetParam(), drive));
        EXPECT_TRUE(readBack(0, 0) == blocksOf(*singer(2), 900));
        return;
    }
    EXPECT_FAILED(abortIn(GetParam(), drive), UserCanceled, "The burn was canceled.");
    EXPECT_EQ(driveFiles(), "drive.json lock medium.bin medium.cue medium.json medium.sub ");
    EXPECT_TRUE(readBack(0, 0) == blocksOf(*singer(1), 900));
}

} // namespace
