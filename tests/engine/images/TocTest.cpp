// .toc files: tracks put together from parts of files and of silence, and what is wrong with one.
#include "CDText.hpp"
#include "ImageFixture.hpp"

namespace {

using namespace engine;

class Toc : public ImageTest {
  protected:
    std::string refused(const std::string& text) {
        write("disc.toc", text);
        return refusal("disc.toc");
    }
};

std::string padded(std::string bytes, size_t unit) {
    bytes.resize((bytes.size() + unit - 1) / unit * unit);
    return bytes;
}

constexpr const char* mixedDisc = "CD_ROM\nCATALOG \"0123456789012\"\n"
                                  "CD_TEXT { LANGUAGE_MAP { 0 : EN } // the disc\n LANGUAGE 0 { TITLE "
                                  "\"Album\" PERFORMER \"Br\\374der \\\"B\\\"\" "
                                  "GENRE { 0, 5, 65, 66, 0 } UPC_EAN \"\" SIZE_INFO { 1, 2 } } }\n"
                                  "TRACK MODE1\nDATAFILE \"d.iso\"\nZERO 00:02:00\n"
                                  "TRACK AUDIO\nCOPY\nPRE_EMPHASIS\nISRC \"USRC17607839\"\nCD_TEXT { "
                                  "LANGUAGE 0 { TITLE \"One\" PERFORMER \"S\" } }\n"
                                  "SILENCE 00:02:00\nSTART\nFILE \"a.wav\" 0\nINDEX 00:04:00\n"
                                  "TRACK AUDIO\nNO COPY\nFOUR_CHANNEL_AUDIO\nFILE \"a.cdr\" 588 "
                                  "00:05:00\nSILENCE 1000\nSTART 00:01:00\nEND 00:05:00\n";

TEST_F(Toc, TracksArePutTogether) {
    const std::string data = noise(1000 * 2048), samples = noise(600 * cd, 5);
    write("d.iso", data);
    write("a.cdr", samples);
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 10 pinknoise; sox a.wav a.raw");
    const auto image = readText("disc.toc", mixedDisc);
    EXPECT_EQ(image.mediaCatalogNumber, "0123456789012");
    const auto tracks = burned(image);
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_EQ(tracks[0].form(), BlockForm::Data);
    EXPECT_TRUE(areSame(tracks[0].body, data + std::string(150 * 2048, '\0')));
    EXPECT_EQ(tracks[0].track.preGapBlocks, 150u);

    EXPECT_TRUE(areSame(tracks[1].body, padded(bytesOf(base / "a.raw"), cd)));
    EXPECT_TRUE(areSame(tracks[1].preGap, std::string(150 * cd, '\0')));
    EXPECT_EQ(tracks[1].track.preGapBlocks, 150u);
    EXPECT_EQ(tracks[1].track.indexPoints, std::vector<uint64_t>{300});
    EXPECT_EQ(tracks[1].track.isrc, "USRC17607839");
    EXPECT_TRUE(tracks[1].track.preEmphasis);
    EXPECT_EQ(tracks[1].track.copyState, CopyState::Free);

    // Raw samples are big-endian; the first block is left out, and the next second is the pre-gap.
    const std::string part = swapped(samples.substr(cd, 375 * cd));
    EXPECT_TRUE(areSame(tracks[2].preGap, part.substr(0, 75 * cd)));
    EXPECT_TRUE(areSame(tracks[2].body, part.substr(75 * cd) + std::string(2 * cd, '\0')));
    EXPECT_EQ(tracks[2].track.preGapBlocks, 75u);
    EXPECT_EQ(tracks[2].track.indexPoints, std::vector<uint64_t>{300}); // the post-gap
    EXPECT_TRUE(tracks[2].track.fourChannel);
    EXPECT_EQ(tracks[2].track.copyState, CopyState::ProtectedOriginal);

    const auto texts = cdTextFromPacks(image.cdText);
    ASSERT_TRUE(texts.ok());
    ASSERT_EQ(texts->size(), 1u);
    CDTextBlock block = texts->front();
    EXPECT_EQ(block.language, 9);
    EXPECT_EQ(block.texts[CDTextType::Title], (std::vector<std::string>{"Album", "", "One", ""}));
    EXPECT_EQ(block.texts[CDTextType::Performer].at(0), "Br\xFC"
                                                        "der \"B\"");
    EXPECT_EQ(block.genreCode, 5);
}

// What another program says of the same file, address by address.
TEST_F(Toc, ARecordingCodeOfZerosIsNoCode) {
    write("a.raw", std::string(400 * cd, '\0'));
    const std::string track = "TRACK AUDIO\nISRC \"", file = "\"\nFILE \"a.raw\" 0\n";
    const auto tracks =
        burned(readText("disc.toc", "CD_DA\n" + track + "000000000000" + file + track + "00-000-00-00000" +
                                        file + track + "USRC17607839" + file));
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_EQ(tracks[0].track.isrc, "");
    EXPECT_EQ(tracks[1].track.isrc, "");
    EXPECT_EQ(tracks[2].track.isrc, "USRC17607839");
}

TEST_F(Toc, AnotherProgramSeesTheSameTracks) {
    write("d.iso", noise(1000 * 2048));
    write("a.cdr", noise(600 * cd, 5));
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 10 pinknoise");
    const auto image = readText("disc.toc", mixedDisc);
    const std::string told = run("cdrdao show-toc disc.toc");
    std::istringstream lines(told);
    uint64_t address = 0;
    bool isFirst = true;
    const auto expectNext = [&](const std::string& word, uint64_t block) {
        std::string line;
        while (std::getline(lines, line) && line.find("  " + word + ' ') == std::string::npos &&
               line.find("  " + word + '*') == std::string::npos)
            ;
        EXPECT_NE(
            line.find("( " +
                      std::string(block < 1000 ? block < 100 ? block < 10 ? "    " : "   " : "  " : " ") +
                      std::to_string(block) + ')'),
            std::string::npos)
            << word << ' ' << block << " is not in " << line << "\n"
            << told;
    };
    for (const Track& track : image.layout.sessions.at(0).tracks) {
        const uint64_t preGap = *track.preGapBlocks - (isFirst ? 150 : 0);
        if (preGap > 0) expectNext("PREGAP", preGap);
        address += preGap;
        expectNext("START", address);
        for (const uint64_t point : track.indexPoints)
            expectNext("INDEX", address + point);
        address += std::get<ProducedTrack>(track.content).blocks;
        expectNext("END", address);
        isFirst = false;
    }
}

TEST_F(Toc, AnotherProgramHearsTheSameSamples) {
    write("a.cdr", noise(20 * cd, 5));
    write("b.cdr", noise(20 * cd, 6));
    run("sox -R -r 44100 -n -c 2 -b 16 a.wav synth 5 pinknoise");
    const auto tracks =
        burned(readText("disc.toc", "CD_DA\nTRACK AUDIO\nFILE \"a.cdr\" 100 5000\nSILENCE 77\nFILE \"a.wav\" "
                                    "00:00:10 200000\nAUDIOFILE \"b.cdr\" SWAP 3\n"));
    ASSERT_EQ(tracks.size(), 1u);
    std::istringstream told(run("cdrdao show-data disc.toc 2>/dev/null"));
    std::string theirs;
    for (std::string line; std::getline(told, line);) {
        unsigned long number = 0;
        int16_t left = 0, right = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "%lu:%hd %hd", &number, &left, &right), 3) << line;
        theirs.append(reinterpret_cast<const char*>(&left), sizeof left);
        theirs.append(reinterpret_cast<const char*>(&right), sizeof right);
    }
    EXPECT_GT(theirs.size(), 200000u * 4);
    EXPECT_TRUE(areSame(tracks[0].body, padded(theirs, cd)));
}

