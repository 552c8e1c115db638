// What can go wrong: the error codes of disc recording, and an error as a value with its sentence.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace engine {

/// Codes as programs see them (read as a signed 32-bit number they are negative). Names follow the
/// platform's.
enum class ErrorCode : uint32_t {
    Internal = 0x80020000,
    DeviceAccess = 0x80020020,
    DeviceBusy = 0x80020021,
    DeviceCommunication = 0x80020022,
    DeviceInvalid = 0x80020023,
    DeviceNotReady = 0x80020024,
    DeviceNotSupported = 0x80020025,
    MediaBusy = 0x80020040,
    MediaNotPresent = 0x80020041,
    MediaNotWritable = 0x80020042,
    MediaNotSupported = 0x80020043,
    MediaNotBlank = 0x80020044,
    MediaNotErasable = 0x80020045,
    MediaInvalid = 0x80020046,
    BurnUnderrun = 0x80020060,
    BurnNotAllowed = 0x80020061,
    DataProduction = 0x80020062,
    VerificationFailed = 0x80020063,
    TooManyTracksForDVD = 0x80020064,
    BadLayout = 0x80020065,
    UserCanceled = 0x80020066,
    FunctionNotSupported = 0x80020067,
    SpeedTestAlreadyRunning = 0x80020068,
    InvalidIndexPoints = 0x80020069,
    DoubleLayerL0DataZoneParameter = 0x8002006A,
    DoubleLayerL0AlreadySpecified = 0x8002006B,
    AudioFileNotSupported = 0x8002006C,
    PowerCalibration = 0x8002006D,
    MediaWriteFailure = 0x8002006E,
    TrackReused = 0x8002006F,
    FileModifiedDuringBurn = 0x80020100,
    FileLocationConflict = 0x80020101,
    TooManyNameConflicts = 0x80020102,
    FilesystemsNotSupported = 0x80020103,
    StrategyNotAvailable = 0x80020200,
    CantWriteCDText = 0x80020201,
    CantWriteIndexPoints = 0x80020202,
    CantWriteISRC = 0x80020203,
    CantWriteSCMS = 0x80020204,
    PreGapLengthNotAvailable = 0x80020205,
};

/// The general sentence for a code ("The disc is not blank."); never empty, also for a code that is none of
/// the above.
std::string_view textOf(ErrorCode code) noexcept;

/// One thing that went wrong. `message` is a sentence for people: who, what, what to do. `info` is the detail
/// for those who look closer: a path, the system's own text, a block address; it may be empty.
struct Error {
    ErrorCode code = ErrorCode::Internal;
    std::string message;
    std::string info;
    /// What a drive answered when it refused a command, 18 bytes; empty when none did. physical/Sense.hpp has the
    /// texts.
    std::vector<uint8_t> sense = {};

    bool operator==(const Error&) const = default;
};

/// An error with the code's general sentence.
Error makeError(ErrorCode code, std::string info = {});

/// A value, or the reason why there is none. Nothing in the engine's public interface throws.
template <typename T>
class [[nodiscard]] Result {
  public:
    Result(T value) : held_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : held_(std::in_place_index<1>, std::move(error)) {}

    bool ok() const noexcept { return held_.index() == 0; }
    explicit operator bool() const noexcept { return ok(); }
    T& value() { return std::get<0>(held_); }
    const T& value() const { return std::get<0>(held_); }
    T& operator*() { return value(); }
    const T& operator*() const { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    /// Only when !ok().
    const Error& error() const { return std::get<1>(held_); }

  private:
    std::variant<T, Error> held_;
};

/// Done, or the reason why not.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Error error) : error_(std::move(error)), ok_(false) {}

    bool ok() const noexcept { return ok_; }
    explicit operator bool() const noexcept { return ok_; }
    /// Only when !ok().
    const Error& error() const { return error_; }

  private:
    Error error_;
    bool ok_ = true;
};

} // namespace engine
