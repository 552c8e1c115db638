// One burn: a layout onto the medium of a drive, on a thread of its own.
#pragma once

#include "Drive.hpp"
#include "Layout.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace engine {

/// Ways of writing. The engine takes the first of a list that drive, medium and layout allow.
enum class Strategy : uint8_t { CDTrackAtOnce, CDSessionAtOnce, CDRaw, DVDAtOnce, BDAtOnce };

inline constexpr size_t mediaCatalogNumberCharacters = 13;

struct BurnOptions {
    bool verify = true;      ///< read back what was written and compare, as each track says
    bool overwrite = false;  ///< the medium need not be blank: erase it if need be and start at block 0
    bool appendable = false; ///< leave the disc open for another session
    bool testing = false;    ///< all but the writing; a drive that can't test does a real burn
    double requestedSpeed = maximumSpeed; ///< KB/s; the burn goes no faster. 0 or less counts as the maximum
    std::vector<Strategy> strategies;     ///< a hint, in order of preference; empty: the engine chooses
    bool strategyIsRequired = false;      ///< StrategyNotAvailable when none of the list can be taken
    std::string mediaCatalogNumber;       ///< empty or 13 digits
    std::vector<uint8_t> cdText; ///< packs of 18 bytes, see CDText.hpp; CantWriteCDText where not possible
    /// More than 1: blocks of the first layer; below 1: that part of what is burned. Only for media of two layers.
    std::optional<double> doubleLayerL0DataZone;
    bool underrunProtection = true; ///< where the drive can
};

enum class BurnState : uint8_t {
    None, ///< not started
    Preparing,
    SessionOpen,
    TrackOpen,
    TrackWrite,
    TrackClose,
    SessionClose,
    Finishing,
    Verifying,
    Done,
    Failed,
};

/// "TrackWrite" and so on.
std::string_view nameOf(BurnState state) noexcept;

/// A job at one moment.
struct BurnStatus {
    BurnState state = BurnState::None;
    double percent =
        -1; ///< 0 to 1 of the present state (TrackWrite, Verifying; 1 when Done), -1: not measurable
    uint32_t currentSession = 0, totalSessions = 0; ///< from 1; 0 outside a session
    uint32_t currentTrack = 0, totalTracks = 0;     ///< of the current session; 0 outside a track
    uint64_t bytesDone = 0, bytesTotal = 0;         ///< of the present state
    double speed = 0;                               ///< KB/s now; 0 when nothing moves
    double xFactor = 0;                             ///< speed / 1x of the medium's class
    std::optional<Error> error;                     ///< with Failed, always

    bool isFinal() const noexcept { return state == BurnState::Done || state == BurnState::Failed; }
};

/// A burn can be started once. Every member may be called from any thread; none throws.
class BurnJob {
  public:
    /// Called on the job's thread at every change of state and, while data moves, about ten times a second;
    /// never under a lock of the job, so status(), abort() may be called inside; not wait(), and nothing may
    /// throw.
    using Observer = std::function<void(const BurnStatus&)>;

    /// A null drive is allowed; the burn then fails with DeviceInvalid.
    explicit BurnJob(DriveRef drive);
    BurnJob(const BurnJob&) = delete;
    BurnJob& operator=(const BurnJob&) = delete;
    /// Aborts a running burn and returns when the medium is consistent. From inside the observer it returns
    /// at once and the burn ends by itself. What still runs when the process exits is treated the same way.
    ~BurnJob();

    void setObserver(Observer observer); ///< before start()

    /// Starts and returns at once; all that goes wrong is in status(). A second start is BurnNotAllowed.
    Result<void> start(Layout layout, BurnOptions options = {});

    BurnStatus status() const;

    /// Asks the burn to end: it becomes Failed with UserCanceled within 50 ms, unless it was about to be
    /// final. No effect before start and after the end.
    void abort();

    /// Waits for Done or Failed and answers the final status; at once when not started.
    BurnStatus wait();
    /// Waits at most that long; true when final (or not started).
    bool waitFor(std::chrono::milliseconds time);

    const DriveRef& drive() const noexcept;

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

} // namespace engine
