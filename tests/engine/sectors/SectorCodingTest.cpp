// Sectors against the standard's formulas worked out slowly elsewhere, and against programs that are not ours.
#include "sectors/SectorCoding.hpp"
#include "Scratch.hpp"
#include "sectors/Codes.hpp"

#include <array>
#include <cstring>

namespace {

using namespace engine;
using Sector = std::array<std::byte, sectorBytes>;

// The order is that of sectors.py.
constexpr BlockForm codedForms[] = {BlockForm::Data, BlockForm::Mode2, BlockForm::Mode2Form1,
                                    BlockForm::Mode2Form2, BlockForm::XA};

std::vector<std::byte> userData(BlockForm form, const std::string& bytes) {
    std::vector<std::byte> user(bytesPerBlock(form));
    std::memcpy(user.data(), bytes.data(), std::min(user.size(), bytes.size()));
    return user;
}

Sector coded(BlockForm form, int64_t address, const std::vector<std::byte>& user) {
    Sector sector{};
    encodeSector(form, address, user, sector);
    return sector;
}

std::string textOf(const Sector& sector) {
    return {reinterpret_cast<const char*>(sector.data()), sector.size()};
}

class SectorCoding : public Scratch {};

TEST_F(SectorCoding, IsWhatTheFormulasOfTheStandardGive) {
    std::string records, expected;
    uint64_t seed = 1;
    for (size_t number = 0; number < std::size(codedForms); ++number)
        for (const int64_t address : {-150, -151, -1, 0, 16, 74, 75, 4499, 4500, 333000, 449849}) {
            const BlockForm form = codedForms[number];
            // Noise, in XA of one form and the other; twice the same byte throughout.
            std::string bytes = noise(bytesPerBlock(form), ++seed);
            if (address == 16 || address == 75) bytes.assign(bytes.size(), address == 16 ? '\0' : '\xFF');
            const auto user = userData(form, bytes);
            const auto shortAddress = static_cast<int32_t>(address);
            records += static_cast<char>(number);
            records.append(reinterpret_cast<const char*>(&shortAddress), sizeof shortAddress);
            records += bytes;
            const Sector sector = coded(form, address, user);
            expected += textOf(sector);
            EXPECT_TRUE(isIntactSector(form, address, sector)) << number << " at " << address;
        }
    const fs::path users = write("users", records), sectors = base / "sectors";
    ASSERT_EQ(run("python3 '" SECTORS_PY "' '" + users.string() + "' '" + sectors.string() + "'"), "");
    const std::string right = bytesOf(sectors);
    ASSERT_EQ(right.size(), expected.size());
    for (size_t at = 0; at < right.size(); at += sectorBytes)
        ASSERT_EQ(right.substr(at, sectorBytes), expected.substr(at, sectorBytes))
            << "sector " << at / sectorBytes;
}

// A film disc of another program has sectors of both forms, each with its own subheader.
TEST_F(SectorCoding, MakesTheSectorsOfAnotherProgramsFilmDisc) {
    ASSERT_EQ(run("ffmpeg -v error -f lavfi -i testsrc=d=1:s=352x288 -f lavfi -i sine=d=1 -target pal-vcd "
                  "film.mpg && vcdimager -q -t vcd2 film.mpg >told 2>&1"),
              "");
    const std::string disc = bytesOf(base / "videocd.bin");
    ASSERT_GT(disc.size(), 500 * sectorBytes);
    size_t form1 = 0, form2 = 0;
    for (size_t number = 0; number < disc.size() / sectorBytes; ++number) {
        Sector theirs;
        std::memcpy(theirs.data(), &disc[number * sectorBytes], sectorBytes);
        const auto address = static_cast<int64_t>(number);
        EXPECT_TRUE(isIntactSector(BlockForm::XA, address, theirs)) << number;
        EXPECT_TRUE(isIntactSector(BlockForm::RawMode2, 7, theirs)) << number;
        (theirs[18] & std::byte{0x20}) != std::byte{0} ? ++form2 : ++form1;

        std::vector<std::byte> user(theirs.begin() + 16, theirs.end());
        EXPECT_EQ(coded(BlockForm::Mode2, address, user), theirs) << number;
        std::fill(user.begin() + 2332, user.end(), std::byte{0x55}); // codes are made, not taken
        ASSERT_EQ(coded(BlockForm::XA, address, user), theirs) << number;
        user.resize(2332);
        ASSERT_EQ(coded(BlockForm::Mixed, address, user), theirs) << number;
        EXPECT_TRUE(isIntactSector(BlockForm::Mixed, address, theirs)) << number;
    }
    EXPECT_GT(form1, 100u);
    EXPECT_GT(form2, 100u);
}

// A program that packs discs leaves out the parity of sectors where it finds it right, and puts it back.
TEST_F(SectorCoding, AnotherProgramFindsTheParityRight) {
    const auto packedSize = [this](const std::string& name, bool isRight) {
        std::string disc;
        for (int64_t address = 0; address < 400; ++address) {
            Sector sector = coded(BlockForm::Data, address,
                                  userData(BlockForm::Data, noise(2048, 77 + uint64_t(address))));
            if (!isRight) sector[2300] ^= std::byte{1};
            disc += textOf(sector);
        }
        write(name + ".bin", disc);
        write(name + ".cue", "FILE \"" + name + ".bin\" BINARY\n TRACK 01 MODE1/2352\n  INDEX 01 00:00:00\n");
        EXPECT_EQ(run("chdman createcd -c cdzl -i " + name + ".cue -o " + name +
                      ".chd >told 2>&1 && chdman "
                      "extractcd -i " +
                      name + ".chd -o " + name + "-2.cue -ob " + name + "-2.bin >told 2>&1"),
                  "");
        EXPECT_EQ(bytesOf(base / (name + "-2.bin")), disc);
        return fs::file_size(base / (name + ".chd"));
    };
    const auto right = packedSize("right", true), wrong = packedSize("wrong", false);
    EXPECT_LT(right, 400u * 2100);
    EXPECT_GT(wrong, 400u * 2320);
}

TEST_F(SectorCoding, FindsEveryByteThatIsNotAsItWas) {
    for (const BlockForm form : {BlockForm::Data, BlockForm::Mode2Form1, BlockForm::Mode2Form2}) {
        const Sector sector = coded(form, 1234, userData(form, noise(2400)));
        EXPECT_FALSE(isIntactSector(form, 1235, sector));
        for (size_t at = 0; at < sectorBytes; ++at) {
            Sector broken = sector;
            broken[at] ^= std::byte{0x10};
            ASSERT_FALSE(isIntactSector(form, 1234, broken)) << at;
        }
    }
    const Sector sector = coded(BlockForm::Data, 5, userData(BlockForm::Data, noise(2048)));
    EXPECT_FALSE(isIntactSector(BlockForm::Mode2, 5, sector));
    EXPECT_TRUE(isIntactSector(BlockForm::RawMode1, 99, sector)); // a raw sector brings its own address
    EXPECT_FALSE(isIntactSector(BlockForm::RawMode2, 5, sector));
}

// CD-ROM XA leaves form 2 its code or zeros.
TEST_F(SectorCoding, FormTwoMayBeWithoutCode) {
    Sector sector = coded(BlockForm::Mode2Form2, 5, userData(BlockForm::Mode2Form2, noise(2324)));
    EXPECT_TRUE(isIntactSector(BlockForm::Mode2Form2, 5, sector));
    std::fill(sector.end() - 4, sector.end(), std::byte{0});
    EXPECT_TRUE(isIntactSector(BlockForm::Mode2Form2, 5, sector));
}

TEST_F(SectorCoding, UserDataStandsWhereItSays) {
    for (const BlockForm form : {BlockForm::Data, BlockForm::Audio, BlockForm::Mode2, BlockForm::Mode2Form1,
                                 BlockForm::Mode2Form2, BlockForm::RawMode1, BlockForm::RawMode2}) {
        const auto user = userData(form, noise(2352));
        const Sector sector = coded(form, 300, user);
        EXPECT_EQ(std::memcmp(&sector[userDataOffset(form)], user.data(), user.size()), 0);
    }
    EXPECT_EQ(userDataOffset(BlockForm::XA), 16u);
    EXPECT_EQ(userDataOffset(BlockForm::Mixed), 16u);
}

// What fills the room of form 2 behind the data of form 1 has no meaning, so it can't make a difference.
TEST_F(SectorCoding, OnlyThePaddingOfMixedBlocksOfFormOneIsCleared) {
    std::vector<std::byte> blocks(2 * 2332, std::byte{0x11});
    blocks[2] = std::byte{0x08};        // form 1
    blocks[2332 + 2] = std::byte{0x28}; // form 2
    std::vector<std::byte> expected = blocks;
    std::fill(expected.begin() + 8 + 2048, expected.begin() + 2332, std::byte{0});
    std::vector<std::byte> others = blocks;
    clearPadding(BlockForm::Mixed, blocks);
    EXPECT_EQ(blocks, expected);
    const std::vector<std::byte> before = others;
    for (const BlockForm form : {BlockForm::XA, BlockForm::Mode2Form2, BlockForm::Data})
        clearPadding(form, others);
    EXPECT_EQ(others, before);
}

// The medium makes the codes of XA blocks, so those of a producer can't make a difference.
TEST_F(SectorCoding, XABlocksGetTheCodesOfTheirSectors) {
    std::vector<std::byte> blocks = userData(BlockForm::XA, noise(2336, 3)),
                           second = userData(BlockForm::XA, noise(2336, 4));
    blocks[2] = std::byte{0x08};
    second[2] = std::byte{0x28};
    std::vector<std::byte> expected;
    for (const auto& block : {blocks, second}) {
        const Sector sector = coded(BlockForm::XA, 4711, block);
        expected.insert(expected.end(), sector.begin() + 16, sector.end());
    }
    blocks.insert(blocks.end(), second.begin(), second.end());
    const std::vector<std::byte> before = blocks;
    for (const BlockForm form : {BlockForm::Mode2, BlockForm::Mixed, BlockForm::RawMode2})
        completeCodes(form, blocks);
    EXPECT_EQ(blocks, before);
    completeCodes(BlockForm::XA, blocks);
    EXPECT_EQ(blocks, expected);
    EXPECT_NE(blocks, before);
}

// Zeros have code 0, and a single byte shows the table's entry for it.
TEST_F(SectorCoding, TheCodesOfNothingAreKnown) {
    EXPECT_EQ(errorDetectionCode({}), 0u);
    EXPECT_EQ(errorDetectionCode(std::vector<std::byte>(2056)), 0u);
    EXPECT_EQ(errorDetectionCode(std::vector<std::byte>{std::byte{1}}), 0x90910101u);
}

} // namespace
