// Erasing: quick and complete, what can't be erased, and what is left when it is cut off.
#include "EraseJob.hpp"
#include "Fixture.hpp"
#include "NoThreads.hpp"

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>

using namespace engine;

class EraseTest : public EngineTest {
  protected:
    // A drive with a burned medium of that kind.
    std::shared_ptr<VirtualDrive> burned(MediumKind kind, size_t bytes = 3'000'000) {
        auto drive = makeDrive(kind);
        write("a.bin", noise(bytes));
        EXPECT_DONE(burn(drive, layout()));
        return drive;
    }
    static EraseStatus erase(DriveRef drive, EraseType type = EraseType::Quick) {
        EraseJob job(std::move(drive));
        EXPECT_TRUE(job.start(type).ok());
        return job.wait();
    }
    static void expectFailed(const EraseStatus& had, ErrorCode code, const std::string& message) {
        EXPECT_EQ(nameOf(had.state), "Failed");
        ASSERT_TRUE(had.error);
        EXPECT_EQ(had.error->code, code);
        EXPECT_EQ(had.error->message, message);
    }
    void expectBlank(const Drive& drive, MediumKind kind) {
        const auto medium = drive.mediumInfo();
        ASSERT_TRUE(medium);
        EXPECT_TRUE(medium->blank);
        EXPECT_EQ(medium->kind, kind);
        EXPECT_EQ(medium->capacityBlocks, factsOf(kind).capacityBlocks);
        EXPECT_EQ(medium->blocksFree, medium->capacityBlocks);
        EXPECT_TRUE(medium->sessions.empty());
        EXPECT_EQ(driveFiles(), "drive.json lock medium.json ");
        EXPECT_FALSE(drive.isBusy());
    }
};

class EraseKindsTest : public EraseTest,
                       public ::testing::WithParamInterface<std::pair<MediumKind, EraseType>> {};

std::vector<std::pair<MediumKind, EraseType>> everyErasableKind() {
    std::vector<std::pair<MediumKind, EraseType>> all;
    for (const MediumFacts& facts : allMediumKinds())
        if (facts.erasable)
            for (const EraseType type : {EraseType::Quick, EraseType::Complete})
                all.emplace_back(facts.kind, type);
    return all;
}

