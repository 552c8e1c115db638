// Names as the file systems of a disc take them: made of any name, and different from their neighbours'.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace engine::plan {

/// What one file system makes of names.
class NameForm {
  public:
    virtual ~NameForm() = default;
    /// The name without what can't stand in it, or with that replaced, and cut to what fits.
    virtual std::string legal(std::string_view name, bool isFolder) const = 0;
    /// The same for two names that can't stand beside each other.
    virtual std::string keyOf(std::string_view legal) const = 0;
    virtual bool fits(std::string_view legal, bool isFolder) const = 0;
};

/// ISO 9660's own names beside or without Rock Ridge's: capitals without their accents, digits and _, 8 and 3 of them in
/// level 1; in the others also spaces and much punctuation, 30 with the extension and its dot, which is the only one.
/// What can't stand there is left out. No version, and no dot where there is no extension.
class IsoForm final : public NameForm {
  public:
    explicit IsoForm(uint8_t level) : level_(level) {}
    std::string legal(std::string_view name, bool isFolder) const override;
    std::string keyOf(std::string_view legal) const override;
    bool fits(std::string_view legal, bool isFolder) const override;

  private:
    uint8_t level_;
};

/// 64 UTF-16 units with the extension, whose dot is the only one, in names of folders, too. What can't stand there is left
/// out: " $ * / ; < > ? \ | and control characters, and bytes that are no text.
class JolietForm final : public NameForm {
  public:
    std::string legal(std::string_view name, bool isFolder) const override;
    std::string keyOf(std::string_view legal) const override;
    bool fits(std::string_view legal, bool isFolder) const override;
};

/// The file system's own code says what is kept of a name.
class UdfForm final : public NameForm {
  public:
    std::string legal(std::string_view name, bool) const override { return std::string(name); }
    std::string keyOf(std::string_view legal) const override;
    bool fits(std::string_view legal, bool isFolder) const override;
};

class HfsPlusForm final : public NameForm {
  public:
    std::string legal(std::string_view name, bool) const override { return std::string(name); }
    std::string keyOf(std::string_view legal) const override;
    bool fits(std::string_view legal, bool isFolder) const override;
};

/// Whether that may be what became of a name there, with a number or without.
bool canBecome(std::string_view name, bool isFolder, std::string_view stored, const NameForm& form);

struct GivenName {
    std::string_view name;
    bool isFolder = false;
    bool isOwn = false; ///< made for this file system: numbered where another one has it, never refused
};

/// The names of one folder, all different: where two became one, the first keeps it, and others get a number such
/// as _001 in front of the extension. Grows as the number of names does. Throws FileLocationConflict where two were
/// the same to begin with, TooManyNameConflicts where no number fits any more.
std::vector<std::string> distinctNames(const std::vector<GivenName>& given, const NameForm& form);

} // namespace engine::plan
