// Drives and media in words, and as JSON for programs.
#pragma once

#include "Lookup.hpp"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace drives {

using Json = nlohmann::ordered_json;

/// The medium that is in a drive, also on an open tray; `problem` is set when it can't be read.
struct PresentMedium {
    std::optional<engine::MediumInfo> info;
    std::optional<engine::Error> problem;
};
PresentMedium mediumIn(const engine::Drive& drive);

/// "blank", "appendable", "complete", "incomplete".
std::string nameOf(engine::MediumState state);
/// "data", "audio" and so on, as in medium.json.
std::string nameOf(const engine::TrackInfo& track);
/// For what holds data that would be lost: `The DVD+RW in "burner" holds 12.3 MB.`
std::string whatItHolds(const engine::MediumInfo& medium, const std::string& drive);

Json jsonOf(const engine::Error& error);
Json jsonOf(const engine::MediumInfo& medium);
Json jsonOf(const Found& found);

/// One line of JSON on standard output.
void printJson(const Json& json);
void print(const std::string& text);

} // namespace drives
