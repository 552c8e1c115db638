// medium.json: what is written is read, what is damaged is said, what was cut off is ended.
#include "Failure.hpp"
#include "Fixture.hpp"

using namespace engine;

class MediumRecordTest : public EngineTest {
  protected:
    MediumRecordTest() : folder(::open(base.c_str(), O_RDONLY | O_DIRECTORY)) {}
    void put(const std::string& name, const std::string& bytes) { std::ofstream(base / name) << bytes; }
    std::string damage(const std::string& json) {
        put("medium.json", json);
        const auto loaded = guarded([&] { return loadMedium(folder.get()); });
        if (loaded) return "no error";
        EXPECT_EQ(loaded.error().code, ErrorCode::MediaInvalid);
        return loaded.error().info;
    }
    static MediumRecord complete(const std::string& image) {
        MediumRecord record = MediumRecord::blank(MediumKind::DVDPlusRW, 1000);
        record.state = MediumState::Complete;
        record.image = image;
        TrackInfo track;
        track.blocks = 40;
        track.volumeName = "Grüße \"x\"";
        record.sessions = {SessionInfo{1, {track}, true}};
        return record;
    }

    Descriptor folder;
};

TEST_F(MediumRecordTest, survivesBeingWrittenAndRead) {
    saveMedium(folder.get(), complete("medium.iso"));
    const auto read = loadMedium(folder.get());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->kind, MediumKind::DVDPlusRW);
    EXPECT_EQ(read->state, MediumState::Complete);
    EXPECT_EQ(read->capacityBlocks, 1000u);
    EXPECT_EQ(read->image, "medium.iso");
    ASSERT_EQ(read->sessions.size(), 1u);
    EXPECT_EQ(read->sessions[0].tracks[0].blocks, 40u);
    EXPECT_EQ(read->sessions[0].tracks[0].volumeName, "Grüße \"x\"");
    EXPECT_FALSE(fs::exists(base / "medium.json.new"));
}

TEST_F(MediumRecordTest, isNoneWithoutAFile) { EXPECT_FALSE(loadMedium(folder.get())); }

TEST_F(MediumRecordTest, saysWhatIsDamaged) {
    EXPECT_EQ(damage(""), "it is not JSON");
    EXPECT_EQ(damage("[1]"), "it is not JSON");
    EXPECT_EQ(damage("{}"), "\"format\" is missing");
    EXPECT_EQ(damage(R"({"format": 2})"), "its format is of a later version");
    EXPECT_EQ(damage(R"({"format": 1, "kind": 3})"), "\"kind\" is of the wrong type");
    EXPECT_EQ(damage(R"({"format": 1, "kind": "LP"})"), "no medium is of the kind \"LP\"");
    EXPECT_EQ(damage(R"({"format": 1, "kind": "CD-R", "capacityBlocks": -5})"),
              "\"capacityBlocks\" is of the wrong type");
    EXPECT_EQ(damage(R"({"format": 1, "kind": "CD-R", "capacityBlocks": 5, "state": "new"})"),
              "\"state\" is \"new\"");
    EXPECT_EQ(
        damage(
            R"({"format": 1, "kind": "CD-R", "capacityBlocks": 5, "state": "blank", "image": "../x", "sessions": []})"),
        "its image lies in another folder");
    EXPECT_EQ(
        damage(
            R"({"format": 1, "kind": "CD-R", "capacityBlocks": 5, "state": "blank", "sessions": [{"tracks": [7]}]})"),
        "a track is no object");
    for (const char* sum : {"12", "00000000000000000", "000000000000000g", "-000000000000001"})
        EXPECT_EQ(
            damage(
                R"({"format": 1, "kind": "CD-R", "capacityBlocks": 5, "state": "blank", "image": "medium.iso", )"
                R"("sessions": [{"tracks": [{"mode": "data", "startBlock": 0, "blocks": 1, "xxh3": ")" +
                std::string(sum) + R"("}]}]})"),
            "a track's sum is no number of 16 digits");
    EXPECT_EQ(
        damage(R"({"format": 1, "kind": "CD-R", "capacityBlocks": 5, "state": "complete", "sessions": []})"),
        "it is complete but has no image");
}

TEST_F(MediumRecordTest, obeysItsKind) {
    const MediumInfo blankR = MediumRecord::blank(MediumKind::DVDPlusR).info("/d");
    EXPECT_TRUE(blankR.blank && blankR.appendable && blankR.overwritable);
    EXPECT_FALSE(blankR.erasable);
    EXPECT_EQ(blankR.blocksFree, 2295104u);
    EXPECT_EQ(blankR.path, "");
    MediumRecord full = complete("medium.iso");
    const MediumInfo fullRW = full.info("/d");
    EXPECT_TRUE(fullRW.overwritable && fullRW.erasable);
    EXPECT_FALSE(fullRW.blank || fullRW.appendable);
    EXPECT_EQ(fullRW.blocksFree, 0u);
    EXPECT_EQ(fullRW.blocksUsed, 40u);
    EXPECT_EQ(fullRW.blocksOverwritable, 1000u);
    EXPECT_EQ(fullRW.path, "/d/medium.iso");
    full.kind = MediumKind::CDR;
    EXPECT_FALSE(full.info("/d").overwritable);
    EXPECT_EQ(full.info("/d").blocksOverwritable, 0u);
    const MediumInfo rom = MediumRecord::blank(MediumKind::CDROM).info("/d");
    EXPECT_FALSE(rom.overwritable || rom.appendable || rom.erasable);
    EXPECT_EQ(rom.blocksFree, 0u);
}

