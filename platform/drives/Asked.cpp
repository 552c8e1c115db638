// A person's consent to lose what is on a medium.
#include "Asked.hpp"
#include "Console.hpp"
#include "Describe.hpp"

namespace drives {
namespace {

// Two media of which this is the same are the same, as far as anybody can tell who doesn't read all of them.
std::string allOf(const PresentMedium& medium) {
    if (medium.problem) return "problem: " + medium.problem->message;
    if (!medium.info) return "none";
    std::string all = jsonOf(*medium.info).dump(-1, ' ', false, Json::error_handler_t::replace);
    for (const engine::SessionInfo& session : medium.info->sessions)
        for (const engine::TrackInfo& track : session.tracks)
            all += ' ' + (track.sum ? std::to_string(*track.sum) : "-");
    return all;
}

} // namespace

Asked::Asked(const Common& common, const Found& found, const std::string& deed, bool mayLose)
    : drive_(found.drive), name_(found.name) {
    if (common.force) return;
    const PresentMedium medium = mediumIn(*drive_);
    medium_ = allOf(medium);
    if (!mayLose) return;
    if (medium.problem)
        requireConsent(false, "What is on the medium in " + engine::inQuotes(name_) + " can't be told.",
                       deed);
    if (medium.info && !medium.info->blank) requireConsent(false, whatItHolds(*medium.info, name_), deed);
}

void Asked::requireUnchanged() const {
    if (!medium_.empty() && allOf(mediumIn(*drive_)) != medium_)
        engine::fail(engine::ErrorCode::BurnNotAllowed,
                     "The medium in " + engine::inQuotes(name_) +
                         " is not the one any more that was asked about; nothing was changed.");
}

} // namespace drives
