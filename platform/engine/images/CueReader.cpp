// From a cue sheet to a disc: which bytes of which file are a track's, and which its pre-gap's.
#include "audio/AudioReader.hpp"
#include "images/CueSheetText.hpp"
#include "images/PieceProducer.hpp"
#include "images/ReadImage.hpp"

#include <algorithm>
#include <optional>

namespace engine {
namespace {

// The two seconds before a session's first track, which no file holds: a sheet's times count from behind them.
constexpr uint64_t unkept = usualPreGap;

// Where an index lies in its file: bytes, or samples of sound.
struct Place {
    CueIndex index;
    uint64_t at = 0;
};

class CueDisc {
  public:
    CueDisc(const Sheet& sheet, CueSheetText told)
        : sheet_(sheet), told_(std::move(told)), drafts_(told_.tracks.size()) {}

    ImageLayout layout() {
        findPlaces();
        for (size_t place = 0; place < places_.size(); ++place)
            addBehind(place);
        ImageLayout image;
        for (size_t track = 0; track < told_.tracks.size(); ++track) {
            const bool isFirst = track == 0 || told_.tracks[track].session != told_.tracks[track - 1].session;
            if (isFirst) image.layout.sessions.emplace_back();
            image.layout.sessions.back().tracks.push_back(made(track, isFirst));
        }
        image.mediaCatalogNumber = told_.catalogNumber;
        const bool hasSound = std::any_of(told_.tracks.begin(), told_.tracks.end(),
                                          [](const CueTrack& each) { return each.isSound(); });
        told_.texts.findLanguage();
        // CD-Text is about music; the title of a data disc is its volume's name.
        if (hasSound)
            image.cdText = told_.packs.empty() ? packsOf({told_.texts}, told_.tracks.size()) : told_.packs;
        return image;
    }

  private:
    struct Draft {
        PieceTrack pieces;
        std::vector<uint64_t> indexPoints;
        std::optional<uint64_t> startBlock;
    };

    const CueTrack& trackOf(const Place& place) const { return told_.tracks[place.index.track]; }
    const CueFile& fileOf(const Place& place) const { return told_.files[place.index.file]; }
    bool isSound(const CueFile& file) const { return file.kind == CueFile::Kind::Sound; }
    uint64_t unitOf(const Place& place) const {
        return isSound(fileOf(place)) ? samplesPerBlock : trackOf(place).mode->unitBytes;
    }

    // An index says how many sectors lie before it in its file; sectors of different tracks may be of different sizes.
    void findPlaces() {
        for (const CueIndex& index : told_.indexes) {
            Place place{index, 0};
            const bool isFirstOfFile = places_.empty() || places_.back().index.file != index.file;
            if (isFirstOfFile) {
                addFront(index);
            }
            const bool hasBefore = !places_.empty() && places_.back().index.file == index.file;
            if (hasBefore) {
                const Place& before = places_.back();
                if (index.block < before.index.block)
                    sheet_.refuse(index.line,
                                  "the time " + timeOf(index.block) + " lies before the one above it.");
                place.at = before.at + (index.block - before.index.block) * unitOf(before);
            }
            if (place.at > fileOf(place).length)
                sheet_.refuse(index.line, "the time " + timeOf(index.block) +
                                              " lies behind the end of the file " +
                                              inQuotes(fileOf(place).name) + '.');
            places_.push_back(place);
        }
    }
    // What lies in a file before its first index belongs to that index's track: to its pre-gap, if the track begins there.
    void addFront(const CueIndex& index) {
        if (index.block == 0) return;
        CueIndex front = index;
        front.block = 0;
        if (index.number == 1)
            front.number = 0;
        else if (index.number > 1)
            front.number = index.number - 1;
        places_.push_back({front, 0});
    }

    // The bytes from a place on, to the next one.
    void addBehind(size_t number) {
        const Place& place = places_[number];
        const CueFile& file = fileOf(place);
        Draft& draft = drafts_[place.index.track];
        draft.pieces.form = trackOf(place).mode->form;
        draft.pieces.subchannel = trackOf(place).subchannel;
        if (place.index.number >= 2 && !isAdded(draft, place))
            draft.indexPoints.push_back(blocksIn(draft, place));
        const bool isLastOfFile =
            number + 1 == places_.size() || places_[number + 1].index.file != place.index.file;
        uint64_t end = isLastOfFile ? file.length : places_[number + 1].at;
        if (const auto leadOut = leadOutBehind(number); leadOut && *leadOut < end) {
            end = *leadOut;
            if (!isLastOfFile) requirePlace(places_[number + 1].index.track);
        }
        if (end == place.at) return;
        auto& row = place.index.number == 0 ? draft.pieces.preGap : draft.pieces.body;
        row.push_back(pieceOf(place, end - place.at));
    }
    // The end of a session, behind its last index. Other programs count from the disc's start, also in a file that begins
    // later: such a time lies behind the file's end, and the file's end it is.
    std::optional<uint64_t> leadOutBehind(size_t number) const {
        const Place& place = places_[number];
        const bool isLastOfSession =
            number + 1 == places_.size() || trackOf(places_[number + 1]).session != trackOf(place).session;
        if (!isLastOfSession) return std::nullopt;
        for (const CueLeadOut& each : told_.leadOuts)
            if (each.track == place.index.track && each.file == place.index.file &&
                each.block > place.index.block)
                return place.at + (each.block - place.index.block) * unitOf(place);
        return std::nullopt;
    }
    // A file that keeps the gap between two sessions is the disc block for block, so it says where the later one must
    // begin. Sound may begin anywhere.
    void requirePlace(size_t track) {
        const auto isMore = [](const CueTrack& each) { return each.preGap > 0 || each.postGap > 0; };
        const auto upTo = told_.tracks.begin() + static_cast<std::ptrdiff_t>(track) + 1;
        if (told_.tracks[track].isSound() || std::any_of(told_.tracks.begin(), upTo, isMore)) return;
        for (const CueIndex& index : told_.indexes)
            if (index.track == track && index.number == 1 && index.file == 0)
                drafts_[track].startBlock = index.block;
    }
    // The front of a file goes on with the index that the file before it ended in.
    bool isAdded(const Draft& draft, const Place& place) const {
        return draft.indexPoints.size() + 2 > place.index.number;
    }
    uint64_t blocksIn(const Draft& draft, const Place& place) const {
        const uint64_t bytes = bytesOf(draft.pieces.body), perBlock = trackOf(place).blockBytes();
        return (bytes + perBlock - 1) / perBlock;
    }

