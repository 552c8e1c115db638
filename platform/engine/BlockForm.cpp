// The names of the forms of blocks.
#include "BlockForm.hpp"

#include <array>
#include <utility>

namespace engine {
namespace {

constexpr std::array<std::pair<BlockForm, std::string_view>, 9> rows{
    {{BlockForm::Data, "data"},
     {BlockForm::Audio, "audio"},
     {BlockForm::Mode2, "mode 2"},
     {BlockForm::Mode2Form1, "mode 2 form 1"},
     {BlockForm::Mode2Form2, "mode 2 form 2"},
     {BlockForm::XA, "XA"},
     {BlockForm::Mixed, "mode 2 mixed"},
     {BlockForm::RawMode1, "raw mode 1"},
     {BlockForm::RawMode2, "raw mode 2"}}};

constexpr std::array<std::pair<SubchannelForm, std::string_view>, 3> subchannelRows{
    {{SubchannelForm::None, "none"}, {SubchannelForm::Pack, "pack"}, {SubchannelForm::Raw, "raw"}}};

} // namespace

std::string_view nameOf(BlockForm form) noexcept { return rows[static_cast<size_t>(form)].second; }

std::optional<BlockForm> blockFormNamed(std::string_view name) noexcept {
    for (const auto& [form, known] : rows)
        if (known == name) return form;
    return std::nullopt;
}

std::string_view nameOf(SubchannelForm form) noexcept {
    return subchannelRows[static_cast<size_t>(form)].second;
}

std::optional<SubchannelForm> subchannelFormNamed(std::string_view name) noexcept {
    for (const auto& [form, known] : subchannelRows)
        if (known == name) return form;
    return std::nullopt;
}

} // namespace engine
