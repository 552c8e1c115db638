// What goes wrong in a drive comes back with the drive's own words.
#include "Fixture.hpp"
#include "physical/Sense.hpp"

using namespace engine;

TEST(PhysicalSense, TextsAndCodes) {
    const Sense sense{0x3, 0x0C, 0x00};
    const auto bytes = bytesOf(sense);
    ASSERT_EQ(bytes.size(), 18u);
    const auto back = senseOf(bytes);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(textOfSenseKey(back->key), "Medium Error");
    EXPECT_EQ(textOfAdditionalSense(*back), "Write error");
    EXPECT_EQ(textOfAdditionalSense({0x5, 0x47, 0x03}), "Code 47/03");
    EXPECT_FALSE(senseOf({}).has_value());
    EXPECT_EQ(codeOf({0x3, 0x73, 0x03}, ErrorCode::MediaWriteFailure), ErrorCode::PowerCalibration);
    EXPECT_EQ(codeOf({0x2, 0x3A, 0x02}, ErrorCode::MediaWriteFailure), ErrorCode::MediaNotPresent);
    EXPECT_EQ(codeOf({0xB, 0x08, 0x00}, ErrorCode::MediaWriteFailure), ErrorCode::DeviceCommunication);
    EXPECT_EQ(codeOf({0x2, 0x04, 0x03}, ErrorCode::MediaWriteFailure), ErrorCode::DeviceNotReady);
    EXPECT_EQ(codeOf({0x3, 0x0C, 0x00}, ErrorCode::MediaWriteFailure), ErrorCode::MediaWriteFailure);
}

TEST_F(PhysicalTest, WriteErrorHasTheDrivesSense) {
    for (const char* kind : {"DVD+RW", "CD-R"}) {
        insert(kind, {{"faults", {{"writeErrors", {500}}}}});
        file("noise.bin", noise(3'000'000));
        const BurnStatus status = burn(layout());
        ASSERT_TRUE(status.error.has_value()) << kind;
        EXPECT_EQ(status.error->code, ErrorCode::MediaWriteFailure) << kind;
        const auto sense = senseOf(status.error->sense);
        ASSERT_TRUE(sense.has_value()) << kind << status.error->info;
        EXPECT_EQ(sense->key, 0x3);
        EXPECT_EQ(sense->code, 0x0C);
        EXPECT_NE(status.error->info.find("Medium Error: Write error"), std::string::npos)
            << status.error->info;
        drive()->closeTray().ok();
    }
}

TEST_F(PhysicalTest, PowerCalibrationHasACodeOfItsOwn) {
    insert("CD-R", {{"faults", {{"powerCalibration", true}}}});
    file("letter.txt", "Dear reader,\n");
    const BurnStatus status = burn(layout());
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::PowerCalibration) << status.error->info;
}

TEST_F(PhysicalTest, DriveThatGoesAwayWhileItWrites) {
    insert("DVD+RW", {{"faults", {{"goneAfterWrites", 20}}}});
    file("noise.bin", noise(6'000'000));
    const BurnStatus status = burn(layout());
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::DeviceInvalid) << status.error->message << status.error->info;
}

TEST_F(PhysicalTest, BlockThatCanNotBeRead) {
    insert("DVD+RW");
    file("noise.bin", noise(3'000'000));
    EXPECT_DONE(burn(layout()));
    change("faults", {{"readErrors", {700}}});
    auto reader = drive()->openMedium();
    ASSERT_TRUE(reader.ok());
    std::vector<std::byte> bytes(2048 * 64);
    TrackInfo whole;
    whole.blocks = 2000;
    const auto count = (*reader)->read(whole, 690, bytes);
    ASSERT_FALSE(count.ok());
    EXPECT_EQ(count.error().code, ErrorCode::MediaInvalid);
    EXPECT_EQ(count.error().info.substr(0, 6), "block ");
    const auto sense = senseOf(count.error().sense);
    ASSERT_TRUE(sense.has_value()) << count.error().info;
    EXPECT_EQ(sense->code, 0x11);
}

TEST_F(PhysicalTest, WrongByteIsFoundByVerifying) {
    insert("DVD+RW", {{"faults", {{"flipOnWrite", 600}}}});
    file("noise.bin", noise(3'000'000));
    const BurnStatus status = burn(layout());
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::VerificationFailed);
}

TEST_F(PhysicalTest, NoDiscAndBusyDrive) {
    insert("");
    file("letter.txt", "Dear reader,\n");
    EXPECT_EQ(burn(layout()).error->code, ErrorCode::MediaNotPresent);
    insert("CD-R");
    const int other = ::open("/dev/sr0", O_RDWR | O_EXCL);
    BurnJob job(drive());
    ASSERT_TRUE(job.start(layout()).ok());
    EXPECT_EQ(job.wait().error->code, ErrorCode::DeviceBusy);
    ::close(other);
}

