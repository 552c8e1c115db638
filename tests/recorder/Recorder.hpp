// One recorder: takes SCSI commands, answers data or sense.
#pragma once

#include "Disc.hpp"
#include "Sense.hpp"

#include <memory>

namespace recorder {

/// A command on its way through a recorder.
struct Request {
    View command;      ///< the command block
    View out;          ///< what came with it
    Data in;           ///< what goes back; cut to what was asked for
    size_t wanted = 0; ///< bytes that the initiator has room for

    uint32_t field(size_t at, size_t count) const noexcept { return number(command, at, count); }
    uint8_t byte(size_t at) const noexcept { return at < command.size() ? command[at] : uint8_t{0}; }
};

class Recorder {
  public:
    explicit Recorder(std::string folder);
    ~Recorder();

    /// Empty when the command was carried out.
    std::optional<Sense> execute(Request& request);
    /// Someone opened the device: what a test write pretended is forgotten.
    void opened();
    /// The drive left the bus.
    bool isGone();
    /// It is no drive for reading only.
    bool canWrite();
    /// Nobody may open it.
    bool isForbidden();
    int attachment();
    std::string mountedAt();
    /// CDS_* of <linux/cdrom.h>.
    int driveStatus();

    const std::string& folder() const noexcept { return folder_; }

    // For the commands' functions.
    State state;
    void requireMedium() const;
    /// Bytes of blocks as they are stored, 2352 each on CD, 2048 elsewhere.
    void store(int64_t block, View bytes);
    void fetch(int64_t block, std::span<uint8_t> bytes);
    void dropData();
    size_t sectorBytes() const noexcept { return state.isCD() ? 2352 : 2048; }
    /// A command with the immediate bit goes on for some polls.
    void goOnInBackground(bool immediate);
    /// Test writes change `state` only; this is what is really on the medium.
    std::unique_ptr<Written> rehearsed;
    /// The write parameters ask for a test, of a medium that knows tests: from here on it is one.
    void rehearseIfAsked();

  private:
    class Lock;
    void load();
    void save() const;
    void check(uint8_t opcode);
    int data();

    std::string folder_;
    int data_ = -1;
};

using Command = void (*)(Recorder&, Request&);

/// A command's function, its name, and whether it needs a medium that is ready.
struct CommandRow {
    uint8_t opcode;
    const char* name;
    Command run;
    bool needsMedium;
};

// The commands, a file for each group.
std::span<const CommandRow> driveCommands();       // Drive.cpp
std::span<const CommandRow> featureCommands();     // Features.cpp
std::span<const CommandRow> modeCommands();        // Modes.cpp
std::span<const CommandRow> informationCommands(); // Information.cpp
std::span<const CommandRow> tableCommands();       // Contents.cpp
std::span<const CommandRow> readCommands();        // Reading.cpp
std::span<const CommandRow> writeCommands();       // Writing.cpp
std::span<const CommandRow> sessionCommands();     // Closing.cpp
std::span<const CommandRow> speedCommands();       // Speeds.cpp

/// Mode page 05, as it is before anybody writes it.
Data defaultWriteParameters();
/// Ends a track: pads it as the kind wants and closes it.
void closeTrack(Recorder& recorder, Track& track);
/// Ends a session; `more` leaves the disc open for another.
void closeSession(Recorder& recorder, bool more);

} // namespace recorder
