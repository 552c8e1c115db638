// Cue sheets that make no sense: a sentence with the line for each.
#include "ImageFixture.hpp"

namespace {

using namespace engine;

class CueBadInput : public ImageTest {
  protected:
    void SetUp() override {
        write("disc.bin", noise(100 * cd));
        write("odd.bin", noise(100 * cd + 7));
        write("empty.bin", "");
        write("text.wav", "no sound");
        fs::create_directory(base / "folder.bin");
    }
    std::string refused(const std::string& text) {
        write("disc.cue", text);
        return refusal("disc.cue");
    }
};

TEST_F(CueBadInput, IsToldWithItsLine) {
    const std::string file = "FILE disc.bin BINARY\n", head = file + "TRACK 1 AUDIO\nINDEX 1 00:00:00\n";
    const std::pair<std::string, const char*> rows[] = {
        {"", "\"disc.cue\", line 1: the sheet has no tracks."},
        {"REM nothing\n\n", "\"disc.cue\", line 2: the sheet has no tracks."},
        {"FILE none.bin BINARY\n", "\"disc.cue\", line 1: the file \"none.bin\" is not there; put it beside "
                                   "the sheet, or correct its name."},
        {"FILE folder.bin BINARY\n", "\"disc.cue\", line 1: the file \"folder.bin\" is not there; put it "
                                     "beside the sheet, or correct its name."},
        {"FILE empty.bin BINARY\n", "\"disc.cue\", line 1: the file \"empty.bin\" is empty."},
        {"FILE \"\" BINARY\n",
         "\"disc.cue\", line 1: the file \"\" is not there; put it beside the sheet, or correct its name."},
        {"FILE disc.bin\n",
         "\"disc.cue\", line 1: FILE has a name and then a kind: BINARY, MOTOROLA, WAVE, AIFF, MP3 or FLAC."},
        {"FILE disc.bin TAPE\n", "\"disc.cue\", line 1: the kind of file \"TAPE\" is not known."},
        {"FILE text.wav WAVE\n", "\"disc.cue\", line 1: The file \"text.wav\" is no sound that can be read; "
                                 "use WAV, AIFF, FLAC, Ogg or MP3."},
        {head + "SHUFFLE\n", "\"disc.cue\", line 4: the word \"SHUFFLE\" is not known."},
        {head + "FLAGS LOUD\n", "\"disc.cue\", line 4: the flag \"LOUD\" is not known."},
        {head + "ISRC 123\n",
         "\"disc.cue\", line 4: \"123\" is no recording code: an ISRC has 12 characters, not 3, as in "
         "USRC17607839."},
        {head + "ISRC 00000000000\n", "\"disc.cue\", line 4: \"00000000000\" is no recording code: an ISRC "
                                      "has 12 characters, not 11, as in "
                                      "USRC17607839."},
        {head + "ISRC 12-ABC-99-00001\n",
         "\"disc.cue\", line 4: \"12-ABC-99-00001\" is no recording code: character 1 of "
         "an ISRC is a capital letter, as in USRC17607839."},
        {"CATALOG 123\n", "\"disc.cue\", line 1: \"123\" is no catalog number: it has 13 digits."},
        {"ISRC USRC17607839\n", "\"disc.cue\", line 1: ISRC stands before the first track."},
        {"PREGAP 00:02:00\n", "\"disc.cue\", line 1: PREGAP stands before the first track."},
        {"INDEX 01 00:00:00\n", "\"disc.cue\", line 1: INDEX stands before the first track."},
        {"TRACK 1 AUDIO\nINDEX 01 00:00:00\n", "\"disc.cue\", line 2: INDEX stands before the first FILE."},
        {file + "TRACK\n", "\"disc.cue\", line 2: TRACK has a number and then a mode."},
        {file + "TRACK 0 AUDIO\n", "\"disc.cue\", line 2: a track's number is 1 to 99."},
        {file + "TRACK 100 AUDIO\n", "\"disc.cue\", line 2: a track's number is 1 to 99."},
        {file + "TRACK 1 VIDEO\n", "\"disc.cue\", line 2: the mode \"VIDEO\" is not known."},
        {file + "TRACK 1 AUDIO\n", "\"disc.cue\", line 2: the track has no INDEX 01."},
        {file + "TRACK 1 AUDIO\nINDEX 0 00:00:00\nTRACK 2 AUDIO\n",
         "\"disc.cue\", line 2: the track has no INDEX 01."},
        {head + "TRACK 3 AUDIO\n", "\"disc.cue\", line 4: track 3 follows track 1."},
        {file + "TRACK 1 AUDIO\nINDEX 2 00:00:00\n",
         "\"disc.cue\", line 3: index 2 can't be a track's first."},
        {head + "INDEX 3 00:00:10\n", "\"disc.cue\", line 4: index 3 is out of order."},
        {head + "INDEX 1 00:00:10\n", "\"disc.cue\", line 4: index 1 is out of order."},
        {head + "INDEX 100 00:00:10\n",
         "\"disc.cue\", line 4: INDEX has a number of 0 to 99 and then a time."},
        {head + "INDEX 2 00:60:00\n", "\"disc.cue\", line 4: \"00:60:00\" is no time of the form mm:ss:ff."},
        {head + "INDEX 2 00:00:75\n", "\"disc.cue\", line 4: \"00:00:75\" is no time of the form mm:ss:ff."},
        {head + "INDEX 2 00:01.20\n", "\"disc.cue\", line 4: \"00:01.20\" is no time of the form mm:ss:ff."},
        {head + "INDEX 2 -1:00:00\n", "\"disc.cue\", line 4: \"-1:00:00\" is no time of the form mm:ss:ff."},
        {head + "PREGAP 2\n", "\"disc.cue\", line 4: PREGAP has a time of the form mm:ss:ff."},
        {head + "INDEX 2 00:00:50\nTRACK 2 AUDIO\nINDEX 1 00:00:40\n",
         "\"disc.cue\", line 6: the time 00:00:40 lies before the one above it."},
        {head + "TRACK 2 AUDIO\nINDEX 1 70:00:00\n",
         "\"disc.cue\", line 5: the time 70:00:00 lies behind the end of the file \"disc.bin\"."},
        {head + "TRACK 2 AUDIO\nINDEX 1 00:01:25\n", "\"disc.cue\", line 4: the track has no sectors: its "
                                                     "file ends, or the next track begins, where it begins."},
        {"FILE odd.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\nTRACK 2 AUDIO\nINDEX 1 00:01:00\n",
         "\"disc.cue\", line 1: the file \"odd.bin\" is cut off, or its tracks have another mode: what it "
         "holds from 00:01:00 on is no whole number of sectors of 2352 bytes."},
        {file + head, "\"disc.cue\", line 1: no index lies in the file \"disc.bin\"."},
        {head + file, "\"disc.cue\", line 4: no index lies in the file \"disc.bin\"."},
        {head + "REM SESSION 3\n", "\"disc.cue\", line 4: session 3 is out of order."},
        {head + std::string("A\0B", 3) + "\n", "\"disc.cue\", line 4: this is no text."},
    };
    for (const auto& [text, sentence] : rows)
        EXPECT_EQ(refused(text), sentence) << text;
}

TEST_F(CueBadInput, SoundFilesHoldNoData) {
    run("sox -r 44100 -n -c 2 -b 16 a.wav synth 3 sine 400");
    EXPECT_EQ(refused("FILE a.wav WAVE\nTRACK 1 MODE1/2352\nINDEX 1 00:00:00\n"),
              "\"disc.cue\", line 3: a track of mode MODE1/2352 can't come from a sound file.");
    EXPECT_EQ(refused("FILE a.wav WAVE\nTRACK 1 CDG\nINDEX 1 00:00:00\n"),
              "\"disc.cue\", line 3: a track of mode CDG can't come from a sound file.");
    EXPECT_EQ(refused("FILE a.wav WAVE\nTRACK 1 AUDIO\nINDEX 1 00:00:00\nTRACK 2 AUDIO\nINDEX 1 00:03:01\n"),
              "\"disc.cue\", line 5: the time 00:03:01 lies behind the end of the file \"a.wav\".");
}

TEST_F(CueBadInput, TheSheetItselfMayBeTheFault) {
    fs::create_directory(base / "folder.cue");
    write("large.cue", std::string(2 << 20, '\n'));
    EXPECT_EQ(refusal("folder.cue"), "\"folder.cue\" is no file, so it can't be read as an image.");
    EXPECT_EQ(refusal("none.cue"), "The file \"none.cue\" can't be opened: No such file or directory.");
    EXPECT_EQ(refusal("large.cue"), "The file \"large.cue\" is too large for a sheet of tracks.");
}

// A damaged sector must not get codes that say that it is right.
TEST_F(CueBadInput, DamagedSectorsStopTheBurn) {
    std::string user, sectors = mode1Sectors(50, 0, user);
    sectors[40 * cd + 100] ^= 1;
    write("data.bin", sectors);
    const auto image = readText("disc.cue", "FILE data.bin BINARY\nTRACK 1 MODE1/2352\nINDEX 1 00:00:00\n");
    try {
        burned(image);
        ADD_FAILURE() << "all was produced";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.error().code, ErrorCode::DataProduction);
        EXPECT_EQ(failure.error().message, "Sector 40 of the file \"" + (base / "data.bin").string() +
                                               "\" is damaged, or is no mode 1 sector.");
    }
    // Without codes there is nothing to tell, and they are made.
    for (size_t sector = 0; sector < 50; ++sector)
        std::fill_n(sectors.begin() + static_cast<long>(sector * cd + 2064), 288, '\0');
    write("data.bin", sectors);
    EXPECT_EQ(burned(read("disc.cue")).at(0).body.size(), user.size());
}

