// DVD-R and -RW: in one go where nothing is to follow, in pieces where something may; and what a DVD-RW takes that was only
// blanked quickly.
#include "Fixture.hpp"

#include <atomic>
#include <thread>

using namespace engine;

namespace {
constexpr uint64_t capacity = 20480; // room for two sessions, and what lies between them
}

class PhysicalAtOnce : public PhysicalTest {
  protected:
    void insertSmall(const std::string& kind, Json more = Json::object()) {
        more["capacity"] = capacity; // a disc's own size would take minutes
        insert(kind, more);
        drive()->closeTray().ok(); // what was seen before is forgotten
    }
    void erase(EraseType type) const {
        EraseJob job(drive());
        ASSERT_TRUE(job.start(type).ok());
        const EraseStatus status = job.wait();
        EXPECT_EQ(nameOf(status.state), "Done") << (status.error ? status.error->message : "");
        EXPECT_TRUE(medium().blank);
    }
    // The write type of mode page 05 that the last burn had: 0 in pieces, 2 at once.
    int writeType() const {
        const std::string page = state()["writeParameters"];
        return std::stoi(page.substr(4, 2), nullptr, 16) & 0x0F;
    }
    void holds(const std::string& name, const std::string& bytes) {
        EXPECT_TRUE(extracted(name) == bytes) << name;
    }
    BurnOptions staysOpen(bool overwrites = false) const {
        BurnOptions options;
        options.appendable = true;
        options.overwrite = overwrites;
        return options;
    }
};

