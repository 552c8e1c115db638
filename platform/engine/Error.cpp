// The one text of every error code, and the small helpers of error sentences.
#include "Failure.hpp"
#include "Utf8.hpp"

#include <array>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace engine {
namespace {

struct Row {
    ErrorCode code;
    std::string_view text;
};

constexpr Row rows[] = {
    {ErrorCode::Internal, "Something went wrong inside the disc engine."},
    {ErrorCode::DeviceAccess, "The drive can't be accessed."},
    {ErrorCode::DeviceBusy, "The drive is busy."},
    {ErrorCode::DeviceCommunication, "The drive doesn't answer as it should."},
    {ErrorCode::DeviceInvalid, "There is no such drive (any more)."},
    {ErrorCode::DeviceNotReady, "The drive is not ready."},
    {ErrorCode::DeviceNotSupported, "The drive is not supported."},
    {ErrorCode::MediaBusy, "The disc is in use."},
    {ErrorCode::MediaNotPresent, "There is no disc in the drive."},
    {ErrorCode::MediaNotWritable, "The disc can't be written."},
    {ErrorCode::MediaNotSupported, "The drive can't write this kind of disc."},
    {ErrorCode::MediaNotBlank, "The disc is not blank."},
    {ErrorCode::MediaNotErasable, "The disc can't be erased."},
    {ErrorCode::MediaInvalid, "The disc is not usable."},
    {ErrorCode::BurnUnderrun, "The data came too slowly for the drive."},
    {ErrorCode::BurnNotAllowed, "The burn is not possible."},
    {ErrorCode::DataProduction, "The data for the disc could not be read."},
    {ErrorCode::VerificationFailed, "The data on the disc is not what was written."},
    {ErrorCode::TooManyTracksForDVD, "A DVD holds one track only."},
    {ErrorCode::BadLayout, "The layout of the disc is not possible."},
    {ErrorCode::UserCanceled, "The burn was canceled."},
    {ErrorCode::FunctionNotSupported, "This is not supported."},
    {ErrorCode::SpeedTestAlreadyRunning, "A speed test is already running."},
    {ErrorCode::InvalidIndexPoints, "The index points are not valid."},
    {ErrorCode::DoubleLayerL0DataZoneParameter, "The size of the first layer is not valid."},
    {ErrorCode::DoubleLayerL0AlreadySpecified, "The size of the first layer is already set on this disc."},
    {ErrorCode::AudioFileNotSupported, "The audio file is not supported."},
    {ErrorCode::PowerCalibration, "The drive could not calibrate its laser for this disc."},
    {ErrorCode::MediaWriteFailure, "The disc could not be written."},
    {ErrorCode::TrackReused, "A track stands twice in the layout."},
    {ErrorCode::FileModifiedDuringBurn, "A file changed while it was burned."},
    {ErrorCode::FileLocationConflict, "A file or folder can't be found or used."},
    {ErrorCode::TooManyNameConflicts, "Too many names are the same."},
    {ErrorCode::FilesystemsNotSupported, "The file systems asked for are not supported."},
    {ErrorCode::StrategyNotAvailable, "The drive doesn't have the way of writing that was asked for."},
    {ErrorCode::CantWriteCDText, "The drive can't write CD-Text."},
    {ErrorCode::CantWriteIndexPoints, "The drive can't write index points."},
    {ErrorCode::CantWriteISRC, "The drive can't write recording codes (ISRC)."},
    {ErrorCode::CantWriteSCMS, "The drive can't write copy management states."},
    {ErrorCode::PreGapLengthNotAvailable, "The drive can't write a pre-gap of that length."},
};

} // namespace

std::string_view textOf(ErrorCode code) noexcept {
    for (const Row& row : rows)
        if (row.code == code) return row.text;
    return "An error without a description happened.";
}

Error makeError(ErrorCode code, std::string info) {
    return {code, std::string(textOf(code)), std::move(info)};
}

void fail(ErrorCode code, std::string message, std::string info) {
    throw Failure({code, std::move(message), std::move(info)});
}

std::string systemText(int errorNumber) { return std::generic_category().message(errorNumber); }

std::string inQuotes(std::string_view text) { return '"' + printable(text) + '"'; }

std::string megabytes(uint64_t bytes) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.1f MB", static_cast<double>(bytes) / 1e6);
    return text.data();
}

} // namespace engine