INSTANTIATE_TEST_SUITE_P(EveryKind, EraseKindsTest, ::testing::ValuesIn(everyErasableKind()),
                         [](const auto& each) {
                             std::string name(factsOf(each.param.first).name);
                             std::erase_if(
                                 name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
                             return name + std::to_string(each.index);
                         });

TEST_P(EraseKindsTest, theMediumIsBlankAndCanBeBurnedAgain) {
    const auto [kind, type] = GetParam();
    const auto drive = burned(kind);
    const auto done = erase(drive, type);
    EXPECT_EQ(nameOf(done.state), "Done") << (done.error ? done.error->message : "");
    EXPECT_EQ(done.percent, 1);
    EXPECT_EQ(done.type, type);
    expectBlank(*drive, kind);
    EXPECT_DONE(burn(drive, layout()));
}

TEST_F(EraseTest, aCompleteEraseLeavesNothingOfTheOldBytes) {
    const auto drive = burned(MediumKind::CDRW);
    // A second name keeps the image, as somebody who looks at the disk afterwards would find it.
    fs::create_hard_link(image(), base / "kept");
    EXPECT_EQ(nameOf(erase(drive, EraseType::Complete).state), "Done");
    const std::string left = bytesOf(base / "kept");
    EXPECT_GT(left.size(), 3'000'000u);
    EXPECT_EQ(left.find_first_not_of('\0'), std::string::npos);
}

TEST_F(EraseTest, aQuickEraseDoesNotTouchThem) {
    const auto drive = burned(MediumKind::CDRW);
    const std::string before = bytesOf(image());
    fs::create_hard_link(image(), base / "kept");
    EXPECT_EQ(nameOf(erase(drive).state), "Done");
    EXPECT_EQ(bytesOf(base / "kept"), before);
}

TEST_F(EraseTest, filesOfAPersonThatBeginLikeTheMediumsStay) {
    const std::vector<std::string> names = {"medium.txt", "medium.iso.old", "medium.bin.bak", "medium.x.iso",
                                            "medium.new.txt"};
    const auto drive = burned(MediumKind::DVDPlusRW);
    for (const EraseType type : {EraseType::Quick, EraseType::Complete}) {
        for (const std::string& name : names)
            std::ofstream(image().parent_path() / name) << "mine";
        EXPECT_EQ(nameOf(erase(drive, type).state), "Done");
        EXPECT_FALSE(fs::exists(image()));
        for (const std::string& name : names)
            EXPECT_EQ(bytesOf(image().parent_path() / name), "mine") << name;
        EXPECT_DONE(burn(drive, layout()));
    }
}

TEST_F(EraseTest, statesComeInOrderAndProgressGrows) {
    const auto drive = burned(MediumKind::DVDPlusRW, 20'000'000);
    std::vector<std::string> states;
    double last = -1;
    EraseJob job(drive);
    EXPECT_EQ(nameOf(job.status().state), "None");
    job.setObserver([&](const EraseStatus& now) {
        if (states.empty() || states.back() != nameOf(now.state)) states.emplace_back(nameOf(now.state));
        if (now.state == EraseState::Erasing) {
            EXPECT_GE(now.percent, last);
            EXPECT_LE(now.percent, 1);
            last = now.percent;
            EXPECT_TRUE(drive->isBusy());
        }
    });
    EXPECT_TRUE(job.start(EraseType::Complete).ok());
    EXPECT_TRUE(job.waitFor(std::chrono::seconds(60)));
    EXPECT_EQ(states, (std::vector<std::string>{"Preparing", "Erasing", "Finishing", "Done"}));
    EXPECT_GE(last, 0);
    const auto again = job.start(EraseType::Quick);
    ASSERT_FALSE(again.ok());
    EXPECT_EQ(again.error().code, ErrorCode::BurnNotAllowed);
}

TEST_F(EraseTest, aHeldDriveIsHeldUntilTheEraseHasEndedAndIsFreeWhenTheStatusSaysSo) {
    const auto drive = burned(MediumKind::CDRW);
    for (const bool erasable : {true, false}) {
        EXPECT_TRUE(erasable || drive->eject().ok());
        std::vector<std::pair<std::string, bool>> seen;
        EraseJob job(drive);
        DriveHold hold(drive);
        ASSERT_TRUE(hold);
        job.keep(std::move(hold));
        EXPECT_FALSE(hold) << "it is the job's";
        EXPECT_TRUE(drive->hasExclusiveAccess());
        job.setObserver([&](const EraseStatus& now) {
            const std::pair state(std::string(nameOf(now.state)), drive->hasExclusiveAccess());
            if (seen.empty() || seen.back() != state) seen.push_back(state);
        });
        EXPECT_TRUE(job.start(EraseType::Quick).ok());
        job.wait();
        std::vector<std::pair<std::string, bool>> expected{{"Preparing", true}};
        if (erasable) expected.insert(expected.end(), {{"Erasing", true}, {"Finishing", true}});
        expected.emplace_back(erasable ? "Done" : "Failed", false);
        EXPECT_EQ(seen, expected);
        EXPECT_FALSE(drive->isBusy());
    }
}

TEST_F(EraseTest, aHoldEndsWithItselfOrAJobThatIsNeverStarted) {
    const auto drive = makeDrive();
    {
        DriveHold one(drive), two(drive);
        one = DriveHold();
        EXPECT_TRUE(drive->hasExclusiveAccess()) << "as often as it was taken";
        EraseJob(drive).keep(std::move(two));
        EXPECT_FALSE(drive->hasExclusiveAccess());
    }
    EXPECT_FALSE(DriveHold(nullptr));
    fs::remove_all(drivePath());
    EXPECT_FALSE(DriveHold(drive)) << "it is gone";
}

TEST_F(EraseTest, aBlankMediumStaysBlank) {
    const auto drive = makeDrive(MediumKind::CDRW);
    EXPECT_EQ(nameOf(erase(drive, EraseType::Complete).state), "Done");
    expectBlank(*drive, MediumKind::CDRW);
}

TEST_F(EraseTest, whatCanNotBeErasedKeepsWhatItHas) {
    const auto drive = burned(MediumKind::DVDPlusR);
    const std::string before = bytesOf(image());
    expectFailed(
        erase(drive), ErrorCode::MediaNotErasable,
        "The DVD+R in \"Virtual Disc Drive 1\" can't be erased; put in a disc that can be written again.");
    EXPECT_EQ(bytesOf(image()), before);
    EXPECT_EQ(drive->mediumInfo()->state, MediumState::Complete);
}

TEST_F(EraseTest, noDiscNoDriveAndADriveThatIsGone) {
    expectFailed(erase(nullptr), ErrorCode::DeviceInvalid, "There is no drive to erase in; choose one.");
    const auto drive = makeDrive();
    EXPECT_TRUE(drive->eject().ok());
    expectFailed(erase(drive), ErrorCode::MediaNotPresent,
                 "There is no disc in \"Virtual Disc Drive 1\"; put one in.");
    fs::remove_all(drivePath());
    expectFailed(erase(drive), ErrorCode::DeviceInvalid,
                 "The drive \"Virtual Disc Drive 1\" is no longer there; choose another one.");
}

TEST_F(EraseTest, aDriveThatIsWritingIsBusy) {
    const auto drive = makeDrive();
    write("a.bin", noise(6'000'000));
    BurnOptions options;
    options.requestedSpeed = slowly;
    BurnJob job(drive);
    EXPECT_TRUE(job.start(layout(), options).ok());
    while (job.status().state < BurnState::TrackWrite)
        ::usleep(1000);
    expectFailed(erase(drive), ErrorCode::DeviceBusy,
                 "The drive \"Virtual Disc Drive 1\" is already writing; wait until it is done.");
    job.abort();
}

TEST_F(EraseTest, anImageThatCanNotBeWrittenFailsTheEraseAndIsOpenlyIncomplete) {
    const auto drive = burned(MediumKind::CDRW);
    // No file of this process may be written beyond its second megabyte.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{2 << 20, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &little), 0);
    expectFailed(erase(drive, EraseType::Complete), ErrorCode::MediaWriteFailure,
                 "The disc can't be erased: its file \"medium.iso\" can't be written.");
    EXPECT_EQ(drive->mediumInfo()->state, MediumState::Incomplete);
    EXPECT_EQ(nameOf(erase(drive).state), "Done") << "a quick one needs no room";
    expectBlank(*drive, MediumKind::CDRW);
}

TEST_F(EraseTest, aJobThatIsDroppedGoesOnAlone) {
    const auto drive = burned(MediumKind::DVDPlusRW, 20'000'000);
    int calls = 0;
    {
        EraseJob job(drive);
        job.setObserver([&](const EraseStatus&) { ++calls; });
        EXPECT_TRUE(job.start(EraseType::Complete).ok());
    }
    const int before = calls;
    for (int i = 0; i < 6000 && !(drive->mediumInfo()->blank && !drive->isBusy()); ++i)
        ::usleep(10'000);
    expectBlank(*drive, MediumKind::DVDPlusRW);
    EXPECT_EQ(calls, before);
}

// What is cut off by kill -9, at that report of progress (0: when all is overwritten), is the old medium,
// openly incomplete, or blank.
class EraseCrashTest : public EraseTest, public ::testing::WithParamInterface<std::pair<int, MediumState>> {};

INSTANTIATE_TEST_SUITE_P(AtReport, EraseCrashTest,
                         ::testing::Values(std::pair(1, MediumState::Complete),
                                           std::pair(2, MediumState::Incomplete),
                                           std::pair(7, MediumState::Incomplete),
                                           std::pair(0, MediumState::Blank)),
                         [](const auto& each) { return std::to_string(each.param.first); });

TEST_P(EraseCrashTest, neverSilentlyWrong) {
    makeDrive(MediumKind::DVDPlusRW);
    write("a.bin", noise(9'000'000));
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const auto drive = openDrive();
        if (burn(drive, layout()).state != BurnState::Done) ::_exit(3);
        int reports = 0;
        const auto erased = drive->erase(EraseType::Complete, [&](double) {
            if (++reports == GetParam().first) ::kill(::getpid(), SIGKILL);
            return true;
        });
        if (erased) ::kill(::getpid(), SIGKILL);
        ::_exit(4);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << WEXITSTATUS(status);
    const auto drive = openDrive();
    const auto medium = drive->mediumInfo();
    ASSERT_TRUE(medium);
    EXPECT_EQ(medium->state, GetParam().second);
    EXPECT_EQ(nameOf(erase(drive).state), "Done");
    expectBlank(*drive, MediumKind::DVDPlusRW);
}

TEST_F(EraseTest, cutOffBetweenTheBlocksItIsOpenlyIncompleteAndCanBeErasedAgain) {
    const auto drive = burned(MediumKind::DVDPlusRW, 9'000'000);
    int asked = 0;
    const auto cutOff = drive->erase(EraseType::Complete, [&](double) { return ++asked < 3; });
    ASSERT_FALSE(cutOff.ok());
    EXPECT_EQ(cutOff.error().code, ErrorCode::UserCanceled);
    EXPECT_EQ(drive->mediumInfo()->state, MediumState::Incomplete);
    EXPECT_FALSE(drive->isBusy());
    EXPECT_EQ(nameOf(erase(drive).state), "Done");
    expectBlank(*drive, MediumKind::DVDPlusRW);
}

TEST_F(EraseTest, withoutThreadsItFailsAndLetsTheDriveGo) {
    const auto drive = burned(MediumKind::CDRW);
    EraseJob job(drive);
    job.keep(DriveHold(drive));
    {
        const NoThreads none;
        EXPECT_TRUE(job.start(EraseType::Quick).ok());
        ASSERT_TRUE(job.waitFor(std::chrono::milliseconds(0)));
    }
    expectFailed(job.wait(), ErrorCode::BurnNotAllowed,
                 "The computer starts no thread any more; end other programs, and try again.");
    EXPECT_FALSE(drive->isBusy());
    EXPECT_EQ(nameOf(erase(drive).state), "Done");
}
