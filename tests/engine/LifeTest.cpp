// The whole life of a disc, for every kind of medium: blank, burned and left open, appended to, closed, refused,
// overwritten, erased.
#include "EraseJob.hpp"
#include "Fixture.hpp"

using namespace engine;

class LifeTest : public EngineTest, public ::testing::WithParamInterface<MediumKind> {
  protected:
    const MediumFacts& facts() const { return factsOf(GetParam()); }
    bool isAgainWritable() const { return facts().erasable || facts().overwritable; }

    BurnStatus burnFolder(const std::string& name, BurnOptions options = {}) {
        const fs::path folder = base / name;
        fs::create_directories(folder);
        std::ofstream(folder / (name + ".bin"), std::ios::binary)
            << noise(300'000, name.size() + static_cast<size_t>(name.front()));
        std::ofstream(folder / "same.txt", std::ios::binary) << name;
        return burn(openDrive(), layoutOf(Content::real(folder.string(), "LIFE")), options);
    }
    static BurnOptions open() {
        BurnOptions options;
        options.appendable = true;
        return options;
    }
    std::string output(const std::string& command) const {
        const auto to = base / "output";
        EXPECT_EQ(std::system((command + " > '" + to.string() + "'").c_str()), 0) << command;
        return bytesOf(to);
    }
    // What isoinfo finds in the newest session: the files of its tree.
    std::string newest(const std::string& what) const {
        const uint64_t start =
            openDrive(drivePath())->mediumInfo()->sessions.back().tracks.front().startBlock;
        return output("isoinfo -R -T " + std::to_string(start) + " -i '" + image().string() + "' " + what);
    }
    static std::shared_ptr<VirtualDrive> openDrive(const fs::path& path) {
        return VirtualDrive::open(path.string());
    }
    std::string files() const {
        std::string list = newest("-f | sort | tr '\\n' ' '");
        // Where the start of the medium is made new, readers find the newest session without being told.
        if (facts().overwritable) {
            EXPECT_EQ(output("bsdtar -tf '" + image().string() +
                             "' | grep -v '^\\.$' | sed s,^,/, | sort | tr '\\n' ' '"),
                      list);
        }
        return list;
    }
    bool holds(const std::string& name, const std::string& bytes) const {
        if (facts().overwritable && output("bsdtar -xOf '" + image().string() + "' ./" + name) != bytes)
            return false;
        return newest("-x /" + name) == bytes;
    }
    std::string sourceOf(const std::string& name) const { return bytesOf(base / name / (name + ".bin")); }
    std::shared_ptr<VirtualDrive> openDrive() { return openDrive(drivePath()); }
};

INSTANTIATE_TEST_SUITE_P(EveryKind, LifeTest, ::testing::ValuesIn([] {
                             std::vector<MediumKind> kinds;
                             for (const MediumFacts& facts : allMediumKinds())
                                 if (facts.writable) kinds.push_back(facts.kind);
                             return kinds;
                         }()),
                         [](const auto& each) {
                             std::string name(factsOf(each.param).name);
                             std::replace(name.begin(), name.end(), '+', 'P');
                             std::erase_if(name, [](char c) {
                                 return std::isalnum(static_cast<unsigned char>(c)) == 0;
                             });
                             return name + std::to_string(each.index);
                         });

TEST_P(LifeTest, goesAsItsKindAllows) {
    makeDrive(GetParam());
    const auto drive = openDrive();

    EXPECT_DONE(burnFolder("first", open()));
    auto medium = drive->mediumInfo();
    EXPECT_EQ(medium->state, MediumState::Appendable);
    EXPECT_TRUE(medium->appendable);
    EXPECT_EQ(medium->overwritable, isAgainWritable());
    ASSERT_EQ(medium->sessionCount(), 1u);
    ASSERT_TRUE(medium->nextWritableBlock);
    EXPECT_EQ(medium->blocksFree, medium->capacityBlocks - *medium->nextWritableBlock);
    EXPECT_EQ(files(), "/first.bin /same.txt ");
    const std::string before = bytesOf(image());

    EXPECT_DONE(burnFolder("second", open()));
    EXPECT_EQ(files(), "/first.bin /same.txt /second.bin ");
    EXPECT_TRUE(holds("same.txt", "second"));
    EXPECT_TRUE(holds("first.bin", sourceOf("first")));
    EXPECT_TRUE(holds("second.bin", sourceOf("second")));

    EXPECT_DONE(burnFolder("third"));
    medium = drive->mediumInfo();
    EXPECT_EQ(medium->state, MediumState::Complete);
    EXPECT_FALSE(medium->appendable);
    EXPECT_EQ(medium->blocksFree, 0u);
    ASSERT_EQ(medium->sessionCount(), 3u);
    EXPECT_EQ(medium->sessions[2].tracks[0].number, 3u);
    EXPECT_EQ(files(), "/first.bin /same.txt /second.bin /third.bin ");
    EXPECT_TRUE(holds("first.bin", sourceOf("first")));
    const uint64_t gap = medium->sessions[1].tracks[0].startBlock -
                         (medium->sessions[0].tracks[0].startBlock + medium->sessions[0].tracks[0].blocks);
    if (facts().mediumClass == MediumClass::CD) {
        EXPECT_EQ(gap, 11400u);
        EXPECT_EQ(medium->sessions[2].tracks[0].startBlock,
                  medium->sessions[1].tracks[0].startBlock + medium->sessions[1].tracks[0].blocks + 6900);
    } else {
        EXPECT_EQ(medium->sessions[1].tracks[0].startBlock % 16, 0u);
    }
    // Earlier sessions are not touched, but for the start of media that have no other way.
    const std::string after = bytesOf(image());
    const size_t from = facts().overwritable ? 32 * blockSize : 0;
    EXPECT_TRUE(after.substr(from, before.size() - from) == before.substr(from));
    EXPECT_EQ(after.size(), medium->blocksUsed * blockSize);

    const auto refused = burnFolder("fourth", open());
    EXPECT_EQ(nameOf(refused.state), "Failed");
    EXPECT_EQ(refused.error->code, ErrorCode::MediaNotBlank);
    EXPECT_TRUE(bytesOf(image()) == after);

    BurnOptions again;
    again.overwrite = true;
    const auto overwritten = burnFolder("fifth", again);
    if (isAgainWritable()) {
        EXPECT_DONE(overwritten);
        EXPECT_EQ(files(), "/fifth.bin /same.txt ");
        EXPECT_EQ(drive->mediumInfo()->sessionCount(), 1u);
    } else {
        EXPECT_EQ(overwritten.error->code, ErrorCode::MediaNotBlank);
        EXPECT_TRUE(bytesOf(image()) == after);
    }

    EraseJob erase(drive);
    ASSERT_TRUE(erase.start(EraseType::Quick).ok());
    EXPECT_EQ(nameOf(erase.wait().state), facts().erasable ? "Done" : "Failed");
    EXPECT_EQ(drive->mediumInfo()->blank, facts().erasable);
}

TEST_P(LifeTest, aTestBurnWritesNothing) {
    makeDrive(GetParam());
    BurnOptions options = open();
    EXPECT_DONE(burnFolder("first", options));
    const auto contents = [&] {
        std::string all;
        for (const auto& entry : fs::directory_iterator(drivePath()))
            if (entry.path().filename() != "lock")
                all += entry.path().filename().string() + bytesOf(entry.path());
        return all.size();
    };
    const std::string imageBefore = bytesOf(image()), recordBefore = bytesOf(drivePath() / "medium.json");
    const size_t before = contents();
    options.testing = true;
    const auto status = burnFolder("second", options);
    EXPECT_DONE(status);
    EXPECT_TRUE(bytesOf(image()) == imageBefore);
    EXPECT_EQ(bytesOf(drivePath() / "medium.json"), recordBefore);
    EXPECT_EQ(contents(), before);
}

TEST_P(LifeTest, aDriveThatCannotTestBurnsReally) {
    VirtualDriveSetup setup;
    setup.medium = GetParam();
    setup.lacks = {"test-write-cd", "test-write-dvd", "test-write-bd"};
    ASSERT_TRUE(makeVirtualDrive(drivePath().string(), setup).ok());
    BurnOptions options;
    options.testing = true;
    EXPECT_DONE(burnFolder("first", options));
    EXPECT_EQ(openDrive()->mediumInfo()->state, MediumState::Complete);
    EXPECT_EQ(files(), "/first.bin /same.txt ");
}
