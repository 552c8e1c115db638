// A person's consent to lose what is on a medium, which holds for that medium only.
#pragma once

#include "Commands.hpp"
#include "Lookup.hpp"

#include <string>

namespace drives {

/// Asks before the data on a drive's medium is lost, and knows afterwards which medium that was: until the drive is this
/// process's own another one may put in, or burn, what nobody was asked about.
class Asked {
  public:
    /// Asks when the medium holds data, or can't be read and may hold anything; with `mayLose` false it only remembers it.
    /// Throws as requireConsent().
    Asked(const Common& common, const Found& found, const std::string& deed, bool mayLose = true);

    /// Once the drive is held. Throws BurnNotAllowed when the medium is another by now, unless nobody wanted to be asked.
    void requireUnchanged() const;

  private:
    engine::DriveRef drive_;
    std::string name_;
    std::string medium_; ///< all that is known of it; empty: it doesn't matter
};

} // namespace drives