TEST_F(Toc, EveryModeTakesItsBlocks) {
    std::string user;
    const std::string raw = mode1Sectors(30, 0, user);
    write("raw.bin", "skip" + raw);
    for (const auto& [mode, form, bytes] : {std::tuple{"MODE1", BlockForm::Data, 2048u},
                                            {"MODE2", BlockForm::Mode2, 2336u},
                                            {"MODE2_FORM1", BlockForm::Mode2Form1, 2048u},
                                            {"MODE2_FORM2", BlockForm::Mode2Form2, 2324u},
                                            {"MODE2_FORM_MIX", BlockForm::XA, 2336u}}) {
        const std::string data = noise(10 * bytes - 5);
        write("data.bin", data);
        const auto tracks = burned(readText("disc.toc", "CD_ROM_XA\nTRACK " + std::string(mode) +
                                                            "\nPREGAP 00:02:00\nDATAFILE \"data.bin\"\n"));
        ASSERT_EQ(tracks.size(), 1u) << mode;
        EXPECT_EQ(tracks[0].form(), form);
        EXPECT_EQ(tracks[0].track.preGapBlocks, 300u);
        EXPECT_TRUE(areSame(tracks[0].body, padded(data, bytes))) << mode;
        EXPECT_TRUE(areSame(tracks[0].preGap, std::string(300 * bytes, '\0'))) << mode;
    }
    const auto tracks = burned(
        readText("disc.toc", "TRACK MODE1_RAW DATAFILE \"raw.bin\" #2356 00:00:20 ZERO MODE1_RAW 00:00:02"));
    ASSERT_EQ(tracks.size(), 1u);
    EXPECT_TRUE(areSame(tracks[0].body, user.substr(2048, 20 * 2048) + std::string(2 * 2048, '\0')));
}

