// Cue sheets, as the programs that rip discs write them: any case, tabs, either end of lines, quotes in quotes.
#include "images/CueSheetText.hpp"

#include "BlockForm.hpp"
#include "RecordingCode.hpp"
#include "audio/AudioReader.hpp"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace engine {
namespace {

constexpr CueMode modes[] = {
    {"AUDIO", 2352, BlockForm::Audio, 0},
    {"CDG", 2448, BlockForm::Audio, 0},
    {"MODE1/2048", 2048, BlockForm::Data, 0},
    {"MODE1/2352", 2352, BlockForm::Data, 16},
    {"MODE2/2048", 2048, BlockForm::Mode2Form1, 0},
    {"MODE2/2324", 2324, BlockForm::Mode2Form2, 0},
    {"MODE2/2336", 2336, BlockForm::Mode2, 0},
    {"MODE2/2352", 2352, BlockForm::Mode2, 16},
    // Told by a remark that this engine writes; without one it is the first of that name.
    {"MODE1/2352", 2352, BlockForm::RawMode1, 0},
    {"MODE2/2352", 2352, BlockForm::Mode2Form1, 24},
    {"MODE2/2352", 2352, BlockForm::Mode2Form2, 24},
    {"MODE2/2352", 2352, BlockForm::XA, 16},
    {"MODE2/2352", 2352, BlockForm::Mixed, 16},
    {"MODE2/2352", 2352, BlockForm::RawMode2, 0},
    {"CDI/2336", 2336, BlockForm::Mode2, 0, SessionFormat::CDI},
    {"CDI/2352", 2352, BlockForm::Mode2, 16, SessionFormat::CDI},
};

constexpr std::string_view blanks = " \t\r\f\v";

std::string_view trimmed(std::string_view text) {
    const size_t from = text.find_first_not_of(blanks);
    if (from == std::string_view::npos) return {};
    return text.substr(from, text.find_last_not_of(blanks) - from + 1);
}

// Quotes at both ends go; those inside a text stay.
std::string_view unquoted(std::string_view text) {
    text = trimmed(text);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
    return text;
}

class CueParser {
  public:
    explicit CueParser(const Sheet& sheet) : sheet_(sheet) {}

    CueSheetText parse() {
        std::string text = sheet_.text();
        // A carriage return alone ends a line as well.
        for (size_t at = 0; at < text.size(); ++at)
            if (text[at] == '\r' && (at + 1 == text.size() || text[at + 1] != '\n')) text[at] = '\n';
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            ++line_;
            if (const size_t nul = line.find('\0'); nul != std::string::npos) refuse("this is no text.");
            const std::string_view whole = trimmed(line);
            if (whole.empty() || whole.front() == ';') continue;
            const size_t end = std::min(whole.find_first_of(blanks), whole.size());
            take(inCapitals(whole.substr(0, end)), trimmed(whole.substr(end)));
        }
        if (told_.tracks.empty()) refuse("the sheet has no tracks.");
        needIndexOfLastTrack();
        needIndexOfLastFile();
        return std::move(told_);
    }

  private:
    [[noreturn]] void refuse(const std::string& sentence) const {
        sheet_.refuse(std::max<size_t>(line_, 1), sentence);
    }

    void take(const std::string& word, std::string_view rest) {
        if (word == "REM") return takeRemark(rest);
        if (word == "FILE") return takeFile(rest);
        if (word == "TRACK") return takeTrack(rest);
        if (word == "INDEX") return takeIndex(rest);
        if (word == "PREGAP") return takeTime(rest, word, track(word).preGap);
        if (word == "POSTGAP") return takeTime(rest, word, track(word).postGap);
        if (word == "FLAGS") return takeFlags(rest);
        if (word == "ISRC") return takeISRC(unquoted(rest));
        if (word == "CATALOG") return takeCatalog(unquoted(rest));
        if (word == "CDTEXTFILE") return takePacks(unquoted(rest));
        if (word == "GENRE") return told_.texts.setGenre(0, unquoted(rest));
        if (word == "UPC_EAN") return; // says again what CATALOG says
        if (const auto type = textTypeOf(word))
            return told_.texts.set(*type, told_.tracks.size(), unquoted(rest));
        refuse("the word " + inQuotes(word) + " is not known.");
    }

    CueTrack& track(const std::string& word) {
        if (told_.tracks.empty()) refuse(word + " stands before the first track.");
        return told_.tracks.back();
    }

