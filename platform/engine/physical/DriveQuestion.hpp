// Questions to a drive that the library does not ask, or keeps the answer of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace engine {

/// Sends a command that reads, to an open device, and answers how many bytes came; empty where the drive refuses.
std::optional<size_t> askDrive(int device, std::span<const uint8_t> command,
                               std::span<uint8_t> answer) noexcept;

/// The drive goes on with what it was told to do without being waited for: it formats, erases, closes or writes (MMC-5,
/// annex F: 2/04/04, 2/04/07, 2/04/08). One that only gets its disc ready does not count.
bool isAtWork(int device) noexcept;

/// How the last session on a medium was left (MMC-5, 6.22.3.1.3).
enum class LastSession : uint8_t { Empty, Incomplete, Damaged, Complete };

/// Of the medium in an open device; empty where it is not to be had.
std::optional<LastSession> lastSessionIn(int device) noexcept;

} // namespace engine
