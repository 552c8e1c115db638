// Numbers to text and back, in no locale: a point is a point everywhere.
#include "Numbers.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

namespace host::basic {

namespace {

template <typename Real>
std::string shortest(Real value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
    if (value == 0) return "0";
    char buffer[400];
    const Real size = std::fabs(value);
    // Plain digits as far as a person reads them easily, powers of ten beyond.
    const bool plain = size >= static_cast<Real>(1e-5) && size < static_cast<Real>(1e16);
    const auto form = plain ? std::chars_format::fixed : std::chars_format::scientific;
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, form);
    return {buffer, result.ptr};
}

std::string_view skipBlanks(std::string_view text) {
    while (!text.empty() && static_cast<unsigned char>(text.front()) <= ' ')
        text.remove_prefix(1);
    return text;
}

std::optional<uint64_t> radixNumber(std::string_view text) {
    if (text.size() < 3 || text[0] != '&') return {};
    const char letter = static_cast<char>(text[1] | 0x20);
    const int base = letter == 'h' ? 16 : letter == 'o' ? 8 : letter == 'b' ? 2 : 0;
    if (base == 0) return {};
    uint64_t value = 0;
    const auto result = std::from_chars(text.data() + 2, text.data() + text.size(), value, base);
    if (result.ec != std::errc()) return {};
    return value;
}

// One pattern cut into what stands before the digits, the digits' description, and what stands after.
struct Pattern {
    std::string before, after;
    int minimumWhole = 0, minimumPlaces = 0, maximumPlaces = 0, exponentDigits = 0;
    bool grouped = false, percent = false, exponent = false, plusSign = false, minusSign = false,
         digits = false;
};

Pattern readPattern(std::string_view text) {
    Pattern pattern;
    bool inPlaces = false;
    bool done = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        std::string& around = pattern.digits ? pattern.after : pattern.before;
        if (c == '\\' && i + 1 < text.size()) {
            around += text[++i];
        } else if (!done && (c == '0' || c == '#')) {
            pattern.digits = true;
            if (inPlaces) {
                ++pattern.maximumPlaces;
                if (c == '0') pattern.minimumPlaces = pattern.maximumPlaces;
            } else if (c == '0' || pattern.minimumWhole > 0) {
                ++pattern.minimumWhole;
            }
        } else if (!done && c == '.' && !inPlaces) {
            pattern.digits = true;
            inPlaces = true;
        } else if (!done && c == ',' && pattern.digits) {
            pattern.grouped = true;
        } else if (!done && (c == 'E' || c == 'e') && pattern.digits) {
            pattern.exponent = true;
            while (i + 1 < text.size() && (text[i + 1] == '+' || text[i + 1] == '-'))
                ++i;
            while (i + 1 < text.size() && (text[i + 1] == '0' || text[i + 1] == '#')) {
                ++pattern.exponentDigits;
                ++i;
            }
            done = true;
        } else if (c == '%') {
            pattern.percent = true;
            around += '%';
            done = pattern.digits;
        } else if (c == '+' && !pattern.digits) {
            pattern.plusSign = true;
        } else if (c == '-' && !pattern.digits) {
            pattern.minusSign = true;
        } else {
            around += c;
            done = pattern.digits;
        }
    }
    return pattern;
}

// Ties go away from zero, decided on the shortest decimal text: 2.675 becomes 2.68, as a person expects.
std::string fixedDigits(double value, int places) {
    char buffer[512];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    std::string digits(buffer, result.ptr);
    const size_t point = digits.find('.');
    const size_t have = point == std::string::npos ? 0 : digits.size() - point - 1;
    const auto wanted = static_cast<size_t>(places);
    if (have <= wanted) {
        if (wanted > 0) digits += (point == std::string::npos ? "." : "") + std::string(wanted - have, '0');
        return digits;
    }
    const bool up = digits[point + 1 + wanted] >= '5';
    digits.resize(wanted == 0 ? point : point + 1 + wanted);
    if (!up) return digits;
    for (size_t i = digits.size(); i-- > 0;) {
        if (digits[i] == '.') continue;
        if (digits[i] != '9') {
            ++digits[i];
            return digits;
        }
        digits[i] = '0';
    }
    return "1" + digits;
}