TEST_F(CueBadInput, FilesThatChangeStopTheBurn) {
    const auto image = readText("disc.cue", "FILE disc.bin BINARY\nTRACK 1 AUDIO\nINDEX 1 00:00:00\n");
    const auto& track = std::get<ProducedTrack>(image.layout.sessions.at(0).tracks.at(0).content);
    const auto codeOf = [](auto&& act) {
        try {
            act();
        } catch (const Failure& failure) {
            return failure.error().code;
        }
        return ErrorCode::Internal;
    };
    uint64_t blocks = 0;
    ASSERT_TRUE(track.producer->prepare(blocks, MediumInfo{}));
    fs::resize_file(base / "disc.bin", 50 * cd);
    ProduceFlags flags;
    std::vector<std::byte> buffer(100 * cd);
    EXPECT_EQ(codeOf([&] { track.producer->produce(0, buffer, flags); }), ErrorCode::DataProduction);
    track.producer->cleanupAfterBurn();
    EXPECT_EQ(codeOf([&] { track.producer->prepare(blocks, MediumInfo{}); }),
              ErrorCode::FileModifiedDuringBurn);
    fs::remove(base / "disc.bin");
    EXPECT_EQ(codeOf([&] { track.producer->prepare(blocks, MediumInfo{}); }),
              ErrorCode::FileLocationConflict);
    track.producer->cleanupAfterBurn();
}

