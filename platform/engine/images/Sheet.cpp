// Reading sheets as people and rippers leave them.
#include "images/Sheet.hpp"

#include "Utf8.hpp"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace engine {
namespace {

namespace fs = std::filesystem;

// A sheet of 99 tracks with all texts has some tens of kilobytes.
constexpr uintmax_t largestSheet = 1 << 20;

void appendUtf8(std::string& text, char32_t value) {
    if (value < 0x80) {
        text += static_cast<char>(value);
    } else if (value < 0x800) {
        text += static_cast<char>(0xC0 | value >> 6);
        text += static_cast<char>(0x80 | (value & 0x3F));
    } else {
        if (value < 0x10000) {
            text += static_cast<char>(0xE0 | value >> 12);
        } else {
            text += static_cast<char>(0xF0 | value >> 18);
            text += static_cast<char>(0x80 | (value >> 12 & 0x3F));
        }
        text += static_cast<char>(0x80 | (value >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (value & 0x3F));
    }
}

std::string fromUtf16(std::string_view bytes, bool bigEnd) {
    std::string text;
    const auto unitAt = [&](size_t at) {
        const auto first = static_cast<unsigned char>(bytes[at]),
                   second = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<char32_t>(bigEnd ? first << 8 | second : second << 8 | first);
    };
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        char32_t value = unitAt(at);
        if (value >= 0xD800 && value < 0xDC00 && at + 3 < bytes.size()) {
            const char32_t low = unitAt(at + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                value = 0x10000 + ((value - 0xD800) << 10) + (low - 0xDC00);
                at += 2;
            }
        }
        appendUtf8(text, value >= 0xD800 && value < 0xE000 ? U'\uFFFD' : value);
    }
    return text;
}

bool isFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

Sheet::Sheet(const std::string& path) : path_(path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        fail(ErrorCode::FileLocationConflict,
             "The file " + inQuotes(path) + " can't be opened: " + systemText(errno) + '.');
    if (!S_ISREG(status.st_mode))
        fail(ErrorCode::FileLocationConflict,
             inQuotes(path) + " is no file, so it can't be read as an image.");
    if (static_cast<uintmax_t>(status.st_size) > largestSheet)
        fail(ErrorCode::BadLayout, "The file " + inQuotes(path) + " is too large for a sheet of tracks.");
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    if (!file)
        fail(ErrorCode::FileLocationConflict, "The file " + inQuotes(path) + " can't be read or is empty.",
             systemText(errno));
    text_ = bytes.str();
    if (text_.starts_with("\xEF\xBB\xBF"))
        text_.erase(0, 3);
    else if (text_.starts_with("\xFF\xFE"))
        text_ = fromUtf16(std::string_view(text_).substr(2), false);
    else if (text_.starts_with("\xFE\xFF"))
        text_ = fromUtf16(std::string_view(text_).substr(2), true);
}

void Sheet::refuse(size_t line, const std::string& sentence, ErrorCode code) const {
    fail(code,
         inQuotes(fs::path(path_).filename().string()) + ", line " + std::to_string(line) + ": " + sentence,
         path_);
}

std::string Sheet::findFile(size_t line, const std::string& name) const {
    const fs::path folder = fs::path(path_).parent_path();
    const auto found = [&](const std::string& relative) {
        return relative.empty() ? std::string() : (folder / relative).string(); // absolute ones stay
    };
    std::string slashed = name;
    for (char& each : slashed)
        if (each == '\\') each = '/';
    const std::string last = slashed.substr(slashed.find_last_of('/') + 1);
    std::string path;
    for (const std::string& candidate : {name, slashed, last})
        if (path = found(candidate); !path.empty() && isFile(path)) break;
    if (!isFile(path)) {
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(folder.empty() ? fs::path(".") : folder, ignored))
            if (inCapitals(entry.path().filename().string()) == inCapitals(last))
                path = entry.path().string();
    }
    if (last.empty() || !isFile(path))
        refuse(line,
               "the file " + inQuotes(name) + " is not there; put it beside the sheet, or correct its name.",
               ErrorCode::FileLocationConflict);
    if (sizeOf(line, path) == 0) refuse(line, "the file " + inQuotes(name) + " is empty.");
    return path;
}

uint64_t Sheet::sizeOf(size_t line, const std::string& path) const {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        refuse(line, "the file " + inQuotes(path) + " can't be opened: " + systemText(errno) + '.',
               ErrorCode::FileLocationConflict);
    return static_cast<uint64_t>(status.st_size);
}

std::u16string utf16Of(std::string_view bytes) {
    std::u16string text;
    if (!isUtf8(bytes)) {
        for (const char byte : bytes)
            text += static_cast<char16_t>(static_cast<unsigned char>(byte));
        return text;
    }
    while (!bytes.empty()) {
        const auto character = firstCharacter(bytes);
        if (!character) break;
        if (character->value < 0x10000) {
            text += static_cast<char16_t>(character->value);
        } else {
            text += static_cast<char16_t>(0xD800 + ((character->value - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + (character->value & 0x3FF));
        }
        bytes.remove_prefix(character->bytes);
    }
    return text;
}

bool blocksOfTime(std::string_view time, uint64_t& blocks) {
    std::array<uint64_t, 3> parts{};
    size_t part = 0, digits = 0;
    for (const char each : time) {
        if (each == ':') {
            if (digits == 0 || ++part > 2) return false;
            digits = 0;
        } else if (each >= '0' && each <= '9') {
            if (++digits > (part == 0 ? 4 : 2)) return false;
            parts[part] = parts[part] * 10 + static_cast<uint64_t>(each - '0');
        } else {
            return false;
        }
    }
    if (part != 2 || digits == 0 || parts[1] > 59 || parts[2] > 74) return false;
    blocks = (parts[0] * 60 + parts[1]) * 75 + parts[2];
    return true;
}

std::string timeOf(uint64_t blocks) {
    std::array<char, 40> text{};
    const auto number = [](uint64_t value) { return static_cast<unsigned long long>(value); };
    std::snprintf(text.data(), text.size(), "%02llu:%02llu:%02llu", number(blocks / 4500),
                  number(blocks / 75 % 60), number(blocks % 75));
    return text.data();
}

std::string inCapitals(std::string_view text) {
    std::string capitals(text);
    for (char& each : capitals)
        if (each >= 'a' && each <= 'z') each = static_cast<char>(each - 'a' + 'A');
    return capitals;
}

} // namespace engine