TEST_F(PhysicalAtOnce, WhatIsToBeCompleteIsWrittenInOneGo) {
    for (const char* kind : {"DVD-R", "DVD-RW"}) {
        insertSmall(kind);
        file("noise.bin", noise(900'000));
        EXPECT_DONE(burn(layout()));
        EXPECT_EQ(writeType(), 2) << kind;
        EXPECT_EQ(medium().state, MediumState::Complete) << kind;
        holds("noise.bin", noise(900'000));
    }
}

TEST_F(PhysicalAtOnce, WhatStaysOpenAndWhatFollowsIsWrittenInPieces) {
    for (const char* kind : {"DVD-R", "DVD-RW"}) {
        insertSmall(kind);
        file("noise.bin", noise(900'000));
        EXPECT_DONE(burn(layout(), staysOpen()));
        EXPECT_EQ(writeType(), 0) << kind;
        EXPECT_EQ(medium().state, MediumState::Appendable) << kind;
        fs::remove(source / "noise.bin");
        file("more.bin", noise(700'000, 2));
        EXPECT_DONE(burn(layout("MORE")));
        EXPECT_EQ(writeType(), 0) << kind;
        EXPECT_EQ(medium().state, MediumState::Complete) << kind;
        EXPECT_EQ(medium().sessionCount(), 2u) << kind;
        holds("noise.bin", noise(900'000));
        holds("more.bin", noise(700'000, 2));
        fs::remove(source / "more.bin");
    }
}

TEST_F(PhysicalAtOnce, RequiredWhereItCanBe) {
    BurnOptions options;
    options.strategies = {Strategy::DVDAtOnce};
    options.strategyIsRequired = true;
    file("noise.bin", noise(900'000));
    for (const char* kind : {"DVD-R", "DVD-RW"}) {
        insertSmall(kind);
        BurnOptions open = options;
        open.appendable = true;
        const BurnStatus refused = burn(layout(), open);
        ASSERT_TRUE(refused.error.has_value()) << kind;
        EXPECT_EQ(refused.error->code, ErrorCode::StrategyNotAvailable) << kind;
        EXPECT_EQ(state()["writes"], 0) << kind;
        EXPECT_DONE(burn(layout(), options));
        EXPECT_EQ(writeType(), 2) << kind;
        holds("noise.bin", noise(900'000));
    }
    insertSmall("DVD-RW");
    EXPECT_DONE(burn(layout("FIRST"), staysOpen()));
    const auto writes = state()["writes"];
    const BurnStatus behind = burn(layout("MORE"), options);
    ASSERT_TRUE(behind.error.has_value());
    EXPECT_EQ(behind.error->code, ErrorCode::StrategyNotAvailable);
    EXPECT_EQ(state()["writes"], writes);
}

TEST_F(PhysicalAtOnce, BurnsAfterAQuickErase) {
    insertSmall("DVD-RW");
    file("noise.bin", noise(900'000));
    EXPECT_DONE(burn(layout("OLD")));
    erase(EraseType::Quick);
    EXPECT_EQ(state()["onlyAtOnce"], true);
    const MediumInfo blank = medium();
    EXPECT_EQ(blank.blocksFree, capacity);
    EXPECT_TRUE(blank.appendable);
    file("noise.bin", noise(800'000, 2));
    EXPECT_DONE(burn(layout("NEW")));
    holds("noise.bin", noise(800'000, 2));
    EXPECT_EQ(medium().state, MediumState::Complete);
}

TEST_F(PhysicalAtOnce, OverwritesAgainAndAgain) {
    insertSmall("DVD-RW");
    BurnOptions options;
    options.overwrite = true;
    for (const uint64_t seed : {1, 2}) {
        file("noise.bin", noise(900'000, seed));
        EXPECT_DONE(burn(layout(), options));
        holds("noise.bin", noise(900'000, seed));
    }
    options.testing = true;
    EXPECT_EQ(burn(layout(), options).error->code, ErrorCode::MediaNotBlank) << "a test erases nothing";
    holds("noise.bin", noise(900'000, 2));
    EXPECT_EQ(state()["onlyAtOnce"], true) << "a quick erase is enough for it";
}

// Only a disc that is blanked as a whole takes sessions that others follow.
TEST_F(PhysicalAtOnce, WhatIsToStayOpenIsErasedCompletelyFirst) {
    insertSmall("DVD-RW");
    file("old.bin", noise(900'000));
    EXPECT_DONE(burn(layout("OLD")));
    fs::remove(source / "old.bin");
    for (const bool overwrites : {true, false}) {
        if (!overwrites) erase(EraseType::Quick);
        EXPECT_EQ(state()["onlyAtOnce"], !overwrites);
        file("first.bin", noise(700'000, 2));
        EXPECT_DONE(burn(layout("FIRST"), staysOpen(overwrites)));
        EXPECT_EQ(medium().state, MediumState::Appendable);
        fs::remove(source / "first.bin");
        file("second.bin", noise(600'000, 3));
        EXPECT_DONE(burn(layout("SECOND"), staysOpen()));
        EXPECT_EQ(medium().sessionCount(), 2u);
        holds("first.bin", noise(700'000, 2));
        holds("second.bin", noise(600'000, 3));
        fs::remove(source / "second.bin");
    }
}

// Nothing is erased for a burn that can't come to its end.
TEST_F(PhysicalAtOnce, WhatCanNotBeBurnedLeavesTheDiscAsItIs) {
    insertSmall("DVD-RW");
    file("old.bin", noise(900'000));
    EXPECT_DONE(burn(layout("OLD")));
    EXPECT_EQ(medium().capacityBlocks, capacity) << "of a full disc, too";
    const auto before = state()["tracks"];
    const auto isRefused = [&](Layout what, const BurnOptions& options, ErrorCode code) {
        const BurnStatus status = burn(std::move(what), options);
        ASSERT_TRUE(status.error.has_value());
        EXPECT_EQ(status.error->code, code) << status.error->message;
        EXPECT_EQ(state()["tracks"], before);
        holds("old.bin", noise(900'000));
    };
    for (const bool appendable : {false, true}) {
        BurnOptions options;
        options.overwrite = true;
        options.appendable = appendable;
        file("large.bin", std::string(capacity * blockSize, 'x'));
        isRefused(layout("LARGE"), options, ErrorCode::BurnNotAllowed);
        fs::remove(source / "large.bin");
        Layout two = layout("TWO");
        two.sessions.push_back(layout("MORE").sessions.front());
        isRefused(std::move(two), options, ErrorCode::FunctionNotSupported);
        options.strategies = {Strategy::CDTrackAtOnce};
        options.strategyIsRequired = true;
        isRefused(layout("WAY"), options, ErrorCode::StrategyNotAvailable);
        options.strategyIsRequired = false;
        options.testing = true;
        isRefused(layout("TEST"), options, ErrorCode::MediaNotBlank);
    }
}

TEST_F(PhysicalAtOnce, ATestErasesNothingAndWritesNothing) {
    for (const bool onlyAtOnce : {false, true})
        for (const bool appendable : {false, true}) {
            insertSmall("DVD-RW", {{"onlyAtOnce", onlyAtOnce}});
            file("noise.bin", noise(900'000));
            BurnOptions options;
            options.testing = true;
            options.appendable = appendable;
            EXPECT_DONE(burn(layout(), options));
            EXPECT_GT(state()["writes"], 10);
            EXPECT_EQ(state()["tracks"].size(), 0u);
            EXPECT_EQ(state()["onlyAtOnce"], onlyAtOnce);
            EXPECT_EQ(writeType(), appendable && !onlyAtOnce ? 0 : 2);
            EXPECT_TRUE(medium().blank);
        }
    insert("CD-RW");
    drive()->closeTray().ok();
    EXPECT_DONE(burn(layout("OLD")));
    BurnOptions options;
    options.testing = options.overwrite = true;
    const BurnStatus status = burn(layout("TEST"), options);
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::MediaNotBlank);
    holds("noise.bin", noise(900'000));
}

// Drives are known that promise pieces where the disc takes none.
TEST_F(PhysicalAtOnce, ADriveThatPromisesTooMuchIsToldFrom) {
    insertSmall("DVD-RW", {{"onlyAtOnce", true}, {"faults", {{"claimsIncremental", true}}}});
    file("noise.bin", noise(900'000));
    const BurnStatus status = burn(layout(), staysOpen());
    ASSERT_TRUE(status.error.has_value());
    EXPECT_NE(status.error->message.find("erase it completely"), std::string::npos)
        << status.error->message << status.error->info;
    EXPECT_EQ(state()["tracks"].size(), 0u);
    EXPECT_DONE(burn(layout()));
    holds("noise.bin", noise(900'000));
}

// Nothing stops a drive that blanks; nobody waits for it, either, but the drive is busy until it is done.
TEST_F(PhysicalAtOnce, AfterAnAbortDuringTheEraseTheDriveComesBack) {
    insertSmall("DVD-RW");
    file("noise.bin", noise(900'000));
    EXPECT_DONE(burn(layout()));
    BurnJob job(drive());
    std::atomic<bool> isErasing{false};
    job.setObserver([&](const BurnStatus& status) {
        if (status.state == BurnState::SessionOpen) isErasing = true;
    });
    ASSERT_TRUE(job.start(layout("NEW"), staysOpen(true)).ok());
    while (!isErasing)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    job.abort();
    const BurnStatus status = job.wait();
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::UserCanceled);
    waitUntilFree();
    BurnOptions options;
    options.overwrite = true;
    EXPECT_DONE(burn(layout("NEW"), options));
    holds("noise.bin", noise(900'000));
}