    void takeRemark(std::string_view rest) {
        std::istringstream words{inCapitals(rest)};
        std::string word;
        size_t number = 0;
        if (!(words >> word)) return;
        if (std::string format; word == "SESSION-FORMAT" && words >> format && format == "CD-I")
            format_ = SessionFormat::CDI;
        if (word == "LEAD-OUT") return takeLeadOut(words);
        if (word == "BLOCK-FORM") return takeForm(trimmed(rest.substr(word.size())));
        if (word == "SUBCHANNEL" && words >> word) return takeSubchannel(word, rest);
        if (word != "SESSION" || !(words >> number)) return;
        if (number != session_ && number != session_ + 1)
            refuse("session " + std::to_string(number) + " is out of order.");
        if (number != session_) format_ = SessionFormat::Plain;
        session_ = number;
    }

    // One that doesn't go with the track's mode, and one before any track, says nothing.
    void takeForm(std::string_view name) {
        const auto form = blockFormNamed(name);
        if (!form || told_.tracks.empty()) return;
        const CueMode*& mode = told_.tracks.back().mode;
        const auto row = std::find_if(std::begin(modes), std::end(modes), [&](const CueMode& each) {
            return each.name == mode->name && each.form == *form;
        });
        if (row != std::end(modes)) mode = row;
    }

    // REM SUBCHANNEL RAW "medium.sub", as this engine writes it. Deliberate: a file that it names and that is not there is
    // an error, because a disc without the words of its songs must not look like a copy.
    void takeSubchannel(const std::string& form, std::string_view rest) {
        const size_t nameAt = rest.find('"');
        const bool isKnown = form == "RAW" || form == "PACK";
        if (told_.tracks.empty() || nameAt == std::string_view::npos || !isKnown) return;
        CueTrack& owner = told_.tracks.back();
        if (owner.mode->unitBytes != sectorBytes)
            refuse("only sectors of 2352 bytes have their subchannels in a file beside them.");
        owner.subchannel = form == "RAW" ? SubchannelForm::Raw : SubchannelForm::Pack;
        owner.subchannelPath = sheet_.findFile(line_, std::string(unquoted(rest.substr(nameAt))));
    }

    // A remark that says nothing that can be read is still a remark.
    void takeLeadOut(std::istringstream& words) {
        std::string time;
        uint64_t block = 0;
        if (!(words >> time) || !blocksOfTime(time, block) || told_.indexes.empty()) return;
        told_.leadOuts.push_back({told_.indexes.back().file, told_.indexes.back().track, block});
    }

    void takeFile(std::string_view rest) {
        // The kind stands last; the name may hold blanks without quotes, and quotes.
        const size_t kindAt = rest.find_last_of(" \t\"");
        if (kindAt == std::string_view::npos || kindAt + 1 == rest.size())
            refuse("FILE has a name and then a kind: BINARY, MOTOROLA, WAVE, AIFF, MP3 or FLAC.");
        const std::string kind = inCapitals(rest.substr(kindAt + 1));
        CueFile file;
        file.name = unquoted(rest.substr(0, rest[kindAt] == '"' ? kindAt + 1 : kindAt));
        file.line = line_;
        if (kind == "BINARY")
            file.kind = CueFile::Kind::LittleEndian;
        else if (kind == "MOTOROLA")
            file.kind = CueFile::Kind::BigEndian;
        else if (kind == "WAVE" || kind == "AIFF" || kind == "MP3" || kind == "FLAC" || kind == "OGG")
            file.kind = CueFile::Kind::Sound;
        else
            refuse("the kind of file " + inQuotes(kind) + " is not known.");
        file.path = sheet_.findFile(line_, file.name);
        file.length = lengthOf(file);
        if (!told_.files.empty()) needIndexOfLastFile();
        told_.files.push_back(std::move(file));
    }
    uint64_t lengthOf(const CueFile& file) const {
        if (file.kind != CueFile::Kind::Sound) return sheet_.sizeOf(line_, file.path);
        const auto reader = AudioReader::open(file.path);
        if (!reader) sheet_.refuse(line_, reader.error().message, reader.error().code);
        return (*reader)->samples();
    }
    void needIndexOfLastFile() const {
        if (told_.indexes.empty() || told_.indexes.back().file + 1 != told_.files.size())
            sheet_.refuse(told_.files.back().line,
                          "no index lies in the file " + inQuotes(told_.files.back().name) + '.');
    }

