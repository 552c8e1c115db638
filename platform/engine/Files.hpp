// Descriptors that close themselves, and files that are replaced whole or not at all.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace engine {

class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() { reset(); }

    int get() const noexcept { return number_; }
    explicit operator bool() const noexcept { return number_ >= 0; }
    void reset() noexcept;

  private:
    int number_ = -1;
};

/// A small file's bytes; empty when it isn't there. Throws DeviceAccess for anything else that fails, a file
/// over 16 MiB included.
std::optional<std::string> readSmallFile(int folder, const std::string& name);

enum class Lasting {
    Durable, ///< synced, file and folder
    Passing, ///< nothing is synced: a power cut may leave the old bytes, or none
};

/// Writes `bytes` to name + ".new", syncs it, renames it to `name` and syncs the folder: whatever happens,
/// `name` holds the old bytes or the new ones. Throws MediaWriteFailure.
void replaceSmallFile(int folder, const std::string& name, std::string_view bytes,
                      Lasting lasting = Lasting::Durable);

/// Makes a folder and all above it that is missing; throws DeviceAccess.
void makeFolders(const std::string& path);

/// fsync of a folder, so that names in it last. Throws MediaWriteFailure.
void syncFolder(int folder);

} // namespace engine