// The four steps of a commit, cut off after each.
TEST_F(MediumRecordTest, isTheOldOneWhenCutOffBeforeItsDescriptionNamesTheNewImage) {
    saveMedium(folder.get(), complete("medium.iso"));
    put("medium.iso", "old");
    put("medium.new.iso", "half");
    put("medium.json.new", "{");
    recoverMedium(folder.get());
    EXPECT_EQ(bytesOf(base / "medium.iso"), "old");
    EXPECT_FALSE(fs::exists(base / "medium.new.iso"));
    EXPECT_FALSE(fs::exists(base / "medium.json.new"));
}

TEST_F(MediumRecordTest, isTheNewOneWhenCutOffAfterwards) {
    saveMedium(folder.get(), complete("medium.new.iso"));
    put("medium.iso", "old");
    put("medium.new.iso", "new");
    recoverMedium(folder.get());
    EXPECT_EQ(bytesOf(base / "medium.iso"), "new");
    EXPECT_FALSE(fs::exists(base / "medium.new.iso"));
    EXPECT_EQ(loadMedium(folder.get())->image, "medium.iso");
}

TEST_F(MediumRecordTest, isTheNewOneWhenCutOffAfterTheRename) {
    saveMedium(folder.get(), complete("medium.new.iso"));
    put("medium.iso", "new");
    recoverMedium(folder.get());
    EXPECT_EQ(bytesOf(base / "medium.iso"), "new");
    EXPECT_EQ(loadMedium(folder.get())->image, "medium.iso");
}

TEST_F(MediumRecordTest, isNotExchangedForFilesThatWereTakenAway) {
    MediumRecord record = complete("medium.new.iso");
    put("medium.iso", "old"); // is not taken for the new one
    try {
        requireNewFiles(folder.get(), record);
        FAIL() << "there is no new file";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.error().code, ErrorCode::MediaWriteFailure);
    }
    put("medium.new.iso", "new");
    EXPECT_NO_THROW(requireNewFiles(folder.get(), record));
}

TEST_F(MediumRecordTest, losesWhatACutOffBurnAppended) {
    MediumRecord record = complete("medium.iso");
    record.state = MediumState::Appendable;
    saveMedium(folder.get(), record);
    put("medium.iso", std::string(41 * 2048, 'x'));
    put("medium.2.bin", "half");
    put("medium.iso.mine", "a person's");
    recoverMedium(folder.get());
    EXPECT_EQ(fs::file_size(base / "medium.iso"), 40 * 2048u);
    EXPECT_FALSE(fs::exists(base / "medium.2.bin"));
    EXPECT_TRUE(fs::exists(base / "medium.iso.mine"));
    // A disc that nothing can be appended to has no such rest: what is longer is not ours to cut.
    saveMedium(folder.get(), complete("medium.iso"));
    put("medium.iso", std::string(41 * 2048, 'x'));
    recoverMedium(folder.get());
    EXPECT_EQ(fs::file_size(base / "medium.iso"), 41 * 2048u);
}

TEST_F(MediumRecordTest, keepsAllThatIsKnownOfATrack) {
    MediumRecord record = MediumRecord::blank(MediumKind::CDR);
    TrackInfo track;
    track.form = BlockForm::XA;
    track.startBlock = 200;
    track.blocks = 900;
    track.preGapBlocks = 350;
    track.isrc = "DEA120012345";
    track.indexPoints = {1, 20};
    track.preEmphasis = track.isCopy = true;
    track.isComplete = false;
    track.file = "medium.bin";
    track.fileOffset = 200 * 2352;
    record.sessions = {SessionInfo{1, {track}, false}};
    record.state = MediumState::Incomplete;
    record.image = "medium.cue";
    record.mediaCatalogNumber = "0123456789012";
    record.doubleLayerL0DataZoneBlocks = 4096;
    saveMedium(folder.get(), record);
    EXPECT_TRUE(fs::exists(base / "medium.cue"));
    const auto read = loadMedium(folder.get());
    ASSERT_TRUE(read);
    ASSERT_EQ(read->sessions.size(), 1u);
    EXPECT_FALSE(read->sessions[0].isClosed);
    const TrackInfo& again = read->sessions[0].tracks[0];
    EXPECT_EQ(again.form, BlockForm::XA);
    EXPECT_EQ(again.startBlock, 200u);
    EXPECT_EQ(again.preGapBlocks, 350u);
    EXPECT_EQ(again.isrc, track.isrc);
    EXPECT_EQ(again.indexPoints, track.indexPoints);
    EXPECT_TRUE(again.preEmphasis && again.isCopy && !again.fourChannel && !again.copyPermitted);
    EXPECT_FALSE(again.isComplete);
    EXPECT_EQ(again.file, "medium.bin");
    EXPECT_EQ(again.fileOffset, track.fileOffset);
    EXPECT_EQ(read->mediaCatalogNumber, record.mediaCatalogNumber);
    EXPECT_EQ(read->doubleLayerL0DataZoneBlocks, 4096u);
}