TEST_F(PhysicalTest, FormsThatNeedAnotherWayAreRefused) {
    insert("CD-R");
    drive()->closeTray().ok(); // what was seen before is forgotten
    struct Zeros final : public TrackProducer {
        size_t produce(uint64_t, std::span<std::byte> buffer, ProduceFlags&) override {
            return buffer.size();
        }
    };
    for (const BlockForm form :
         {BlockForm::Mode2, BlockForm::Mode2Form1, BlockForm::Mixed, BlockForm::RawMode1}) {
        Track track;
        ProducedTrack raw;
        raw.form = form;
        raw.blocks = 300;
        raw.producer = std::make_shared<Zeros>();
        track.content = raw;
        const BurnStatus status = burn(Layout::ofTrack(track));
        ASSERT_TRUE(status.error.has_value()) << nameOf(form);
        EXPECT_EQ(status.error->code, ErrorCode::FunctionNotSupported) << nameOf(form);
        EXPECT_NE(status.error->message.find(nameOf(form)), std::string::npos) << status.error->message;
    }
    // Subchannel data of one's own, and the way of writing that it takes.
    Track track;
    ProducedTrack sound;
    sound.form = BlockForm::Audio;
    sound.blocks = 300;
    sound.subchannel = SubchannelForm::Raw;
    sound.producer = std::make_shared<Zeros>();
    track.content = sound;
    EXPECT_EQ(burn(Layout::ofTrack(track)).error->code, ErrorCode::FunctionNotSupported);
    BurnOptions options;
    options.strategies = {Strategy::CDRaw};
    options.strategyIsRequired = true;
    file("letter.txt", "Dear reader,\n");
    EXPECT_EQ(burn(layout(), options).error->code, ErrorCode::StrategyNotAvailable);
    EXPECT_EQ(state()["writes"], 0);
    EXPECT_TRUE(medium().blank);
}

// A drive may read a kind that it can't write.
TEST_F(PhysicalTest, KindThatTheDriveCanNotWrite) {
    setGone(first);
    ASSERT_TRUE(drives().ok()); // what was known is forgotten
    insert("CD-RW", {{"canWriteCDRW", false}});
    EXPECT_FALSE(drive()->capabilities().canWrite(MediumKind::CDRW));
    file("letter.txt", "Dear reader,\n");
    const BurnStatus status = burn(layout());
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::MediaNotSupported) << status.error->message;
    EXPECT_NE(status.error->message.find("of a kind that the drive can't write"), std::string::npos);
    EXPECT_EQ(state()["writes"], 0);
}

TEST_F(PhysicalTest, TrayThatDoesNotMove) {
    insert("CD-RW", {{"faults", {{"stuckTray", true}}}});
    const auto ejected = drive()->eject();
    EXPECT_EQ(ejected.error().code, ErrorCode::DeviceNotReady) << ejected.error().message;
    EXPECT_NE(ejected.error().message.find("does not open"), std::string::npos);
    EXPECT_EQ(drive()->closeTray().error().code, ErrorCode::DeviceNotReady);
    EXPECT_FALSE(drive()->isTrayOpen());
    EXPECT_FALSE(drive()->isBusy());
}

TEST_F(PhysicalTest, DriveInTrouble) {
    struct {
        std::vector<int> sense;
        ErrorCode code;
    } const cases[] = {{{0x4, 0x3E, 0x02}, ErrorCode::DeviceCommunication},
                       {{0x4, 0x44, 0x00}, ErrorCode::DeviceCommunication}};
    file("letter.txt", "Dear reader,\n");
    for (const auto& [sense, code] : cases) {
        insert("CD-R", {{"faults", {{"writeSense", sense}}}});
        drive()->closeTray().ok(); // what was seen before is forgotten
        const BurnStatus status = burn(layout());
        ASSERT_TRUE(status.error.has_value());
        EXPECT_EQ(status.error->code, code) << status.error->message << status.error->info;
        const auto said = senseOf(status.error->sense);
        ASSERT_TRUE(said.has_value()) << status.error->info;
        EXPECT_EQ(said->code, sense[1]);
        EXPECT_EQ(said->qualifier, sense[2]);
    }
}

TEST_F(PhysicalTest, DriveThatGoesAwayWhileItErases) {
    insert("DVD+RW", {{"capacity", 65536}});
    file("noise.bin", noise(700'000));
    EXPECT_DONE(burn(layout()));
    const DriveRef own = drive();
    change("faults", {{"goneAfterWrites", state().value("writes", 0) + 5}});
    EraseJob job(own);
    ASSERT_TRUE(job.start(EraseType::Complete).ok());
    const EraseStatus status = job.wait();
    ASSERT_TRUE(status.error.has_value());
    EXPECT_EQ(status.error->code, ErrorCode::DeviceInvalid) << status.error->message;
    EXPECT_NE(status.error->message.find("went away while it erased"), std::string::npos);
    EXPECT_FALSE(own->isValid() || own->mediumInfo());
}
