// Cue sheets: which bytes become which track, and what stands about them.
#include "CDText.hpp"
#include "ImageFixture.hpp"
#include "images/Sheet.hpp"

namespace {

using namespace engine;

class Cue : public ImageTest {};

std::string textIn(const ImageLayout& image, CDTextType type, size_t track) {
    const auto blocks = cdTextFromPacks(image.cdText);
    if (!blocks || blocks->empty()) return "no text";
    const auto texts = blocks->front().texts.find(type);
    return texts == blocks->front().texts.end() || texts->second.size() <= track ? "" : texts->second[track];
}

TEST_F(Cue, OneFileWithTheTracksOfAnAudioDisc) {
    const std::string bytes = noise(1000 * cd);
    write("disc.bin", bytes);
    const auto image =
        readText("disc.cue", "REM GENRE Rock\nREM DATE 1999\nCATALOG 0123456789012\n"
                             "PERFORMER \"The Band\"\nTITLE \"The Album\"\n"
                             "FILE \"disc.bin\" BINARY\n"
                             "  TRACK 01 AUDIO\n    TITLE \"One\"\n    PERFORMER \"Singer\"\n"
                             "    ISRC USRC17607839\n    FLAGS DCP PRE\n    INDEX 01 00:00:00\n"
                             "  TRACK 02 AUDIO\n    TITLE \"Two\"\n    FLAGS 4CH SCMS\n"
                             "    INDEX 00 00:04:00\n    INDEX 01 00:06:00\n    INDEX 02 00:07:00\n"
                             "    INDEX 03 00:08:10\n  TRACK 03 AUDIO\n    INDEX 01 00:11:00\n");
    ASSERT_EQ(image.layout.sessions.size(), 1u);
    const auto tracks = burned(image);
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_EQ(image.mediaCatalogNumber, "0123456789012");

    EXPECT_TRUE(areSame(tracks[0].body, bytes.substr(0, 300 * cd)));
    EXPECT_TRUE(areSame(tracks[0].preGap, ""));
    EXPECT_EQ(tracks[0].track.preGapBlocks, 150u); // the disc's own two seconds
    EXPECT_EQ(tracks[0].track.isrc, "USRC17607839");
    EXPECT_TRUE(tracks[0].track.preEmphasis);
    EXPECT_FALSE(tracks[0].track.fourChannel);
    EXPECT_EQ(tracks[0].track.copyState, CopyState::Free);

    EXPECT_TRUE(areSame(tracks[1].preGap, bytes.substr(300 * cd, 150 * cd)));
    EXPECT_EQ(tracks[1].track.preGapBlocks, 150u);
    EXPECT_TRUE(areSame(tracks[1].body, bytes.substr(450 * cd, 375 * cd)));
    EXPECT_EQ(tracks[1].track.indexPoints, (std::vector<uint64_t>{75, 160}));
    EXPECT_TRUE(tracks[1].track.fourChannel);
    EXPECT_EQ(tracks[1].track.copyState, CopyState::ProtectedCopy);

    EXPECT_TRUE(areSame(tracks[2].body, bytes.substr(825 * cd)));
    EXPECT_EQ(tracks[2].track.preGapBlocks, 0u);
    EXPECT_EQ(tracks[2].track.copyState, CopyState::ProtectedOriginal);

    EXPECT_EQ(textIn(image, CDTextType::Title, 0), "The Album");
    EXPECT_EQ(textIn(image, CDTextType::Title, 2), "Two");
    EXPECT_EQ(textIn(image, CDTextType::Performer, 1), "Singer");
    EXPECT_EQ(textIn(image, CDTextType::Performer, 2), "");

    BurnOptions options;
    options.mediaCatalogNumber = "x";
    image.applyTo(options);
    EXPECT_EQ(options.mediaCatalogNumber, "0123456789012");
    EXPECT_EQ(options.cdText, image.cdText);
    ImageLayout{}.applyTo(options);
    EXPECT_EQ(options.cdText, image.cdText);
}

// Another reader must find the tracks in the same places, and cut out the same bytes.
// It is what rippers write for a track that has none.
TEST_F(Cue, ARecordingCodeOfZerosIsNoCode) {
    write("disc.bin", noise(1000 * cd));
    const auto tracks =
        burned(readText("disc.cue", "FILE disc.bin BINARY\nTRACK 01 AUDIO\nISRC 000000000000\n"
                                    "INDEX 01 00:00:00\nTRACK 02 AUDIO\n"
                                    "ISRC \"00-000-00-00000\"\nINDEX 01 00:05:00\n"
                                    "TRACK 03 AUDIO\nISRC USRC17607839\nINDEX 01 00:10:00\n"));
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_EQ(tracks[0].track.isrc, "");
    EXPECT_EQ(tracks[1].track.isrc, "");
    EXPECT_EQ(tracks[2].track.isrc, "USRC17607839");
}

TEST_F(Cue, OtherProgramsFindTheSameTracks) {
    std::string user;
    const std::string data = mode1Sectors(400, 0, user), sound = noise(900 * cd, 3);
    write("disc.bin", data + sound);
    const auto image =
        readText("disc.cue", "FILE \"disc.bin\" BINARY\n  TRACK 01 MODE1/2352\n    INDEX 01 00:00:00\n"
                             "  TRACK 02 AUDIO\n    INDEX 00 00:05:25\n    INDEX 01 00:07:25\n"
                             "  TRACK 03 AUDIO\n    INDEX 01 00:12:00\n");
    const auto tracks = burned(image);
    ASSERT_EQ(tracks.size(), 3u);
    const std::string told = run("cd-info --no-device-info --no-disc-mode --cue-file=disc.cue --no-cddb");
    uint64_t address = 0;
    for (size_t number = 0; number < 3; ++number) {
        address += tracks[number].track.preGapBlocks.value_or(0);
        char line[40];
        std::snprintf(line, sizeof line, "%06llu", static_cast<unsigned long long>(address - 150));
        const size_t at = told.find("\n  " + std::to_string(number + 1) + ": ");
        ASSERT_NE(at, std::string::npos) << told;
        EXPECT_NE(told.substr(at, 30).find(line), std::string::npos) << told << line;
        address += tracks[number].blocks();
    }
    run("bchunk disc.bin disc.cue part >told 2>&1"); // .cdr: samples as they are
    EXPECT_TRUE(areSame(tracks[0].body, bytesOf(base / "part01.iso")));
    EXPECT_TRUE(areSame(tracks[0].body, user));
    EXPECT_TRUE(areSame(tracks[1].body, bytesOf(base / "part02.cdr")));
    EXPECT_TRUE(areSame(tracks[2].body, bytesOf(base / "part03.cdr")));
    EXPECT_TRUE(areSame(tracks[1].preGap, sound.substr(0, 150 * cd)));
}

TEST_F(Cue, EveryModeGivesItsUserData) {
    struct Mode {
        const char* name;
        size_t unit, at;
        BlockForm form;
    };
    std::string user;
    const std::string mode1 = mode1Sectors(10, 0, user);
    for (const Mode& mode : {Mode{"AUDIO", 2352, 0, BlockForm::Audio},
                             {"MODE1/2048", 2048, 0, BlockForm::Data},
                             {"MODE1/2352", 2352, 16, BlockForm::Data},
                             {"MODE2/2048", 2048, 0, BlockForm::Mode2Form1},
                             {"MODE2/2324", 2324, 0, BlockForm::Mode2Form2},
                             {"MODE2/2336", 2336, 0, BlockForm::Mode2},
                             {"MODE2/2352", 2352, 16, BlockForm::Mode2},
                             {"CDI/2336", 2336, 0, BlockForm::Mode2},
                             {"CDI/2352", 2352, 16, BlockForm::Mode2},
                             {"cdg", 2448, 0, BlockForm::Audio}}) {
        std::string bytes = noise(10 * mode.unit);
        if (mode.unit == 2352 && mode.at > 0) {
            bytes = mode1;
            if (mode.form == BlockForm::Mode2)
                for (size_t sector = 0; sector < 10; ++sector)
                    bytes[sector * cd + 15] = 2;
        }
        write("disc.bin", bytes);
        const auto image = readText("disc.cue", "FILE disc.bin BINARY\nTRACK 1 " + std::string(mode.name) +
                                                    "\nINDEX 1 00:00:00\n");
        ASSERT_EQ(image.layout.sessions.size(), 1u) << mode.name;
        const Track& track = image.layout.sessions[0].tracks[0];
        EXPECT_EQ(track.sessionFormat == SessionFormat::CDI, std::string_view(mode.name).starts_with("CDI"));
        const BurnedTrack one = burned(track, 3);
        EXPECT_EQ(one.form(), mode.form);
        const size_t size = bytesPerBlock(mode.form);
        std::string right;
        for (size_t sector = 0; sector < 10; ++sector)
            right += bytes.substr(sector * mode.unit + mode.at, size);
        EXPECT_TRUE(areSame(one.body, right)) << mode.name;
        EXPECT_TRUE(areSame(burned(track, 1).body, right));
        EXPECT_TRUE(areSame(burned(track, 1000).body, right));
        if (mode.unit == 2448) {
            EXPECT_EQ(std::get<ProducedTrack>(track.content).subchannel, SubchannelForm::Raw);
            EXPECT_TRUE(areSame(burned(track, 3, true).body, bytes));
        }
    }
}

// Of sound whose samples are big-endian the symbols are bytes all the same.
TEST_F(Cue, SymbolsAreNotSwapped) {
    const std::string blocks = noise(10 * 2448);
    std::string inFile;
    for (size_t at = 0; at < blocks.size(); at += 2448)
        inFile += swapped(blocks.substr(at, cd)) + blocks.substr(at + cd, 96);
    write("disc.bin", inFile);
    const auto image = readText("disc.cue", "FILE disc.bin MOTOROLA\nTRACK 1 CDG\nINDEX 1 00:00:00\n");
    EXPECT_TRUE(areSame(burned(image.layout.sessions.at(0).tracks.at(0), 3, true).body, blocks));
}

TEST_F(Cue, SectorsOfSeveralSizesLieInOneFile) {
    const std::string data = noise(20 * 2048), sound = noise(30 * cd, 2), form2 = noise(5 * 2336, 3);
    write("disc.bin", data + sound + form2);
    const auto tracks = burned(
        readText("disc.cue", "FILE disc.bin BINARY\nTRACK 1 MODE1/2048\nINDEX 1 00:00:00\nPOSTGAP 00:02:00\n"
                             "TRACK 2 AUDIO\nPREGAP 00:02:00\nINDEX 0 00:00:20\nINDEX 1 00:00:25\n"
                             "TRACK 3 MODE2/2336\nPREGAP 00:02:00\nINDEX 1 00:00:50\n"));
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_TRUE(areSame(tracks[0].body, data + std::string(150 * 2048, '\0')));
    EXPECT_EQ(tracks[1].track.preGapBlocks, 155u);
    EXPECT_TRUE(areSame(tracks[1].preGap, std::string(150 * cd, '\0') + sound.substr(0, 5 * cd)));
    EXPECT_TRUE(areSame(tracks[1].body, sound.substr(5 * cd)));
    EXPECT_EQ(tracks[2].track.preGapBlocks, 150u);
    EXPECT_TRUE(areSame(tracks[2].preGap, "")); // the engine makes it
    EXPECT_TRUE(areSame(tracks[2].body, form2));
}

// Rippers that put a gap at the end of the file before have INDEX 00 in one file and INDEX 01 in the next.
TEST_F(Cue, AFileForEveryTrackWithItsGapInTheFileBefore) {
    const std::string one = noise(400 * cd, 1), two = noise(300 * cd, 2), three = noise(100 * cd, 3);
    write("1.bin", one);
    write("2.bin", swapped(two));
    write("3.bin", three);
    const auto tracks = burned(readText(
        "disc.cue", "FILE 1.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\nTRACK 2 AUDIO\nINDEX 0 00:04:00\n"
                    "FILE 2.bin MOTOROLA\nINDEX 1 00:00:00\nINDEX 2 00:02:00\n"
                    "FILE 3.bin BINARY\nTRACK 3 AUDIO\nINDEX 1 00:00:10\n"));
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_TRUE(areSame(tracks[0].body, one.substr(0, 300 * cd)));
    EXPECT_TRUE(areSame(tracks[1].preGap, one.substr(300 * cd)));
    EXPECT_EQ(tracks[1].track.preGapBlocks, 100u);
    EXPECT_TRUE(areSame(tracks[1].body, two));
    EXPECT_EQ(tracks[1].track.indexPoints, (std::vector<uint64_t>{150}));
    EXPECT_TRUE(areSame(tracks[2].preGap, three.substr(0, 10 * cd))); // nothing of a file is lost
    EXPECT_TRUE(areSame(tracks[2].body, three.substr(10 * cd)));
}

TEST_F(Cue, AnIndexMayGoOnInAnotherFile) {
    const std::string one = noise(100 * cd, 1), two = noise(200 * cd, 2);
    write("1.bin", one);
    write("2.bin", two);
    const auto tracks =
        burned(readText("disc.cue", "FILE 1.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\nINDEX 2 00:01:00\n"
                                    "FILE 2.bin BINARY\nINDEX 3 00:01:25\n"));
    ASSERT_EQ(tracks.size(), 1u);
    EXPECT_TRUE(areSame(tracks[0].body, one + two));
    EXPECT_EQ(tracks[0].track.indexPoints, (std::vector<uint64_t>{75, 200}));
}

TEST_F(Cue, WhatLiesBeforeTheFirstTrackIsItsPreGap) {
    const std::string bytes = noise(400 * cd);
    write("disc.bin", bytes);
    for (const char* index0 : {"INDEX 00 00:00:00\n", ""}) {
        const auto tracks = burned(readText("disc.cue", "FILE disc.bin BINARY\nTRACK 1 AUDIO\n" +
                                                            std::string(index0) + "INDEX 1 00:00:33\n"));
        ASSERT_EQ(tracks.size(), 1u);
        EXPECT_EQ(tracks[0].track.preGapBlocks, 183u);
        EXPECT_TRUE(areSame(tracks[0].preGap, std::string(150 * cd, '\0') + bytes.substr(0, 33 * cd)));
        EXPECT_TRUE(areSame(tracks[0].body, bytes.substr(33 * cd)));
    }
}

TEST_F(Cue, SoundFilesAreDecoded) {
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 8.005 pinknoise; sox a.wav a.raw; sox -R -r 48000 -n -c 1 "
        "-b 16 b.flac synth 3 sine 400; "
        "lame --quiet a.wav c.mp3; sox a.wav d.aiff");
    const auto tracks =
        burned(readText("disc.cue", "FILE \"a.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 "
                                    "AUDIO\nINDEX 00 00:05:00\nINDEX 01 00:06:00\n"
                                    "FILE \"b.flac\" WAVE\nTRACK 03 AUDIO\nINDEX 01 00:00:00\nFILE c.mp3 "
                                    "MP3\nTRACK 04 AUDIO\nINDEX 01 00:00:00\n"
                                    "FILE d.aiff AIFF\nTRACK 05 AUDIO\nINDEX 01 00:00:00\n"));
    ASSERT_EQ(tracks.size(), 5u);
    std::string right = bytesOf(base / "a.raw");
    EXPECT_EQ(right.size() / cd, 600u); // and a bit
    right.resize(601 * cd);
    EXPECT_TRUE(areSame(tracks[0].body, right.substr(0, 375 * cd)));
    EXPECT_TRUE(areSame(tracks[1].preGap, right.substr(375 * cd, 75 * cd)));
    EXPECT_TRUE(areSame(tracks[1].body, right.substr(450 * cd)));
    EXPECT_EQ(tracks[2].blocks(), 225u);
    EXPECT_EQ(tracks[3].blocks(), 601u);
    EXPECT_TRUE(areSame(tracks[4].body, right));
}

