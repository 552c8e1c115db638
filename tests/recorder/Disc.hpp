// The recorder's whole state: drive, tray, medium and what is written on it. It lives in a folder of files, so
// that one process after the other meets the same disc.
#pragma once

#include "Bytes.hpp"

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace recorder {

enum class Kind : uint8_t {
    CDROM,
    CDR,
    CDRW,
    DVDROM,
    DVDR,
    DVDRDualLayer,
    DVDRW,
    DVDRAM,
    DVDPlusR,
    DVDPlusRDoubleLayer,
    DVDPlusRW,
    BDR,
    BDRE
};

/// How blocks may be written.
enum class Writing : uint8_t { None, Sequential, Overwrite };

struct KindFacts {
    Kind kind;
    const char* name;
    uint16_t profile; ///< MMC-5, 5.3.1; DVD-RW has a second one when formatted
    Writing writing;
    bool erasable;
    int64_t capacity;           ///< blocks
    uint32_t alignment;         ///< blocks that are written together
    uint32_t singleSpeed;       ///< in 1000 bytes a second, as drives say it
    std::array<int, 4> factors; ///< speeds, ascending; 0 is none
};

const KindFacts& factsOf(Kind kind) noexcept;

inline constexpr uint16_t dvdRewritableOverwrite = 0x0013;

enum class SectorMode : uint8_t { Audio, Mode1, Mode2, Form1, Form2 };

struct Track {
    int number = 1, session = 1;
    int64_t start = 0;
    int64_t written = 0; ///< blocks from `start` on
    int64_t size = 0;    ///< of a closed or reserved track; run-out blocks count
    SectorMode mode = SectorMode::Mode1;
    uint8_t control = 4; ///< of the Q channel: 4 data, 1 pre-emphasis, 2 copying allowed, 8 four channels
    bool closed = false;
    bool reserved = false;
    int64_t pregap = 0;
    std::string isrc;

    int64_t next() const noexcept { return start + written; }
    int64_t end() const noexcept { return start + (closed || reserved ? size : written); }
};

/// What goes wrong on request.
struct Faults {
    std::vector<int64_t> readErrors;  ///< blocks that can't be read
    std::vector<int64_t> notWritten;  ///< blocks that a drive says were never written, when they are read
    std::vector<int64_t> writeErrors; ///< blocks that can't be written
    bool powerCalibration = false;
    int64_t goneAfterWrites = -1;   ///< the drive leaves the bus after that many WRITE commands
    int64_t busyEveryWrites = 0;    ///< every so many WRITEs are answered with "long write in progress" once
    int64_t flipOnWrite = -1;       ///< this block is written with one bit wrong, silently
    int64_t slowWrites = 0;         ///< milliseconds that each WRITE takes
    bool stuckTray = false;         ///< it neither opens nor closes
    int64_t busyFor = 3;            ///< questions until the drive has blanked, formatted or closed
    bool goneWhileBusy = false;     ///< the drive leaves the bus while it blanks, formats or closes
    std::vector<int> writeSense;    ///< key, code, qualifier that each WRITE ends with
    bool claimsIncremental = false; ///< feature 21h is told of media that only take a session in one go
};

/// What is on the medium.
struct Written {
    bool formatted = false;  ///< of kinds that need it
    bool finalised = false;  ///< nothing can follow any more
    bool onlyAtOnce = false; ///< a DVD-RW that was blanked quickly: takes one session, written in one go
    int closedSessions = 0;
    std::vector<Track> tracks;
    std::string catalogue; ///< MCN, 13 digits
    Data text;             ///< CD-Text packs of the lead-in
};

struct State : Written {
    std::string vendor = "TESTLAB", product = "MMC RECORDER", revision = "1.00", serial = "0001";
    bool trayOpen = false, locked = false, gone = false, attention = false;
    bool canWrite = true;   ///< else it is a drive for reading
    bool forbidden = false; ///< nobody may open it
    int attachment = 0;     ///< another number is another drive at the same place
    bool canTestWrite = true, canWriteCDRW = true;
    int loadingMechanism = 1; ///< as in mode page 2A: 0 caddy or slot, 1 tray, 2 pop-up
    bool canEject = true;
    std::optional<Kind> medium;
    std::string mountedAt; ///< where the disc is mounted, which keeps everybody else out
    int64_t capacity = 0;
    Data writeParameters; ///< mode page 05
    Data cueSheet;
    int64_t cuePosition = 0;              ///< next block that the cue sheet waits for
    uint32_t writeSpeed = 0;              ///< 1000 bytes a second; 0: the fastest
    int64_t busyPolls = 0, busyTotal = 0; ///< questions until it is no longer busy
    int64_t writes = 0;                   ///< WRITE commands so far
    Faults faults;

    const KindFacts& facts() const noexcept { return factsOf(*medium); }
    bool isCD() const noexcept { return medium && *medium <= Kind::CDRW; }
    bool isDVDMinus() const noexcept { return medium && *medium >= Kind::DVDR && *medium <= Kind::DVDRW; }
    bool isDVDPlusR() const noexcept {
        return medium && (*medium == Kind::DVDPlusR || *medium == Kind::DVDPlusRDoubleLayer);
    }
    /// DVD-RW takes blocks in any order once it is formatted.
    Writing writing() const noexcept;
    uint16_t profile() const noexcept;
    bool isBlank() const noexcept;
    bool isComplete() const noexcept;
    bool sessionIsOpen() const noexcept { return !tracks.empty() && tracks.back().session > closedSessions; }
    /// Session that the next block goes to.
    int currentSession() const noexcept { return closedSessions + 1; }
    /// A track that waits for data.
    const Track* openTrack() const noexcept;
    Track* openTrack() noexcept { return const_cast<Track*>(std::as_const(*this).openTrack()); }
    const Track* trackAt(int64_t block) const noexcept;
    /// Where the next track, not yet begun, would start.
    int64_t nextTrackStart() const noexcept;
    int64_t freeBlocks(int64_t from) const noexcept;
    void makeBlank();
    /// The next blocks belong to a session of a DVD-R or -RW that is written in one go (write type 2).
    bool writesDVDAtOnce() const noexcept { return isDVDMinus() && (writeParameters[2] & 0x0F) == 2; }
};

std::optional<Kind> kindNamed(const std::string& name);

/// Reads a folder's recorder.json. What isn't said there is as in a new drive.
State loadState(const std::string& folder);
void saveState(const std::string& folder, const State& state);

} // namespace recorder