std::string digitsBy(double size, const Pattern& pattern) {
    int exponent = 0;
    if (pattern.exponent && size > 0) {
        exponent = static_cast<int>(std::floor(std::log10(size)));
        size /= std::pow(10.0, exponent);
        if (size >= 10) {
            size /= 10;
            ++exponent;
        }
    }
    std::string digits = fixedDigits(size, pattern.maximumPlaces);
    std::string whole = digits.substr(0, digits.find('.'));
    std::string places = digits.find('.') == std::string::npos ? "" : digits.substr(digits.find('.') + 1);
    while (places.size() > static_cast<size_t>(pattern.minimumPlaces) && places.back() == '0')
        places.pop_back();
    if (whole == "0" && pattern.minimumWhole == 0) whole.clear();
    while (whole.size() < static_cast<size_t>(pattern.minimumWhole))
        whole.insert(whole.begin(), '0');
    if (pattern.grouped) {
        for (auto at = static_cast<std::ptrdiff_t>(whole.size()) - 3; at > 0; at -= 3)
            whole.insert(static_cast<size_t>(at), ",");
    }
    if (whole.empty() && places.empty() && pattern.minimumWhole == 0 && pattern.maximumPlaces == 0 &&
        !pattern.exponent)
        whole.clear();
    std::string made = places.empty() ? whole : whole + "." + places;
    if (pattern.exponent) {
        std::string power = std::to_string(std::abs(exponent));
        while (power.size() < static_cast<size_t>(pattern.exponentDigits))
            power.insert(power.begin(), '0');
        made += std::string("E") + (exponent < 0 ? "-" : "+") + power;
    }
    return made;
}

} // namespace

std::string numberText(double value) { return shortest(value); }
std::string numberText(float value) { return shortest(value); }

double leadingNumber(std::string_view text) {
    text = skipBlanks(text);
    if (const auto radix = radixNumber(text)) return static_cast<double>(static_cast<int64_t>(*radix));
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const size_t first = text.starts_with('-') ? 1 : 0;
    if (first >= text.size() || !(text[first] == '.' || (text[first] >= '0' && text[first] <= '9'))) return 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::invalid_argument) return 0;
    if (result.ec == std::errc::result_out_of_range) return text.starts_with('-') ? -HUGE_VAL : HUGE_VAL;
    return value;
}

std::optional<int64_t> leadingInteger(std::string_view text) {
    text = skipBlanks(text);
    if (const auto radix = radixNumber(text)) return static_cast<int64_t>(*radix);
    if (text.starts_with('+')) text.remove_prefix(1);
    int64_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc()) return {};
    return value;
}

std::string formatNumber(double value, std::string_view pattern) {
    if (!std::isfinite(value)) return numberText(value);
    std::vector<std::string_view> parts;
    for (size_t start = 0;;) {
        const size_t end = pattern.find(';', start);
        parts.push_back(pattern.substr(start, end == std::string_view::npos ? end : end - start));
        if (end == std::string_view::npos) break;
        start = end + 1;
    }
    const bool ownNegative = value < 0 && parts.size() > 1;
    const bool ownZero = value == 0 && parts.size() > 2;
    const Pattern chosen = readPattern(ownZero ? parts[2] : ownNegative ? parts[1] : parts[0]);
    if (!chosen.digits) return chosen.before;
    const double size = std::fabs(value) * (chosen.percent ? 100 : 1);
    const std::string digits = digitsBy(size, chosen);
    const bool isZero =
        std::none_of(digits.begin(), digits.end(), [](char c) { return c >= '1' && c <= '9'; });
    std::string sign;
    if (value < 0 && !isZero && !ownNegative)
        sign = "-";
    else if (chosen.minusSign && value < 0)
        sign = "-";
    else if (chosen.plusSign && value >= 0)
        sign = "+";
    return sign + chosen.before + digits + chosen.after;
}

std::string inBase(uint64_t value, unsigned base) {
    char buffer[72];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, static_cast<int>(base));
    std::string made(buffer, result.ptr);
    std::transform(made.begin(), made.end(), made.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return made;
}

} // namespace host::basic
