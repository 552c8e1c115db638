// The form of an ISRC.
#include "RecordingCode.hpp"

#include "Layout.hpp"

namespace engine {

std::optional<std::string> wrongInRecordingCode(std::string_view code) {
    constexpr size_t ownerAt = 2, yearAt = 5;
    if (code.size() != isrcCharacters)
        return "an ISRC has " + std::to_string(isrcCharacters) + " characters, not " +
               std::to_string(code.size());
    for (size_t at = 0; at < code.size(); ++at) {
        const bool isDigit = code[at] >= '0' && code[at] <= '9';
        const bool isLetter = code[at] >= 'A' && code[at] <= 'Z';
        const char* wanted = nullptr;
        if (at < ownerAt && !isLetter)
            wanted = " is a capital letter";
        else if (at >= ownerAt && at < yearAt && !isLetter && !isDigit)
            wanted = " is a capital letter or a digit";
        else if (at >= yearAt && !isDigit)
            wanted = " is a digit";
        if (wanted != nullptr) return "character " + std::to_string(at + 1) + " of an ISRC" + wanted;
    }
    return std::nullopt;
}

} // namespace engine