TEST_F(Cue, SessionsAreThoseThatTheRemarksSay) {
    std::string user;
    write("sound.bin", noise(300 * cd));
    write("data.bin", mode1Sectors(50, 11700, user));
    const auto image = readText("disc.cue", "REM SESSION 01\nFILE sound.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 "
                                            "00:00:00\nTRACK 2 AUDIO\nINDEX 1 00:02:00\n"
                                            "REM LEAD-OUT 00:04:00\nREM SESSION 02\nFILE data.bin "
                                            "BINARY\nTRACK 3 MODE1/2352\nINDEX 1 00:00:00\n");
    ASSERT_EQ(image.layout.sessions.size(), 2u);
    EXPECT_EQ(image.layout.sessions[0].tracks.size(), 2u);
    ASSERT_EQ(image.layout.sessions[1].tracks.size(), 1u);
    EXPECT_EQ(image.layout.sessions[0].tracks[1].preGapBlocks, 0u);
    EXPECT_EQ(image.layout.sessions[1].tracks[0].preGapBlocks, 150u);
    EXPECT_TRUE(areSame(burned(image.layout.sessions[1].tracks[0]).body, user));
}

// What lies between the sessions is neither's, and says that the file is the disc, block for block.
TEST_F(Cue, ALeadOutEndsASessionInItsFile) {
    const std::string blocks = noise(1000 * 2048);
    write("disc.iso", blocks);
    const std::string first = "REM SESSION 01\nFILE disc.iso BINARY\nTRACK 1 MODE1/2048\nINDEX 1 00:00:00\n",
                      second = "REM SESSION 02\nTRACK 2 MODE1/2048\nINDEX 1 00:08:00\n";
    const auto startOf = [](const ImageLayout& image) {
        return image.layout.sessions.at(1).tracks.at(0).startBlock;
    };
    const auto image =
        readText("disc.cue", first + "REM LEAD-OUT 00:04:10\n" + second + "REM LEAD-OUT 00:13:20\n");
    auto tracks = burned(image);
    ASSERT_EQ(tracks.size(), 2u);
    EXPECT_TRUE(areSame(tracks[0].body, blocks.substr(0, 310 * 2048)));
    EXPECT_TRUE(areSame(tracks[1].body, blocks.substr(600 * 2048, 395 * 2048)));
    EXPECT_EQ(startOf(image), 600u);
    EXPECT_EQ(tracks[0].track.startBlock, std::nullopt);

    // Without a gap, and with times that can't be of the file, everything is somebody's.
    for (const char* remark : {"REM LEAD-OUT 00:08:00\n", "REM LEAD-OUT 00:00:00\n",
                               "REM LEAD-OUT 09:00:00\n", "REM LEAD-OUT soon\n", "REM LEAD-OUT\n", ""}) {
        const auto joined = readText("disc.cue", first + remark + second);
        tracks = burned(joined);
        EXPECT_EQ(tracks[0].blocks(), 600u) << remark;
        EXPECT_EQ(startOf(joined), std::nullopt) << remark;
    }
    // Silence that is in no file moves all that follows, and sound may begin anywhere.
    const auto moved = readText("disc.cue", "FILE disc.iso BINARY\nTRACK 1 MODE1/2048\nPREGAP 00:00:10\n"
                                            "INDEX 1 00:00:00\nREM LEAD-OUT 00:04:10\n" +
                                                second);
    EXPECT_EQ(burned(moved)[0].blocks(), 310u);
    EXPECT_EQ(startOf(moved), std::nullopt);
    write("disc.iso", noise(525 * 2048 + 475 * cd));
    const auto sound = readText("disc.cue", first + "REM LEAD-OUT 00:04:10\nREM SESSION 02\nTRACK 2 AUDIO\n"
                                                    "INDEX 0 00:07:00\nINDEX 1 00:08:00\n");
    EXPECT_EQ(burned(sound)[0].blocks(), 310u);
    EXPECT_EQ(startOf(sound), std::nullopt);
}