TEST_F(Toc, ACDISessionIsOneForAllItsTracks) {
    write("data.bin", noise(10 * 2336));
    write("a.cdr", noise(10 * cd));
    for (const bool isCDI : {true, false}) {
        const auto image = readText("disc.toc", std::string(isCDI ? "CD_I" : "CD_ROM_XA") +
                                                    "\nTRACK MODE2_FORM_MIX\nDATAFILE \"data.bin\"\n"
                                                    "TRACK AUDIO\nFILE \"a.cdr\" 0\n");
        ASSERT_EQ(image.layout.sessions.at(0).tracks.size(), 2u);
        for (const Track& track : image.layout.sessions[0].tracks)
            EXPECT_EQ(track.sessionFormat, isCDI ? SessionFormat::CDI : SessionFormat::Plain);
    }
}

TEST_F(Toc, SubchannelDataStandsBehindEachBlock) {
    const std::string blocks = noise(20 * 2448);
    // Samples are big-endian; symbols are bytes.
    std::string inFile;
    for (size_t at = 0; at < blocks.size(); at += 2448)
        inFile += swapped(blocks.substr(at, cd)) + blocks.substr(at + cd, 96);
    write("s.cdr", inFile);
    const auto image = readText("disc.toc", "TRACK AUDIO RW_RAW\nFILE \"s.cdr\" 0\n");
    const Track& track = image.layout.sessions.at(0).tracks.at(0);
    EXPECT_EQ(std::get<ProducedTrack>(track.content).subchannel, SubchannelForm::Raw);
    EXPECT_EQ(std::get<ProducedTrack>(track.content).blocks, 20u);
    EXPECT_TRUE(areSame(burned(track, 3, true).body, blocks));
    EXPECT_TRUE(areSame(burned(track, 3).body.substr(cd, cd), blocks.substr(2448, cd)));
    const auto asIs = readText("disc.toc", "TRACK AUDIO RW\nFILE \"s.cdr\" SWAP 00:00:05 00:00:10\n");
    const Track& part = asIs.layout.sessions.at(0).tracks.at(0);
    EXPECT_EQ(std::get<ProducedTrack>(part.content).subchannel, SubchannelForm::Pack);
    EXPECT_TRUE(areSame(burned(part, 3, true).body, inFile.substr(5 * 2448, 10 * 2448)));
    run("sox -R -r 44100 -n -c 2 -b 16 s.wav synth 1 pinknoise");
    write("disc.toc", "TRACK AUDIO RW\nFILE \"s.wav\" 0\n");
    EXPECT_EQ(refusal("disc.toc"),
              "\"disc.toc\", line 2: a sound file has no subchannel data; the track says that it has.");
}

TEST_F(Toc, SubchannelDataMayStandBehindWholeSectors) {
    std::string user, blocks, right;
    const std::string sectors = mode1Sectors(20, 0, user), symbols = noise(20 * 96);
    for (size_t sector = 0; sector < 20; ++sector) {
        blocks += sectors.substr(sector * cd, cd) + symbols.substr(sector * 96, 96);
        right += user.substr(sector * 2048, 2048) + symbols.substr(sector * 96, 96);
    }
    write("raw.bin", blocks);
    const auto image = readText("disc.toc", "TRACK MODE1_RAW RW_RAW\nDATAFILE \"raw.bin\"\n");
    const Track& track = image.layout.sessions.at(0).tracks.at(0);
    EXPECT_EQ(std::get<ProducedTrack>(track.content).form, BlockForm::Data);
    for (const size_t blocksAtOnce : {1, 3, 100})
        EXPECT_TRUE(areSame(burned(track, blocksAtOnce, true).body, right));
}

