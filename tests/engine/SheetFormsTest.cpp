// Blocks that a sheet's modes don't tell apart: a disc that is copied by its sheet has tracks of the same forms.
#include "Fixture.hpp"
#include "Producers.hpp"
#include "images/ReadImage.hpp"

using namespace engine;

class SheetFormsTest : public EngineTest {
  protected:
    static constexpr BlockForm forms[] = {BlockForm::Data,       BlockForm::Audio,      BlockForm::Mode2,
                                          BlockForm::Mode2Form1, BlockForm::Mode2Form2, BlockForm::XA,
                                          BlockForm::Mixed,      BlockForm::RawMode1,   BlockForm::RawMode2};

    static Layout layoutOf(std::span<const BlockForm> wanted) {
        Layout layout;
        layout.sessions.emplace_back();
        for (const BlockForm form : wanted)
            layout.sessions[0].tracks.push_back(producedTrack(
                std::make_shared<TestProducer>(bytesPerBlock(form), static_cast<uint64_t>(form) + 1), form,
                310));
        return layout;
    }
    // The disc in the drive, moved out of the way.
    fs::path takeOut() {
        fs::rename(drivePath(), base / "original");
        return base / "original";
    }
    std::string output(const std::string& command) const {
        const auto to = base / "output";
        EXPECT_EQ(std::system((command + " > '" + to.string() + "' 2>&1").c_str()), 0)
            << command << bytesOf(to);
        return bytesOf(to);
    }
};

TEST_F(SheetFormsTest, aCopyHasTheFormsOfItsOriginal) {
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layoutOf(forms)));
    const fs::path original = takeOut();
    const std::string sheet = bytesOf(original / "medium.cue");
    EXPECT_NE(sheet.find("TRACK 05 MODE2/2352\n    REM BLOCK-FORM mode 2 form 2\n"), std::string::npos)
        << sheet;
    EXPECT_NE(sheet.find("TRACK 03 MODE2/2352\n    INDEX 00"), std::string::npos) << sheet;

    const auto image = readImageFile((original / "medium.cue").string());
    ASSERT_TRUE(image.ok()) << image.error().message;
    BurnOptions options;
    image->applyTo(options);
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR), image->layout, options));
    const auto medium = openDrive()->mediumInfo();
    ASSERT_EQ(medium->trackCount(), std::size(forms));
    for (size_t track = 0; track < std::size(forms); ++track)
        EXPECT_EQ(nameOf(medium->sessions[0].tracks[track].form), nameOf(forms[track]));
    EXPECT_EQ(bytesOf(drivePath() / "medium.cue"), sheet);
    EXPECT_TRUE(bytesOf(drivePath() / "medium.bin") == bytesOf(original / "medium.bin"));
}

TEST_F(SheetFormsTest, otherProgramsPassTheRemarksBy) {
    EXPECT_DONE(burn(makeDrive(MediumKind::CDR),
                     layoutOf(std::array{BlockForm::Mode2Form1, BlockForm::XA, BlockForm::Audio})));
    const std::string seen = output("cd-info --no-cddb --no-device-info --cue-file='" +
                                    (drivePath() / "medium.cue").string() + "'");
    EXPECT_NE(seen.find("1: 00:02:00  000000 XA"), std::string::npos) << seen;
    EXPECT_NE(seen.find("3: 00:14:20  000920 audio"), std::string::npos) << seen;
    const std::string toc = output("cd '" + drivePath().string() + "' && cdrdao show-toc medium.cue");
    EXPECT_NE(toc.find("TRACK  2  Mode MODE2_RAW"), std::string::npos) << toc;
    output("cd '" + base.string() + "' && bchunk '" + (drivePath() / "medium.bin").string() + "' '" +
           (drivePath() / "medium.cue").string() + "' cut");
    EXPECT_GT(fs::file_size(base / "cut03.cdr"), 0u);
}

// With codes made anew the damage would look right.
TEST_F(SheetFormsTest, damagedSectorsAreNotCopied) {
    for (const BlockForm form : {BlockForm::Mode2Form1, BlockForm::XA}) {
        EXPECT_DONE(burn(makeDrive(MediumKind::CDR), layoutOf(std::array{form})));
        const fs::path original = takeOut();
        {
            std::fstream bin(original / "medium.bin", std::ios::in | std::ios::out | std::ios::binary);
            bin.seekp(100 * 2352 + 500);
            const int byte = bin.get();
            bin.seekp(100 * 2352 + 500);
            bin.put(static_cast<char>(byte ^ 1));
        }
        const auto image = readImageFile((original / "medium.cue").string());
        ASSERT_TRUE(image.ok()) << image.error().message;
        EXPECT_FAILED(burn(makeDrive(MediumKind::CDR), image->layout), DataProduction,
                      "Sector 100 of the file \"" + (original / "medium.bin").string() +
                          "\" is damaged, or is no mode 2 sector.");
        fs::remove_all(original);
        fs::remove_all(drivePath());
    }
}

TEST_F(SheetFormsTest, remarksThatSayNothingArePassedBy) {
    const fs::path sheet =
        write("disc.cue", "REM BLOCK-FORM XA\nFILE \"disc.bin\" BINARY\n  TRACK 01 MODE2/2352\n"
                          "    REM BLOCK-FORM\n    REM BLOCK-FORM data\n"
                          "    REM BLOCK-FORM wax\n    INDEX 01 00:00:00\n");
    write("disc.bin", noise(310 * sectorBytes));
    const auto image = readImageFile(sheet.string());
    ASSERT_TRUE(image.ok()) << image.error().message;
    EXPECT_EQ(std::get<ProducedTrack>(image->layout.sessions[0].tracks[0].content).form, BlockForm::Mode2);
}
