// What an ISRC looks like, for tracks and for sheets: one rule.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace engine {

/// What is wrong with a recording code of a CD's track, as the end of a sentence: CCOOOYYNNNNN are two capital letters of
/// the country, three capital letters or digits of the owner, two digits of the year and five of the recording (ISO 3901).
/// Without hyphens, which are for people. Empty when nothing is.
std::optional<std::string> wrongInRecordingCode(std::string_view code);

} // namespace engine
