// Processes that are killed while they burn media that take blocks in their order: the medium is openly incomplete, what was
// on it before is still there, and the next burn works where the kind allows it.
#include "Killed.hpp"

using namespace engine;

struct Cut {
    const char* kind;
    const char* how;
    friend void PrintTo(const Cut& each, std::ostream* out) { *out << each.kind << ' ' << each.how; }
};

class PhysicalCut : public PhysicalKilled, public ::testing::WithParamInterface<Cut> {
  protected:
    bool isAppended() const { return std::string(GetParam().how) == "appended"; }
    void lookAnew() { ASSERT_TRUE(drive()->closeTray().ok()); } // what was seen before is forgotten
    void prepare() {
        insert(GetParam().kind, {{"capacity", 65536}});
        lookAnew();
        if (isAppended()) {
            file("old.bin", noise(900'000, 2));
            BurnOptions options;
            options.appendable = true;
            EXPECT_DONE(burn(layout("OLD"), options));
            ASSERT_EQ(medium().state, MediumState::Appendable);
        }
        file("noise.bin", noise(20'000'000));
        change("faults", {{"slowWrites", 10}});
    }
};

TEST_P(PhysicalCut, LeavesWhatIsOpenlyIncomplete) {
    prepare();
    killWhileItWrites(GetParam().how);
    lookAnew();
    const MediumInfo after = medium();
    EXPECT_EQ(after.state, MediumState::Incomplete);
    EXPECT_FALSE(after.blank || after.appendable);
    EXPECT_FALSE(after.nextWritableBlock);
    EXPECT_EQ(after.blocksFree, 0u);
    for (const bool appendable : {false, true}) {
        BurnOptions options;
        options.appendable = appendable;
        const BurnStatus next = burn(layout("NEXT"), options);
        ASSERT_TRUE(next.error.has_value());
        EXPECT_EQ(next.error->code, ErrorCode::MediaNotBlank) << next.error->message;
    }
    if (isAppended()) {
        EXPECT_TRUE(extracted("old.bin") == noise(900'000, 2));
    }
    EXPECT_EQ(after.erasable, factsOf(after.kind).erasable);
    if (!after.erasable) return;
    fs::remove(source / "noise.bin");
    file("letter.txt", "Dear reader,\n");
    BurnOptions options;
    options.overwrite = true;
    EXPECT_DONE(burn(layout("NEW"), options));
    EXPECT_EQ(extracted("letter.txt"), "Dear reader,\n");
}

INSTANTIATE_TEST_SUITE_P(
    All, PhysicalCut,
    ::testing::Values(Cut{"CD-R", "closed"}, Cut{"CD-R", "appendable"}, Cut{"CD-R", "appended"},
                      Cut{"CD-RW", "closed"}, Cut{"CD-RW", "appendable"}, Cut{"CD-RW", "appended"},
                      Cut{"DVD-R", "closed"}, Cut{"DVD-R", "appendable"}, Cut{"DVD-R", "appended"},
                      Cut{"DVD-R DL", "closed"}, Cut{"DVD-RW", "closed"}, Cut{"DVD-RW", "appendable"},
                      Cut{"DVD-RW", "appended"}, Cut{"DVD+R", "closed"}, Cut{"DVD+R", "appendable"},
                      Cut{"DVD+R", "appended"}, Cut{"DVD+R DL", "closed"}, Cut{"BD-R", "closed"},
                      Cut{"BD-R", "appendable"}, Cut{"BD-R", "appended"}),
    [](const auto& each) {
        std::string name = std::string(each.param.kind) + "_" + each.param.how;
        for (char& letter : name)
            letter = letter == '+' ? 'p' : letter == '-' || letter == ' ' ? '_' : letter;
        return name;
    });