TEST_F(Toc, WhatMakesNoSenseIsToldWithItsLine) {
    write("a.cdr", noise(100 * cd));
    write("odd.cdr", noise(100 * cd + 1));
    write("d.bin", noise(100 * 2048));
    write("text.wav", "no sound");
    const std::string track = "CD_DA\nTRACK AUDIO\nFILE \"a.cdr\" 0\n";
    const std::pair<std::string, const char*> rows[] = {
        {"", "\"disc.toc\", line 1: the file has no tracks."},
        {"// nothing\nCD_DA\n", "\"disc.toc\", line 2: the file has no tracks."},
        {"CD_DVD\n", "\"disc.toc\", line 1: the word \"CD_DVD\" is not known before the first TRACK."},
        {"CATALOG 1\n",
         "\"disc.toc\", line 1: \"1\" stands where the catalog number in quotes should stand."},
        {"CATALOG \"1\"\n", "\"disc.toc\", line 1: \"1\" is no catalog number: it has 13 digits."},
        {"CD_DA \"x\n\"", "\"disc.toc\", line 1: the text has no closing quote."},
        {"\"x\"", "\"disc.toc\", line 1: \"x\" stands where a word should stand."},
        {"TRACK\n", "\"disc.toc\", line 1: the file ends where a word should stand."},
        {"TRACK VIDEO\n", "\"disc.toc\", line 1: the mode \"VIDEO\" is not known."},
        {"TRACK AUDIO\n", "\"disc.toc\", line 1: the track has no data."},
        {"TRACK AUDIO RW\nFILE \"a.cdr\" 0\n",
         "\"disc.toc\", line 2: the file \"a.cdr\" is no whole number of sectors of 2448 bytes."},
        {"TRACK MODE1_RAW RW\nDATAFILE \"d.bin\"\n",
         "\"disc.toc\", line 2: the file \"d.bin\" is no whole number of sectors of 2448 bytes."},
        {track + "SHUFFLE\n", "\"disc.toc\", line 4: the word \"SHUFFLE\" is not known in a track."},
        {track + "NO MORE\n",
         "\"disc.toc\", line 4: \"MORE\" stands where COPY or PRE_EMPHASIS should stand."},
        {track + "ISRC \"1\"\n",
         "\"disc.toc\", line 4: \"1\" is no recording code: an ISRC has 12 characters, not 1, as in "
         "USRC17607839."},
        {track + "FILE \"b.cdr\" 0\n", "\"disc.toc\", line 4: the file \"b.cdr\" is not there; put it beside "
                                       "the sheet, or correct its name."},
        {track + "FILE \"a.cdr\"\n",
         "\"disc.toc\", line 4: the file ends where the place to start at should stand."},
        {track + "FILE \"a.cdr\" 60000\n",
         "\"disc.toc\", line 4: the file \"a.cdr\" is shorter than that: it has 235200 bytes of data."},
        {track + "FILE \"a.cdr\" 0 00:01:26\n",
         "\"disc.toc\", line 4: the file \"a.cdr\" is shorter than that: it has 235200 bytes of data."},
        {track + "FILE \"a.cdr\" 0 99999999999999\n",
         "\"disc.toc\", line 4: \"99999999999999\" is too large for a length."},
        {track + "FILE \"odd.cdr\" 0\n",
         "\"disc.toc\", line 4: the file \"odd.cdr\" is no whole number of samples of 4 bytes."},
        {track + "FILE \"text.wav\" 0\n", "\"disc.toc\", line 4: The file \"text.wav\" is no sound that can "
                                          "be read; use WAV, AIFF, FLAC, Ogg or MP3."},
        {track + "FILE \"-\" 0\n",
         "\"disc.toc\", line 4: standard input can't be used: its length isn't known before."},
        {track + "FIFO \"p\" 10\n",
         "\"disc.toc\", line 4: FIFO can't be used: its length isn't known before."},
        {track + "DATAFILE \"d.bin\"\n", "\"disc.toc\", line 4: an audio track takes FILE and SILENCE."},
        {"TRACK MODE1\nFILE \"d.bin\" 0\n", "\"disc.toc\", line 2: a data track takes DATAFILE and ZERO."},
        {"TRACK MODE1\nDATAFILE \"d.bin\" 300000\n",
         "\"disc.toc\", line 2: the file \"d.bin\" is shorter than that: it has 204800 bytes of data."},
        {"TRACK MODE1_RAW\nDATAFILE \"d.bin\"\n",
         "\"disc.toc\", line 2: the file \"d.bin\" is no whole number of sectors of 2352 bytes."},
        {track + "START\nSTART\n", "\"disc.toc\", line 5: a track has one START or PREGAP."},
        {track + "PREGAP 00:01:00\n", "\"disc.toc\", line 4: PREGAP stands before the track's data."},
        {track + "START 00:02:00\n", "\"disc.toc\", line 4: START lies behind the end of the track's data."},
        {track + "START\n", "\"disc.toc\", line 2: the track has no data."},
        {track + "END\n", "\"disc.toc\", line 4: END 00:01:25 lies outside of the track."},
        {track + "INDEX 00:02:00\n",
         "\"disc.toc\", line 4: INDEX 00:02:00 lies behind the end of the track."},
        {track + "INDEX 00:00:10\nINDEX 00:00:10\n",
         "\"disc.toc\", line 5: the time of an INDEX lies behind the one before it."},
        {track + "INDEX 10\n",
         "\"disc.toc\", line 4: \"10\" stands where a time of the form mm:ss:ff should stand."},
        {track + "CD_TEXT { LANGUAGE 9 { } }\n",
         "\"disc.toc\", line 4: \"9\" is too large for the number of a language."},
        {"CD_TEXT { LANGUAGE_MAP { 0 : KLINGON } }\n",
         "\"disc.toc\", line 1: the language \"KLINGON\" is not known."},
        {"CD_TEXT { LANGUAGE_MAP { 8 : 9 } }\n",
         "\"disc.toc\", line 1: \"8\" is no number of a language: they are 0 to 7."},
        {"CD_TEXT { LANGUAGE 0 { LOUDNESS \"x\" } }\n",
         "\"disc.toc\", line 1: the word \"LOUDNESS\" is not known in CD-Text."},
        {"CD_TEXT { LANGUAGE 0 { GENRE { 256 } } }\n",
         "\"disc.toc\", line 1: \"256\" is too large for a byte."},
        {"CD_TEXT {", "\"disc.toc\", line 1: the file ends where LANGUAGE_MAP or LANGUAGE should stand."},
    };
    for (const auto& [text, sentence] : rows)
        EXPECT_EQ(refused(text), sentence) << text;
    std::string many = "CD_DA\n";
    for (int number = 0; number < 100; ++number)
        many += "TRACK AUDIO\nFILE \"a.cdr\" 0\n";
    EXPECT_EQ(refused(many), "\"disc.toc\", line 200: a disc has at most 99 tracks.");
}

