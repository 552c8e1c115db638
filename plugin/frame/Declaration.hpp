// Declaration.hpp: reads a member's declaration at compile time and compares it with its function's
// signature.
//
// "device(index as UInt32) as DRDeviceQRX" goes with REALobject(uint32_t); an instance member takes the host
// object first. A table row whose function does not fit its declaration does not compile.
#pragma once

#include "plugin/frame/PluginInterface.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace frame {

// How a value crosses between host and plug-in.
enum class Crossing {
    None,
    Boolean,
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Single,
    Double,
    String,
    Object,
    Array,
    Address
};

template <class T>
consteval Crossing crossingOf() {
    if constexpr (std::is_void_v<T>)
        return Crossing::None;
    else if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, REALboolean>)
        return Crossing::Boolean;
    else if constexpr (std::is_same_v<T, int8_t>)
        return Crossing::Int8;
    else if constexpr (std::is_same_v<T, uint8_t>)
        return Crossing::UInt8;
    else if constexpr (std::is_same_v<T, int16_t>)
        return Crossing::Int16;
    else if constexpr (std::is_same_v<T, uint16_t>)
        return Crossing::UInt16;
    else if constexpr (std::is_same_v<T, int32_t>)
        return Crossing::Int32;
    else if constexpr (std::is_same_v<T, uint32_t>)
        return Crossing::UInt32;
    else if constexpr (std::is_same_v<T, int64_t>)
        return Crossing::Int64;
    else if constexpr (std::is_same_v<T, uint64_t>)
        return Crossing::UInt64;
    else if constexpr (std::is_same_v<T, float>)
        return Crossing::Single;
    else if constexpr (std::is_same_v<T, double>)
        return Crossing::Double;
    else if constexpr (std::is_same_v<T, REALstring>)
        return Crossing::String;
    else if constexpr (std::is_same_v<T, REALobject>)
        return Crossing::Object;
    else if constexpr (std::is_same_v<T, REALarray>)
        return Crossing::Array;
    else
        return Crossing::Address;
}

namespace detail {

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr bool sameWord(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i])) return false;
    return true;
}

// Like string_view::find, which the sanitizers' build does not evaluate at compile time.
constexpr std::size_t find(std::string_view text, char wanted) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] == wanted) return i;
    return std::string_view::npos;
}

constexpr std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

// Host names are not case-sensitive; a type that is no basic one is a class.
constexpr Crossing crossingOfTypeName(std::string_view name) {
    struct Row {
        std::string_view name;
        Crossing crossing;
    };
    constexpr std::array<Row, 13> rows{{{"boolean", Crossing::Boolean},
                                        {"integer", Crossing::Int32},
                                        {"int8", Crossing::Int8},
                                        {"uint8", Crossing::UInt8},
                                        {"int16", Crossing::Int16},
                                        {"uint16", Crossing::UInt16},
                                        {"int32", Crossing::Int32},
                                        {"uint32", Crossing::UInt32},
                                        {"int64", Crossing::Int64},
                                        {"uint64", Crossing::UInt64},
                                        {"single", Crossing::Single},
                                        {"double", Crossing::Double},
                                        {"string", Crossing::String}}};
    for (const Row& row : rows)
        if (sameWord(row.name, name)) return row.crossing;
    return Crossing::Object;
}

constexpr std::size_t findAs(std::string_view text) {
    for (std::size_t i = 0; i + 4 <= text.size(); ++i)
        if (sameWord(text.substr(i, 4), " as ")) return i;
    return std::string_view::npos;
}

// "tracks() as DRTrackQRX", "byref flags as uint32", "as DRDeviceQRX()".
constexpr Crossing crossingOfVariable(std::string_view text) {
    const std::size_t as = findAs(text);
    if (as == std::string_view::npos) return Crossing::None;
    const std::string_view name = trimmed(text.substr(0, as));
    const std::string_view type = trimmed(text.substr(as + 4));
    if (name.size() > 6 && sameWord(name.substr(0, 6), "byref ")) return Crossing::Address;
    if (name.ends_with("()") || type.ends_with("()")) return Crossing::Array;
    return crossingOfTypeName(type);
}

constexpr std::size_t maxParameters = 8;

} // namespace detail

// What a declaration says about the function that goes with it.
struct Signature {
    std::array<Crossing, detail::maxParameters> parameters{};
    std::size_t count = 0;
    Crossing result = Crossing::None;

    // What is thrown here says what is wrong with the table: it is read by the compiler.
    constexpr void add(Crossing crossing) {
        if (count == parameters.size()) throw "a declaration has more parameters than there is room for";
        parameters[count++] = crossing;
    }
    constexpr bool operator==(const Signature&) const = default;
};

constexpr Signature parseDeclaration(std::string_view text) {
    Signature signature;
    std::string_view rest = text;
    if (const std::size_t open = detail::find(text, '(');
        open != std::string_view::npos && open < detail::findAs(text)) {
        // An array parameter has parentheses of its own: the list ends where they balance.
        std::size_t close = open, depth = 0;
        for (; close < text.size(); ++close) {
            if (text[close] == '(') ++depth;
            if (text[close] == ')' && --depth == 0) break;
        }
        if (close == text.size()) throw "a declaration has a parenthesis that is not closed";
        std::string_view list = text.substr(open + 1, close - open - 1);
        while (!detail::trimmed(list).empty()) {
            const std::size_t comma = detail::find(list, ',');
            signature.add(detail::crossingOfVariable(detail::trimmed(list.substr(0, comma))));
            list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
        }
        rest = text.substr(close + 1);
    }
    const std::size_t as = detail::findAs(rest);
    if (as == std::string_view::npos) return signature;
    const std::string_view type = detail::trimmed(rest.substr(as + 4));
    signature.result = type.ends_with("()") ? Crossing::Array : detail::crossingOfTypeName(type);
    return signature;
}

template <class Function>
struct SignatureOf;

template <class Result, class... Args>
struct SignatureOf<Result (*)(Args...)> {
    static consteval Signature value() {
        Signature signature;
        (signature.add(crossingOf<Args>()), ...);
        signature.result = crossingOf<Result>();
        return signature;
    }
};

// The signature of an instance member's function: the host object comes first.
constexpr Signature ofInstance(Signature declared) {
    Signature signature;
    signature.add(Crossing::Object);
    for (std::size_t i = 0; i < declared.count; ++i)
        signature.add(declared.parameters[i]);
    signature.result = declared.result;
    return signature;
}

// The signature of a property's setter: object, parameters, then the assigned value; no result.
constexpr Signature setterOf(Signature declared) {
    Signature signature = ofInstance(declared);
    signature.add(declared.result);
    signature.result = Crossing::None;
    return signature;
}

} // namespace frame
