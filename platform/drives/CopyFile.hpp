// Copying a medium's files: as large as they are, with progress, and whole or not at all.
#pragma once

#include "Console.hpp"

#include <cstdint>
#include <string>

namespace drives {

/// Bytes of a regular file. Throws Failure that names it.
uint64_t fileSize(const std::string& path);

/// Copies `from` to the new file `to` and syncs it; holes stay holes, and file systems that can share blocks
/// do. Throws Failure, or Interrupted; `to` is gone then.
void copyFile(const std::string& from, const std::string& to, Progress& progress);

/// A new folder beside or in what it becomes part of, and gone again with all in it when this object goes.
class Staging {
  public:
    /// Makes `parent`/.staging-…; what earlier ones left behind that died is removed, of those that are known as such. Throws Failure.
    explicit Staging(const std::string& parent);
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;
    ~Staging();

    const std::string& path() const noexcept { return path_; }

  private:
    std::string path_;
};

} // namespace drives
