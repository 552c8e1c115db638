// What stands in for data that a producer promised and did not bring, where whole sectors are asked for.
#include "Fixture.hpp"
#include "Producers.hpp"
#include "sectors/SectorCoding.hpp"

#include <cstring>

using namespace engine;

class FillTest : public EngineTest {
  protected:
    static Track song(uint64_t blocks, uint64_t seed) {
        return producedTrack(std::make_shared<TestProducer>(sectorBytes, seed), BlockForm::Audio, blocks);
    }

    // A disc whose second track promises 1000 sectors and brings 100.
    void burnShort(BlockForm form) {
        const auto early = std::make_shared<TestProducer>(sectorBytes, 1);
        early->fault = [](uint64_t, std::span<std::byte> buffer, ProduceFlags& flags) {
            flags.noMoreData = true;
            return std::min<size_t>(buffer.size(), 100 * sectorBytes);
        };
        Track track = producedTrack(early, form, 1000);
        track.verification = Verification::Checksum;
        Layout disc;
        disc.sessions = {{{song(300, 2), track, song(300, 3)}}};
        EXPECT_DONE(burn(makeDrive(MediumKind::CDR), disc));
        second = openDrive()->mediumInfo()->sessions[0].tracks[1];
        bytes = bytesOf(drivePath() / "medium.bin");
    }

    std::span<const std::byte, sectorBytes> sector(uint64_t block) const {
        const size_t offset =
            static_cast<size_t>(second.fileOffset) + static_cast<size_t>(block) * sectorBytes;
        return std::as_bytes(std::span(bytes)).subspan(offset).first<sectorBytes>();
    }

    void hasEmptySectors(BlockForm form, BlockForm content, char mode) {
        burnShort(form);
        ASSERT_EQ(second.blocks, 1000u);
        ASSERT_EQ(second.startBlock, 450u);
        const std::string brought = TestProducer(sectorBytes, 1).bytes(100 * sectorBytes);
        EXPECT_EQ(std::memcmp(sector(0).data(), brought.data(), brought.size()), 0);
        for (uint64_t block = 100; block < 1000; ++block) {
            const auto address = static_cast<int64_t>(second.startBlock + block);
            ASSERT_TRUE(isIntactSector(content, address, sector(block))) << block;
            const auto data = sector(block).subspan(userDataOffset(content), bytesPerBlock(content));
            ASSERT_TRUE(std::all_of(data.begin(), data.end(), [](std::byte each) {
                return each == std::byte{};
            })) << block;
        }
        // Block 450 + 175 of the disc, with the two seconds that headers count before it: 00:10:25.
        const std::string start =
            std::string(1, '\0') + std::string(10, '\xFF') + std::string({'\0', '\0', '\x10', '\x25', mode});
        EXPECT_EQ(std::memcmp(sector(175).data(), start.data(), start.size()), 0);
        // The next track is where it was promised to be, and whole.
        const std::string third = TestProducer(sectorBytes, 3).bytes(300 * sectorBytes);
        EXPECT_TRUE(bytes.ends_with(third));
    }

    TrackInfo second;
    std::string bytes;
};

TEST_F(FillTest, sectorsOfMode1AreWhole) { hasEmptySectors(BlockForm::RawMode1, BlockForm::Data, '\1'); }

// Right as formless ones and as those of form 1, which is what a disc of CD-ROM XA takes them for.
TEST_F(FillTest, sectorsOfMode2AreWhole) {
    hasEmptySectors(BlockForm::RawMode2, BlockForm::Mode2, '\2');
    for (uint64_t block = 100; block < 1000; ++block)
        ASSERT_TRUE(isIntactSector(BlockForm::Mode2Form1, static_cast<int64_t>(second.startBlock + block),
                                   sector(block)));
}
