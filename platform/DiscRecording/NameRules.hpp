// NameRules: what becomes of a name in each file system of a disc, alone and among its siblings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace discrecording {

/// The sets of rules for names. ISO 9660 has two; Rock Ridge's are no file system's of their own, but its names
/// must differ, too.
enum class NameRule : uint8_t { ISOLevelOne, ISOLevelTwo, Joliet, HFSPlus, UDF, RockRidge };
inline constexpr size_t nameRules = 5; ///< of file systems

/// The name with what the file system can't hold left out and what is too long cut off; never empty. `name` is
/// decomposed for the ISO levels and HFS+, composed for Joliet and UDF.
///
///   level 1   A-Z 0-9 _, 8 and 3 of them; folders have no extension
///   level 2   capitals, digits, space and punctuation but for $ , / ; and the like: 30 with the extension,
///             which is kept where the name is cut (the version behind it takes two more); also what level 3 has
///
/// The rules are the engine's, too, which names what lies in real folders, and must leave these names as they are: tests
/// compare them. Half a character is left out, or becomes "_", as a byte that is no text does.
///
///   Joliet    64 UTF-16 units, one "."
///   HFS+      255 UTF-16 units; "/" becomes ":", as the two are each other's on that system
///   UDF       what 254 bytes hold; "/" becomes "_"
///   Rock Ridge   whatever it is, see below
std::u16string legalName(NameRule rule, std::u16string_view name, bool isFolder);

/// Any name, cut to 255 bytes of UTF-8 with its extension kept. What no item can be called is left to be refused.
std::u16string rockRidgeName(std::u16string_view name, bool isFolder);

struct Sibling {
    std::u16string name; ///< legal
    bool isFolder;
};

/// The names with a suffix such as _001 where several siblings have the same: the first in order keeps it. The
/// suffix stands in front of the extension and inside the length limit, and no name that is there already is
/// taken. Grows with the number of siblings as a sort does.
std::vector<std::u16string> mangledNames(NameRule rule, const std::vector<Sibling>& siblings);

/// Siblings to which others come one by one: each gets the name that mangledNames() has for it behind those that are there,
/// in a step that doesn't grow with them.
class GrowingNames {
  public:
    GrowingNames(NameRule rule, const std::vector<Sibling>& siblings,
                 const std::vector<std::u16string>& mangled);
    GrowingNames(GrowingNames&&) noexcept;
    GrowingNames& operator=(GrowingNames&&) noexcept;
    ~GrowingNames();

    /// Nothing where another one must give its name away, which it has for its suffix: all are then to be named anew.
    std::optional<std::u16string> add(const Sibling& sibling);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace discrecording