// As programs that read discs leave it: in a file for each track, the lead-out counts from the disc's start.
TEST_F(Cue, ALeadOutBehindTheEndOfAFileIsItsEnd) {
    write("one.bin", noise(300 * cd));
    write("two.bin", noise(200 * cd));
    const auto tracks =
        burned(readText("disc.cue", "REM SESSION 01\nFILE one.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\n"
                                    "FILE two.bin BINARY\nTRACK 2 AUDIO\nINDEX 1 00:00:00\n"
                                    "REM LEAD-OUT 00:06:50\nREM SESSION 02\nREM LEAD-IN 01:00:00\n"
                                    "FILE one.bin BINARY\nTRACK 3 AUDIO\nINDEX 1 00:00:00\n"));
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_EQ(tracks[1].blocks(), 200u);
}

// The largest discs are 2716 "minutes" long.
TEST_F(Cue, TimesHaveFourDigitsOfMinutes) {
    uint64_t blocks = 0;
    EXPECT_TRUE(blocksOfTime("2715:28:67", blocks));
    EXPECT_EQ(blocks, 12219667u);
    EXPECT_FALSE(blocksOfTime("12345:00:00", blocks));
}

// ---- as it is found in the world --------------------------------------------------------------------------

TEST_F(Cue, AnySystemsTextIsRead) {
    write("disc.bin", noise(10 * cd));
    const std::string lines[] = {"FILE \"C:\\Music\\DISC.BIN\" binary",
                                 "\ttrack\t01\tAudio  ",
                                 "title \"Fr\xC3\xB6hlich\"",
                                 "; a remark",
                                 "performer The \"Other\" Band",
                                 "Index 01 00:00:00",
                                 ""};
    for (const char* end : {"\n", "\r\n", "\r"})
        for (const char* mark : {"", "\xEF\xBB\xBF"}) {
            std::string text = mark;
            for (const std::string& line : lines)
                text += line + end;
            const auto image = readText("disc.cue", text);
            EXPECT_TRUE(areSame(burned(image).at(0).body, bytesOf(base / "disc.bin")));
            EXPECT_EQ(textIn(image, CDTextType::Title, 1), "Fr\xF6hlich");
            EXPECT_EQ(textIn(image, CDTextType::Performer, 1), "The \"Other\" Band");
        }
    std::string latin = "FILE disc.bin BINARY\nTRACK 1 AUDIO\nTITLE \"Fr\xF6hlich\"\nINDEX 1 00:00:00\n",
                wide, turned;
    EXPECT_EQ(textIn(readText("disc.cue", latin), CDTextType::Title, 1), "Fr\xF6hlich");
    for (const char byte : latin) {
        wide += {byte, '\0'};
        turned += {'\0', byte};
    }
    EXPECT_EQ(textIn(readText("disc.cue", "\xFF\xFE" + wide), CDTextType::Title, 1), "Fr\xF6hlich");
    EXPECT_EQ(textIn(readText("disc.cue", "\xFE\xFF" + turned), CDTextType::Title, 1), "Fr\xF6hlich");
}

