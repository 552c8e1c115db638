// libburn's start, and its messages.
#include "BurnLibrary.hpp"
#include "../Failure.hpp"
#include "LibBurn.hpp"
#include "Sense.hpp"

#include <array>
#include <cstdio>
#include <cstring>
#include <libburn/libburn.h>
#include <mutex>
#include <vector>

namespace engine {
namespace {

// Messages below this are about the library's own business.
char severity[] = "SORRY";
char never[] = "NEVER";
char nothing[] = "";

// "... [3 0C 00] Write error." is how the library tells a drive's sense; one that it has no words for as
// "... Sense Key 8 "Blank/Nonblank", ASC 00 ASCQ 00.".
std::optional<Sense> senseIn(const std::string& text) {
    for (size_t at = text.find('['); at != std::string::npos; at = text.find('[', at + 1)) {
        unsigned key = 0, code = 0, qualifier = 0;
        char end = 0;
        if (std::sscanf(text.c_str() + at, "[%1x %2x %2x%c", &key, &code, &qualifier, &end) == 4 &&
            end == ']')
            return Sense{static_cast<uint8_t>(key), static_cast<uint8_t>(code),
                         static_cast<uint8_t>(qualifier)};
    }
    unsigned key = 0, code = 0, qualifier = 0;
    const size_t at = text.find("Sense Key ");
    if (at != std::string::npos &&
        std::sscanf(text.c_str() + at, "Sense Key %1x \"%*[^\"]\", ASC %2x ASCQ %2x", &key, &code,
                    &qualifier) == 3)
        return Sense{static_cast<uint8_t>(key), static_cast<uint8_t>(code), static_cast<uint8_t>(qualifier)};
    return std::nullopt;
}

std::vector<std::string> takeMessages() {
    std::vector<std::string> texts;
    std::array<char, BURN_MSGS_MESSAGE_LEN> text{};
    std::array<char, 80> level{};
    int code = 0, number = 0;
    while (burn_msgs_obtain(severity, &code, text.data(), &number, level.data()) > 0)
        texts.emplace_back(text.data());
    return texts;
}

} // namespace

void startBurnLibrary() {
    static std::once_flag once;
    static bool started = false;
    std::call_once(once, [] {
        started = burn_initialize() != 0;
        if (!started) return;
        burn_msgs_set_severities(severity, never, nothing);
        // Exclusive, not waiting, and without ending the program when a drive is busy.
        burn_preset_device_open(1, 0, 0);
    });
    if (!started)
        fail(ErrorCode::DeviceAccess, "The drives of this computer can't be used: libburn does not start.");
}

void GiveUp::operator()(burn_disc* disc) const noexcept { burn_disc_free(disc); }
void GiveUp::operator()(burn_session* session) const noexcept { burn_session_free(session); }
void GiveUp::operator()(burn_source* source) const noexcept { burn_source_free(source); }
void GiveUp::operator()(burn_track* track) const noexcept { burn_track_free(track); }
void GiveUp::operator()(burn_write_opts* options) const noexcept { burn_write_opts_free(options); }

void dropLibraryMessages() { takeMessages(); }

Error libraryError(ErrorCode otherwise, const std::string& message) {
    Error error{otherwise, message, {}, {}};
    for (const std::string& text : takeMessages()) {
        if (error.info.empty()) error.info = text;
        const auto sense = senseIn(text);
        if (!sense) continue;
        error.code = codeOf(*sense, otherwise);
        error.sense = bytesOf(*sense);
        error.info = std::string(textOfSenseKey(sense->key)) + ": " + textOfAdditionalSense(*sense) + " (" +
                     text + ")";
        break;
    }
    return error;
}

} // namespace engine