    PieceRef pieceOf(const Place& place, uint64_t length) const {
        const CueTrack& track = trackOf(place);
        if (track.subchannelPath.empty()) return pieceOfFile(place, length);
        // Sector for sector, so in front of the track there may be no others.
        const uint64_t before = place.at / sectorBytes, count = length / sectorBytes;
        if (isSound(fileOf(place)) || place.at % sectorBytes != 0 ||
            sheet_.sizeOf(track.line, track.subchannelPath) < (before + count) * subchannelBytes)
            sheet_.refuse(track.line, "the file of its subchannels does not go with that of its sectors.");
        return withSubchannel(pieceOfFile(place, length), bytesPerBlock(track.mode->form),
                              symbolsOfFile(track.subchannelPath, before * subchannelBytes, count));
    }
    PieceRef pieceOfFile(const Place& place, uint64_t length) const {
        const CueFile& file = fileOf(place);
        const CueMode& mode = *trackOf(place).mode;
        if (isSound(file)) return soundOfFile(file.path, place.at, length);
        if (length % mode.unitBytes != 0)
            sheet_.refuse(file.line, "the file " + inQuotes(file.name) +
                                         " is cut off, or its tracks have another mode: what it holds from " +
                                         timeOf(place.index.block) + " on is no whole number of sectors of " +
                                         std::to_string(mode.unitBytes) + " bytes.");
        const uint64_t sectors = length / mode.unitBytes;
        if (mode.form == BlockForm::Audio) {
            const bool isSwapped = file.kind == CueFile::Kind::BigEndian;
            if (!isSwapped) return bytesOfFile(file.path, place.at, length);
            return mode.unitBytes == sectorBytes ? swappedBytesOfFile(file.path, place.at, length)
                                                 : swappedSectorsOfFile(file.path, place.at, sectors);
        }
        const uint64_t user = bytesPerBlock(mode.form);
        if (user == mode.unitBytes) return bytesOfFile(file.path, place.at, length);
        Units units{mode.unitBytes, mode.userAt, user};
        units.isMode1 = mode.form == BlockForm::Data;
        units.isMode2 = !units.isMode1;
        if (units.isMode2 && mode.form != BlockForm::Mode2) units.form = mode.form;
        return partsOfFile(file.path, place.at, sectors, units);
    }

    Track made(size_t number, bool isFirst) {
        const CueTrack& told = told_.tracks[number];
        Draft& draft = drafts_[number];
        if (draft.pieces.body.empty())
            sheet_.refuse(
                told.line,
                "the track has no sectors: its file ends, or the next track begins, where it begins.");
        const uint64_t perBlock = told.blockBytes();
        if (told.postGap > 0) draft.pieces.body.push_back(nothing(told.postGap * perBlock));
        // Silence only, and the engine makes it; with bytes of a file behind it, it is a piece like those.
        const uint64_t silent = told.preGap + (isFirst ? unkept : 0);
        const uint64_t kept = (bytesOf(draft.pieces.preGap) + perBlock - 1) / perBlock;
        if (silent > 0 && kept > 0)
            draft.pieces.preGap.insert(draft.pieces.preGap.begin(), nothing(silent * perBlock));
        Track track;
        ProducedTrack produced = producedTrack(std::move(draft.pieces));
        produced.volumeName = volumeNameIn(produced);
        track.content = std::move(produced);
        track.startBlock = draft.startBlock;
        track.preGapBlocks = silent + kept;
        track.isrc = told.isrc;
        track.sessionFormat = told.format;
        track.indexPoints = std::move(draft.indexPoints);
        if (told.isSound()) {
            track.preEmphasis = told.preEmphasis;
            track.fourChannel = told.fourChannel;
            track.copyState = told.isCopy          ? CopyState::ProtectedCopy
                              : told.copyPermitted ? CopyState::Free
                                                   : CopyState::ProtectedOriginal;
        }
        return track;
    }

    const Sheet& sheet_;
    CueSheetText told_;
    std::vector<Place> places_;
    std::vector<Draft> drafts_;
};

} // namespace

ImageLayout readCueSheet(const std::string& path) {
    const Sheet sheet(path);
    return CueDisc(sheet, parseCueSheet(sheet)).layout();
}

} // namespace engine
