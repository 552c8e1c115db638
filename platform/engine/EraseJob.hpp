// One erase: the medium in a drive becomes blank, on a thread of the job's own.
#pragma once

#include "DriveHold.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace engine {

enum class EraseState : uint8_t {
    None, ///< not started
    Preparing,
    Erasing,
    Finishing, ///< the medium is looked at again: is it blank?
    Done,
    Failed,
};

/// "Erasing" and so on.
std::string_view nameOf(EraseState state) noexcept;

/// A job at one moment.
struct EraseStatus {
    EraseState state = EraseState::None;
    EraseType type = EraseType::Quick;
    double percent = -1;        ///< 0 to 1 while erasing, 1 when Done; -1: not measurable
    std::optional<Error> error; ///< with Failed, always

    bool isFinal() const noexcept { return state == EraseState::Done || state == EraseState::Failed; }
};

/// An erase can be started once, and can't be aborted: a drive that erases goes on to its end. Every member
/// may be called from any thread; none throws.
class EraseJob {
  public:
    /// Called on the job's thread at every change of state and, while the medium is overwritten, about ten
    /// times a second; never under a lock of the job's status. Must not throw, nor wait for the job.
    using Observer = std::function<void(const EraseStatus&)>;

    /// A null drive is allowed; the erase then fails with DeviceInvalid.
    explicit EraseJob(DriveRef drive);
    EraseJob(const EraseJob&) = delete;
    EraseJob& operator=(const EraseJob&) = delete;
    /// A running erase goes on by itself; its observer is called no more. When the process exits, what still
    /// runs is cut off where the drive allows that: the medium is then openly incomplete.
    ~EraseJob();

    void setObserver(Observer observer); ///< before start()

    /// Before start(): holds the drive until the erase has ended, and lets go before the status says so.
    void keep(DriveHold hold);

    /// Starts and returns at once; all that goes wrong is in status(). A second start is BurnNotAllowed.
    Result<void> start(EraseType type);

    EraseStatus status() const;

    /// Waits for Done or Failed and answers the final status; at once when not started.
    EraseStatus wait();
    /// Waits at most that long; true when final (or not started).
    bool waitFor(std::chrono::milliseconds time);

    const DriveRef& drive() const noexcept;

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

} // namespace engine