// A sheet doesn't say its language; kana do.
TEST_F(Cue, JapaneseTitlesStayJapanese) {
    write("disc.bin", noise(10 * cd));
    const auto image = readText(
        "disc.cue", "TITLE \"\u3042\u3044\"\nFILE disc.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\n");
    const auto blocks = cdTextFromPacks(image.cdText);
    ASSERT_TRUE(blocks.ok());
    EXPECT_EQ(blocks->at(0).language, cdTextLanguage("ja"));
    EXPECT_EQ(cdTextDecoded(blocks->at(0).texts.at(CDTextType::Title).at(0), blocks->at(0).characters),
              u"\u3042\u3044");
}

TEST_F(Cue, NamesMayHaveBlanksAndQuotes) {
    const std::string bytes = noise(10 * cd);
    for (const char* name : {"my disc.bin", "my \"new\" disc.bin", "m\xC3\xBCsic.bin", "m\xFCsic.bin"}) {
        write(name, bytes);
        for (const std::string& quote : {std::string("\""), std::string()}) {
            const auto image = readText("disc.cue", "FILE " + quote + name + quote +
                                                        " BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\n");
            ASSERT_FALSE(image.layout.sessions.empty()) << name;
            EXPECT_TRUE(areSame(burned(image).at(0).body, bytes)) << name;
        }
    }
}