    void takeTrack(std::string_view rest) {
        std::istringstream words{inCapitals(rest)};
        size_t number = 0;
        std::string name;
        if (!(words >> number >> name)) refuse("TRACK has a number and then a mode.");
        if (number < 1 || number > maximumTracks) refuse("a track's number is 1 to 99.");
        // A sheet may be of a part of a disc, and begin anywhere.
        if (lastNumber_ != 0 && number != lastNumber_ + 1)
            refuse("track " + std::to_string(number) + " follows track " + std::to_string(lastNumber_) + '.');
        lastNumber_ = number;
        needIndexOfLastTrack();
        const auto mode = std::find_if(std::begin(modes), std::end(modes),
                                       [&](const CueMode& each) { return each.name == name; });
        if (mode == std::end(modes)) refuse("the mode " + inQuotes(name) + " is not known.");
        CueTrack track;
        track.line = line_;
        track.mode = mode;
        track.session = session_;
        track.format = mode->session == SessionFormat::Plain ? format_ : mode->session;
        if (mode->unitBytes > sectorBytes) track.subchannel = SubchannelForm::Raw;
        told_.tracks.push_back(track);
    }
    void needIndexOfLastTrack() const {
        if (told_.tracks.empty()) return;
        const size_t last = told_.tracks.size() - 1;
        const bool has = std::any_of(told_.indexes.begin(), told_.indexes.end(), [&](const CueIndex& each) {
            return each.track == last && each.number == 1;
        });
        if (!has) sheet_.refuse(told_.tracks.back().line, "the track has no INDEX 01.");
    }

    void takeIndex(std::string_view rest) {
        CueTrack& owner = track("INDEX");
        if (told_.files.empty()) refuse("INDEX stands before the first FILE.");
        std::istringstream words{std::string(rest)};
        CueIndex index{};
        std::string time;
        if (!(words >> index.number >> time) || index.number > 99)
            refuse("INDEX has a number of 0 to 99 and then a time.");
        if (!blocksOfTime(time, index.block)) refuse(inQuotes(time) + " is no time of the form mm:ss:ff.");
        index.file = told_.files.size() - 1;
        index.track = told_.tracks.size() - 1;
        index.line = line_;
        const bool isFirst = told_.indexes.empty() || told_.indexes.back().track != index.track;
        const size_t before = isFirst ? 0 : told_.indexes.back().number;
        if (isFirst ? index.number > 1 : index.number != before + 1)
            refuse("index " + std::to_string(index.number) +
                   (isFirst ? " can't be a track's first." : " is out of order."));
        if (told_.files.back().kind == CueFile::Kind::Sound &&
            (!owner.isSound() || owner.mode->unitBytes != sectorBytes))
            refuse("a track of mode " + std::string(owner.mode->name) + " can't come from a sound file.");
        told_.indexes.push_back(index);
    }

    void takeTime(std::string_view rest, const std::string& word, uint64_t& blocks) const {
        if (!blocksOfTime(rest, blocks)) refuse(word + " has a time of the form mm:ss:ff.");
    }

    void takeFlags(std::string_view rest) {
        CueTrack& owner = track("FLAGS");
        std::istringstream words{inCapitals(rest)};
        for (std::string flag; words >> flag;) {
            if (flag == "DCP")
                owner.copyPermitted = true;
            else if (flag == "4CH")
                owner.fourChannel = true;
            else if (flag == "PRE")
                owner.preEmphasis = true;
            else if (flag == "SCMS")
                owner.isCopy = true;
            else if (flag != "DATA")
                refuse("the flag " + inQuotes(flag) + " is not known.");
        }
    }

    void takeISRC(std::string_view text) {
        const std::string code = isrcIn(text);
        if (const auto wrong = wrongInRecordingCode(code); wrong && !code.empty())
            refuse(inQuotes(text) + " is no recording code: " + *wrong + ", as in USRC17607839.");
        track("ISRC").isrc = code;
    }
    void takeCatalog(std::string_view text) {
        const auto number = catalogNumberOf(text);
        if (!number) refuse(inQuotes(text) + " is no catalog number: it has 13 digits.");
        told_.catalogNumber = *number;
    }

    void takePacks(std::string_view name) {
        const std::string path = sheet_.findFile(line_, std::string(name));
        std::ifstream file(path, std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        const std::string text = bytes.str();
        std::vector<uint8_t> packs(text.begin(), text.end());
        // Drives put four bytes before the packs, and programs a zero behind them.
        if (packs.size() % cdTextPackBytes == 1 || packs.size() % cdTextPackBytes == 5) packs.pop_back();
        const auto blocks = cdTextFromPacks(packs);
        if (!blocks) refuse("the file " + inQuotes(name) + " can't be used. " + blocks.error().message);
        if (packs.size() % cdTextPackBytes == 4) packs.erase(packs.begin(), packs.begin() + 4);
        told_.packs = std::move(packs);
    }

    const Sheet& sheet_;
    CueSheetText told_;
    size_t line_ = 0, lastNumber_ = 0, session_ = 1;
    SessionFormat format_ = SessionFormat::Plain; // as a remark says that this engine writes
};

} // namespace

CueSheetText parseCueSheet(const Sheet& sheet) { return CueParser(sheet).parse(); }

} // namespace engine