// Whatever stands in a sheet: a disc that can be produced, or a sentence.
TEST_F(CueBadInput, AnyTextDoesNoHarm) {
    const std::string text =
        "CATALOG 0123456789012\nTITLE \"A\"\nFILE \"mixed.bin\" BINARY\n"
        "TRACK 01 MODE1/2048\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nFLAGS DCP\nISRC USRC17607839\nPREGAP "
        "00:00:10\n"
        "INDEX 00 00:00:20\nINDEX 01 00:00:40\nINDEX 02 00:00:50\nREM LEAD-OUT 00:00:58\nREM SESSION "
        "02\nTRACK 03 "
        "MODE2/2336\nPOSTGAP 00:00:02\nINDEX 01 00:01:00\n";
    write("mixed.bin", noise(20 * 2048 + 55 * cd + 30 * 2336));
    uint64_t seed = 5;
    const auto random = [&](size_t range) {
        seed = seed * 6364136223846793005u + 1442695040888963407u;
        return static_cast<size_t>((seed >> 33) % range);
    };
    int taken = 0, refusedOnes = 0;
    for (int round = 0; round < 600; ++round) {
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
            if (other.empty()) other = "X";
        }
        write("disc.cue", other);
        const auto image = readImageFile((base / "disc.cue").string());
        if (!image) {
            ++refusedOnes;
            EXPECT_FALSE(image.error().message.empty());
            continue;
        }
        ++taken;
        for (const Session& session : image->layout.sessions)
            for (const Track& track : session.tracks) {
                if (std::get<ProducedTrack>(track.content).blocks > 700) continue;
                try {
                    burned(track);
                } catch (const Failure& failure) {
                    EXPECT_FALSE(failure.error().message.empty());
                    std::get<ProducedTrack>(track.content).producer->cleanupAfterBurn();
                }
            }
    }
    EXPECT_GT(taken, 20);
    EXPECT_GT(refusedOnes, 200);
}

} // namespace