TEST_F(Cue, ASheetsOwnCDTextIsTaken) {
    write("disc.bin", noise(10 * cd));
    CDTextBlock block;
    block.language = 8;
    block.lastTrack = 1;
    block.texts[CDTextType::Title] = {"Die Platte", "Das Lied"};
    const auto packs = cdTextPacks(std::span(&block, 1));
    ASSERT_TRUE(packs.ok());
    const std::string bytes(packs->begin(), packs->end());
    const std::string four{'\0', static_cast<char>(bytes.size() + 2), '\0', '\0'};
    for (const std::string& file : {bytes, four + bytes, bytes + '\0', four + bytes + '\0'}) {
        write("disc.cdt", file);
        const auto image = readText(
            "disc.cue",
            "CDTEXTFILE \"disc.cdt\"\nTITLE Other\nFILE disc.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\n");
        EXPECT_EQ(image.cdText, *packs);
    }
    write("disc.cdt", bytes.substr(0, 30));
    EXPECT_TRUE(refusal("disc.cue")
                    .starts_with("\"disc.cue\", line 1: the file \"disc.cdt\" can't be used. The disc's "
                                 "CD-Text can't be read: "));
}

TEST_F(Cue, ADataDiscHasNoCDText) {
    write("disc.bin", noise(10 * 2048));
    EXPECT_TRUE(
        readText("disc.cue", "TITLE Backup\nFILE disc.bin BINARY\nTRACK 1 MODE1/2048\nINDEX 1 00:00:00\n")
            .cdText.empty());
}

} // namespace
