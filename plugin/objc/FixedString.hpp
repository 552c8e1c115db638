// FixedString.hpp: a text as a template argument, so that selectors and declarations are part of a type.
#pragma once

#include <cstddef>
#include <string_view>

namespace objc {

template <std::size_t N>
struct FixedString {
    char text[N]{};

    consteval FixedString(const char (&literal)[N]) {
        for (std::size_t i = 0; i < N; ++i)
            text[i] = literal[i];
    }

    constexpr std::string_view view() const { return {text, N - 1}; }
    constexpr const char* c_str() const { return text; }
};

} // namespace objc
