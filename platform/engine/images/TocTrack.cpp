// What the statements of a track put together.
#include "images/TocTrack.hpp"

#include "RecordingCode.hpp"
#include "audio/AudioReader.hpp"
#include "images/ReadImage.hpp"

#include <algorithm>
#include <array>

namespace engine {
namespace {

constexpr TocMode modes[] = {
    {"AUDIO", BlockForm::Audio, 2352, 0},
    {"MODE1", BlockForm::Data, 2048, 0},
    {"MODE1_RAW", BlockForm::Data, 2352, 16},
    {"MODE2", BlockForm::Mode2, 2336, 0},
    {"MODE2_FORM1", BlockForm::Mode2Form1, 2048, 0},
    {"MODE2_FORM2", BlockForm::Mode2Form2, 2324, 0},
    {"MODE2_FORM_MIX", BlockForm::XA, 2336, 0},
    {"MODE2_RAW", BlockForm::Mode2, 2352, 16},
};

// What a file or a length can't be larger than: beyond that sums would overflow.
constexpr uint64_t largest = uint64_t{1} << 40;

bool isSoundName(const std::string& name) {
    constexpr std::string_view endings[] = {".WAV", ".AIF", ".AIFF", ".AIFC", ".FLAC", ".MP3",
                                            ".OGG", ".OGA", ".OPUS", ".AU",   ".CAF",  ".W64"};
    const std::string capitals = inCapitals(name);
    return std::any_of(std::begin(endings), std::end(endings),
                       [&](std::string_view ending) { return capitals.ends_with(ending); });
}

} // namespace

TocTrack::TocTrack(TocWords& words, size_t number) : words_(words), number_(number) {
    const std::string name = words.takeWord();
    const auto mode = std::find_if(std::begin(modes), std::end(modes),
                                   [&](const TocMode& each) { return each.name == name; });
    if (mode == std::end(modes)) words.refuse("the mode " + inQuotes(name) + " is not known.");
    mode_ = mode;
    line_ = words.line();
    takeSubchannel();
}

bool TocTrack::take(TocText& texts) {
    if (words_.take("NO")) {
        if (words_.take("COPY"))
            copyPermitted_ = false;
        else if (words_.take("PRE_EMPHASIS"))
            preEmphasis_ = false;
        else
            words_.refuseNext("COPY or PRE_EMPHASIS");
    } else if (words_.take("COPY"))
        copyPermitted_ = true;
    else if (words_.take("PRE_EMPHASIS"))
        preEmphasis_ = true;
    else if (words_.take("TWO_CHANNEL_AUDIO"))
        fourChannel_ = false;
    else if (words_.take("FOUR_CHANNEL_AUDIO"))
        fourChannel_ = true;
    else if (words_.take("ISRC"))
        takeISRC();
    else if (words_.take("CD_TEXT"))
        texts.take(words_, number_);
    else if (words_.take("SILENCE"))
        addNothing();
    else if (words_.take("ZERO"))
        takeZero();
    else if (words_.take("FILE") || words_.take("AUDIOFILE"))
        takeSound();
    else if (words_.take("DATAFILE"))
        takeData();
    else if (words_.take("FIFO"))
        words_.refuse("FIFO can't be used: its length isn't known before.", ErrorCode::FunctionNotSupported);
    else if (words_.take("PREGAP"))
        takePreGap();
    else if (words_.take("START"))
        takeStart();
    else if (words_.take("END"))
        takeEnd();
    else if (words_.take("INDEX"))
        takeIndex();
    else
        return false;
    return true;
}

Track TocTrack::made(bool isFirst) const {
    const uint64_t all = bytesOf(pieces_), start = start_.value_or(0);
    if (start > all) words_.sheet().refuse(startLine_, "START lies behind the end of the track's data.");
    if (start == all) words_.sheet().refuse(line_, "the track has no data.");
    Track track;
    PieceTrack pieces;
    pieces.form = mode_->form;
    pieces.subchannel = subchannel_;
    pieces.body = cut(start, all);
    pieces.preGap = cut(0, start);
    const uint64_t kept = start / blockBytes(), unkept = isFirst ? usualPreGap : 0;
    if (kept > 0 && unkept > 0) pieces.preGap.insert(pieces.preGap.begin(), nothing(unkept * blockBytes()));
    ProducedTrack produced = producedTrack(std::move(pieces));
    track.indexPoints = pointsIn(produced.blocks, kept);
    produced.volumeName = volumeNameIn(produced);
    track.content = std::move(produced);
    track.preGapBlocks = kept + unkept;
    track.isrc = isrc_;
    if (isAudio()) {
        track.preEmphasis = preEmphasis_;
        track.fourChannel = fourChannel_;
        track.copyState = copyPermitted_ ? CopyState::Free : CopyState::ProtectedOriginal;
    }
    return track;
}

uint64_t TocTrack::blockBytes() const { return bytesPerBlock(mode_->form, subchannel_); }

uint64_t TocTrack::unitBytes() const {
    return mode_->unitBytes + (subchannel_ == SubchannelForm::None ? 0 : subchannelBytes);
}

void TocTrack::takeSubchannel() {
    if (words_.take("RW"))
        subchannel_ = SubchannelForm::Pack;
    else if (words_.take("RW_RAW"))
        subchannel_ = SubchannelForm::Raw;
}

void TocTrack::takeISRC() {
    const std::string text = words_.takeText("the recording code");
    const std::string code = isrcIn(text);
    if (const auto wrong = wrongInRecordingCode(code); wrong && !code.empty())
        words_.refuse(inQuotes(text) + " is no recording code: " + *wrong + ", as in USRC17607839.");
    isrc_ = code;
}

// A time counts blocks, a plain number samples or bytes.
bool TocTrack::isLength() const { return words_.isNumber() || words_.isTime(); }
uint64_t TocTrack::takeLength() {
    if (words_.isTime()) return words_.takeTime() * unitBytes();
    return words_.takeNumber("a length", largest) * (isAudio() ? bytesPerSample : 1);
}

uint64_t TocTrack::takeOffset() {
    if (!words_.peek().starts_with('#')) return 0;
    const std::string word = words_.takeWord().substr(1);
    if (word.empty() || word.size() > 15 || word.find_first_not_of("0123456789") != std::string::npos)
        words_.refuse(inQuotes(word) + " is no number of bytes.");
    return std::stoull(word);
}

void TocTrack::add(PieceRef piece) {
    if (piece->bytes() > 0) pieces_.push_back(std::move(piece));
}

void TocTrack::addNothing() {
    const uint64_t length = takeLength();
    add(nothing(mode_->userAt > 0 ? length / unitBytes() * blockBytes() : length));
}

void TocTrack::takeZero() {
    // Newer files say again which mode the zeros have.
    while (std::any_of(std::begin(modes), std::end(modes),
                       [&](const TocMode& each) { return each.name == words_.peek(); }) ||
           words_.peek() == "RW" || words_.peek() == "RW_RAW")
        words_.takeWord();
    addNothing();
}

// The stretch of a file that is meant; what the file doesn't have is refused.
uint64_t TocTrack::lengthOf(const std::string& name, uint64_t bytes, uint64_t from, uint64_t asked) const {
    if (from > bytes || asked > bytes - from)
        words_.refuse("the file " + inQuotes(name) + " is shorter than that: it has " +
                      std::to_string(bytes) + " bytes of data.");
    return asked == 0 ? bytes - from : asked;
}

void TocTrack::takeSound() {
    const std::string name = words_.takeText("the name of a file");
    if (!isAudio()) words_.refuse("a data track takes DATAFILE and ZERO.");
    if (name == "-")
        words_.refuse("standard input can't be used: its length isn't known before.",
                      ErrorCode::FunctionNotSupported);
    const bool isSwapped = words_.take("SWAP");
    const uint64_t offset = takeOffset();
    if (!isLength()) words_.refuseNext("the place to start at");
    const uint64_t from = takeLength(), asked = isLength() ? takeLength() : 0;
    const std::string path = words_.sheet().findFile(words_.line(), name);
    const bool hasSubchannel = subchannel_ != SubchannelForm::None;
    if (isSoundName(name)) {
        if (hasSubchannel) words_.refuse("a sound file has no subchannel data; the track says that it has.");
        const auto reader = AudioReader::open(path);
        if (!reader) words_.refuse(reader.error().message, reader.error().code);
        if (offset > 0 || isSwapped) words_.refuse("SWAP and an offset are for files of raw samples.");
        const uint64_t length = lengthOf(name, (*reader)->samples() * bytesPerSample, from, asked);
        add(soundOfFile(path, from / bytesPerSample, length / bytesPerSample));
        return;
    }
    const uint64_t length = lengthOf(name, words_.sheet().sizeOf(words_.line(), path), offset + from, asked);
    if (length % bytesPerSample != 0)
        words_.refuse("the file " + inQuotes(name) + " is no whole number of samples of 4 bytes.");
    // Raw samples are big-endian. What stands behind them is bytes.
    if (hasSubchannel && !isSwapped) {
        if (length % unitBytes() != 0)
            words_.refuse("the file " + inQuotes(name) + " is no whole number of sectors of " +
                          std::to_string(unitBytes()) + " bytes.");
        return add(swappedSectorsOfFile(path, offset + from, length / unitBytes()));
    }
    add(isSwapped ? bytesOfFile(path, offset + from, length)
                  : swappedBytesOfFile(path, offset + from, length));
}

void TocTrack::takeData() {
    const std::string name = words_.takeText("the name of a file");
    if (isAudio()) words_.refuse("an audio track takes FILE and SILENCE.");
    const uint64_t offset = takeOffset(), asked = isLength() ? takeLength() : 0;
    const std::string path = words_.sheet().findFile(words_.line(), name);
    const uint64_t length = lengthOf(name, words_.sheet().sizeOf(words_.line(), path), offset, asked);
    if (mode_->userAt == 0) return add(bytesOfFile(path, offset, length));
    const uint64_t unit = unitBytes(), count = length / unit;
    if (length % unit != 0)
        words_.refuse("the file " + inQuotes(name) + " is no whole number of sectors of " +
                      std::to_string(unit) + " bytes.");
    Units units{unit, mode_->userAt, bytesPerBlock(mode_->form)};
    units.isMode1 = mode_->form == BlockForm::Data;
    units.isMode2 = !units.isMode1;
    add(subchannel_ == SubchannelForm::None ? partsOfFile(path, offset, count, units)
                                            : partsWithSubchannelOfFile(path, offset, count, units));
}

void TocTrack::needNoStart() {
    if (start_) words_.refuse("a track has one START or PREGAP.");
    startLine_ = words_.line();
}

void TocTrack::takePreGap() {
    needNoStart();
    if (!pieces_.empty()) words_.refuse("PREGAP stands before the track's data.");
    start_ = words_.takeTime() * blockBytes();
    add(nothing(*start_));
}

void TocTrack::takeStart() {
    needNoStart();
    const uint64_t here = bytesOf(pieces_), perBlock = blockBytes();
    if (words_.isTime()) {
        start_ = words_.takeTime() * perBlock;
        return;
    }
    start_ = (here + perBlock - 1) / perBlock * perBlock;
    add(nothing(*start_ - here));
}

void TocTrack::takeEnd() {
    if (end_) words_.refuse("a track has one END.");
    endLine_ = words_.line();
    const uint64_t perBlock = blockBytes();
    end_ = words_.isTime() ? words_.takeTime() : (bytesOf(pieces_) + perBlock - 1) / perBlock;
}

void TocTrack::takeIndex() {
    const uint64_t point = words_.takeTime();
    if (indexPoints_.size() == maximumIndexPoints) words_.refuse("a track has at most 99 indexes.");
    if (point == 0 || (!indexPoints_.empty() && point <= indexPoints_.back()))
        words_.refuse("the time of an INDEX lies behind the one before it.");
    indexPoints_.push_back(point);
    indexLine_ = words_.line();
}

// Where the post-gap begins, the index goes on as well.
std::vector<uint64_t> TocTrack::pointsIn(uint64_t blocks, uint64_t preGap) const {
    std::vector<uint64_t> points = indexPoints_;
    if (!points.empty() && points.back() >= blocks)
        words_.sheet().refuse(indexLine_,
                              "INDEX " + timeOf(points.back()) + " lies behind the end of the track.");
    if (!end_) return points;
    if (*end_ <= preGap || *end_ >= preGap + blocks)
        words_.sheet().refuse(endLine_, "END " + timeOf(*end_) + " lies outside of the track.");
    const uint64_t end = *end_ - preGap;
    if (std::find(points.begin(), points.end(), end) != points.end()) return points;
    points.insert(std::upper_bound(points.begin(), points.end(), end), end);
    return points;
}

std::vector<PieceRef> TocTrack::cut(uint64_t from, uint64_t to) const {
    std::vector<PieceRef> row;
    uint64_t at = 0;
    for (const PieceRef& piece : pieces_) {
        const uint64_t begin = std::max(at, from), end = std::min(at + piece->bytes(), to);
        if (begin < end)
            row.push_back(begin == at && end == at + piece->bytes() ? piece
                                                                    : partOf(piece, begin - at, end - begin));
        at += piece->bytes();
    }
    return row;
}

} // namespace engine
