// The sum over a track's bytes, which the description of a virtual medium keeps.
#include "Fixture.hpp"
#include "Producers.hpp"
#include "TrackSum.hpp"

using namespace engine;

class SumTest : public EngineTest {
  protected:
    // Every track has one, and it is that of the bytes that are read back.
    void hasTheSumsOfItsBytes(size_t tracks) {
        const auto drive = openDrive();
        const auto medium = drive->mediumInfo();
        ASSERT_TRUE(medium);
        EXPECT_EQ(medium->trackCount(), tracks);
        const auto reader = drive->openMedium();
        ASSERT_TRUE(reader);
        for (const SessionInfo& session : medium->sessions)
            for (const TrackInfo& track : session.tracks) {
                const size_t blockBytes = bytesPerBlock(track.form);
                std::vector<std::byte> bytes(static_cast<size_t>(track.blocks) * blockBytes);
                size_t filled = 0;
                while (filled < bytes.size()) {
                    const auto got = (*reader)->read(track, static_cast<int64_t>(filled / blockBytes),
                                                     std::span(bytes).subspan(filled));
                    ASSERT_TRUE(got && *got > 0);
                    filled += *got;
                }
                TrackSum sum;
                sum.add(bytes);
                ASSERT_TRUE(track.sum) << "track " << track.number;
                EXPECT_EQ(*track.sum, sum.value()) << "track " << track.number;
            }
    }
};

TEST_F(SumTest, isTheSameInWhateverPieces) {
    const std::string bytes = noise(100'000);
    const auto all = std::as_bytes(std::span(bytes));
    TrackSum whole, pieces;
    whole.add(all);
    for (size_t at = 0; at < all.size(); at += 777)
        pieces.add(all.subspan(at, std::min<size_t>(777, all.size() - at)));
    EXPECT_EQ(whole.value(), pieces.value());
    EXPECT_EQ(TrackSum().value(), 0x2d06800538d394c2u) << "of nothing, as everywhere";
}

TEST_F(SumTest, isKeptForEverySessionAndKind) {
    for (const MediumFacts& facts : allMediumKinds()) {
        if (!facts.writable) continue;
        fs::remove_all(drivePath());
        const auto drive = makeDrive(facts.kind);
        BurnOptions options;
        options.appendable = true;
        options.verify = false; // kept all the same
        write("a.bin", noise(1'500'000));
        EXPECT_DONE(burn(drive, layout("ONE"), options));
        hasTheSumsOfItsBytes(1);
        write("b.bin", noise(300'000, 2));
        EXPECT_DONE(burn(drive, layout("TWO")));
        hasTheSumsOfItsBytes(2);
    }
}

TEST_F(SumTest, isKeptForSectorsOfEveryForm) {
    makeDrive(MediumKind::CDR);
    Layout disc;
    disc.sessions.emplace_back();
    uint64_t seed = 0;
    for (const BlockForm form :
         {BlockForm::Data, BlockForm::Audio, BlockForm::Mode2, BlockForm::Mode2Form1, BlockForm::Mode2Form2})
        disc.sessions.front().tracks.push_back(
            producedTrack(std::make_shared<TestProducer>(bytesPerBlock(form), ++seed), form, 700));
    EXPECT_DONE(burn(openDrive(), disc));
    hasTheSumsOfItsBytes(5);
}

TEST_F(SumTest, hasTheZerosOfATrackThatEndedEarly) {
    const auto early = std::make_shared<TestProducer>(2352, 1);
    early->fault = [](uint64_t, std::span<std::byte> buffer, ProduceFlags& flags) {
        flags.noMoreData = true;
        return std::min<size_t>(buffer.size(), 100 * 2352);
    };
    makeDrive(MediumKind::CDR);
    Layout disc;
    disc.sessions = {{{producedTrack(early, BlockForm::Audio, 1000),
                       producedTrack(std::make_shared<TestProducer>(2352, 2), BlockForm::Audio, 300)}}};
    EXPECT_DONE(burn(openDrive(), disc));
    hasTheSumsOfItsBytes(2);
}

TEST_F(SumTest, survivesBeingWrittenAndRead) {
    const Descriptor folder(::open(base.c_str(), O_RDONLY | O_DIRECTORY));
    MediumRecord record = MediumRecord::blank(MediumKind::DVDR, 1000);
    for (const uint64_t sum : {uint64_t{0}, uint64_t{1}, UINT64_MAX}) {
        TrackInfo track;
        track.blocks = 1;
        track.sum = sum;
        record.sessions = {SessionInfo{1, {track}, true}};
        saveMedium(folder.get(), record);
        EXPECT_EQ(loadMedium(folder.get())->sessions[0].tracks[0].sum, sum);
    }
    record.sessions[0].tracks[0].sum.reset();
    saveMedium(folder.get(), record);
    EXPECT_FALSE(loadMedium(folder.get())->sessions[0].tracks[0].sum);
}
