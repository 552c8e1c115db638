// Encoding.hpp: the runtime's type encodings, made from C++ signatures at compile time.
//
// The letters are those of the compiler's @encode, with C++'s bool in the place of the platform's BOOL. Only
// the types that callbacks of the plug-in use are listed; another type is a compile error, not a guess.
#pragma once

#include "plugin/objc/Runtime.hpp"

#include <array>
#include <string_view>

namespace objc {

template <class T>
constexpr char encodingOf() {
    if constexpr (std::is_same_v<T, void>)
        return 'v';
    else if constexpr (std::is_same_v<T, Id>)
        return '@';
    else if constexpr (std::is_same_v<T, Class>)
        return '#';
    else if constexpr (std::is_same_v<T, Sel>)
        return ':';
    else if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, unsigned char>)
        return 'C';
    else if constexpr (std::is_same_v<T, signed char> || std::is_same_v<T, char>)
        return 'c';
    else if constexpr (std::is_same_v<T, short>)
        return 's';
    else if constexpr (std::is_same_v<T, unsigned short>)
        return 'S';
    else if constexpr (std::is_same_v<T, int>)
        return 'i';
    else if constexpr (std::is_same_v<T, unsigned int>)
        return 'I';
    else if constexpr (std::is_same_v<T, long>)
        return sizeof(long) == 8 ? 'q' : 'l';
    else if constexpr (std::is_same_v<T, unsigned long>)
        return sizeof(long) == 8 ? 'Q' : 'L';
    else if constexpr (std::is_same_v<T, long long>)
        return 'q';
    else if constexpr (std::is_same_v<T, unsigned long long>)
        return 'Q';
    else if constexpr (std::is_same_v<T, float>)
        return 'f';
    else if constexpr (std::is_same_v<T, double>)
        return 'd';
    else
        static_assert(!sizeof(T), "no type encoding is known for this type");
}

namespace detail {

template <char... letters>
inline constexpr std::array<char, sizeof...(letters)> encodingLetters{letters...};

template <class T>
inline constexpr bool isHandle = std::is_same_v<T, Id> || std::is_same_v<T, Class> || std::is_same_v<T, Sel>;

template <auto& letters>
constexpr std::string_view asText() {
    return {letters.data(), letters.size()};
}

} // namespace detail

// Pointers take two letters: what they point to follows a '^', and a pointer to void or to a record is "^v".
template <class T>
constexpr std::string_view encodingText() {
    using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (!std::is_pointer_v<T> || detail::isHandle<T>)
        return detail::asText<detail::encodingLetters<encodingOf<T>()>>();
    else if constexpr (std::is_same_v<Pointee, char>)
        static_assert(!sizeof(T), "@encode has \"*\" for this");
    else if constexpr (std::is_arithmetic_v<Pointee> || detail::isHandle<Pointee>)
        return detail::asText<detail::encodingLetters<'^', encodingOf<Pointee>()>>();
    else
        return detail::asText<detail::encodingLetters<'^', 'v'>>();
}

// The types text of a method: result, receiver, selector, arguments.
template <class Function>
struct MethodTypes;

template <class Result, class... Args>
struct MethodTypes<Result (*)(Id, Sel, Args...)> {
    static constexpr std::size_t length =
        (encodingText<Result>().size() + ... + encodingText<Args>().size()) + 2;

    static constexpr auto make() {
        std::array<char, length + 1> text{};
        std::size_t at = 0;
        for (const std::string_view part :
             {encodingText<Result>(), std::string_view("@"), std::string_view(":"), encodingText<Args>()...})
            for (const char letter : part)
                text[at++] = letter;
        return text;
    }

    static constexpr auto text = make();
};

} // namespace objc