TEST_F(Toc, AnyTextDoesNoHarm) {
    write("d.iso", noise(100 * 2048));
    write("a.cdr", noise(600 * cd, 5));
    write("a.wav", noise(100)); // refused, whenever it is asked for
    std::string text = mixedDisc;
    text.replace(text.find("a.wav"), 5, "a.cdr");
    uint64_t seed = 9;
    const auto random = [&](size_t range) {
        seed = seed * 6364136223846793005u + 1442695040888963407u;
        return static_cast<size_t>((seed >> 33) % range);
    };
    int taken = 0, refusedOnes = 0;
    for (int round = 0; round < 400; ++round) {
        std::string other = text;
        for (size_t times = 1 + random(3); times > 0; --times) {
            const size_t at = random(other.size()), length = random(12);
            switch (random(4)) {
            case 0:
                other[at] = static_cast<char>(random(256));
                break;
            case 1:
                other.erase(at, length);
                break;
            case 2:
                other.insert(at, other.substr(random(other.size()), length));
                break;
            default:
                other[at] = static_cast<char>('0' + random(10));
                break;
            }
        }
        write("disc.toc", other);
        const auto image = readImageFile((base / "disc.toc").string());
        if (!image) {
            ++refusedOnes;
            EXPECT_FALSE(image.error().message.empty());
            continue;
        }
        ++taken;
        for (const Track& track : image->layout.sessions.at(0).tracks)
            if (std::get<ProducedTrack>(track.content).blocks <= 700) burned(track);
    }
    EXPECT_GT(taken, 10);
    EXPECT_GT(refusedOnes, 50);
}

} // namespace
