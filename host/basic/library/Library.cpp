// Finding functions of the library by name.
#include "Library.hpp"

#include "Tables.hpp"

#include <map>
#include <set>

namespace host::basic {

namespace {

struct Catalogue {
    std::map<std::string, std::vector<NativeFunction>, std::less<>> functions;
    std::set<std::string, std::less<>> namespaces;
    std::vector<std::string> names;

    Catalogue() {
        for (const auto table : {textFunctions(), encodingFunctions(), numberFunctions(), consoleFunctions(),
                                 systemFunctions()}) {
            for (const NativeEntry& entry : table)
                add(entry);
        }
    }

    void add(const NativeEntry& entry) {
        std::string declaration = entry.declaration;
        NativeFunction made;
        made.function = entry.function;
        const size_t rest = declaration.find("...");
        if (rest != std::string::npos) {
            made.variadic = true;
            declaration.erase(rest, 3);
            if (const size_t comma = declaration.rfind(", )"); comma != std::string::npos)
                declaration.erase(comma, 2);
        }
        std::string space;
        const size_t dot = declaration.find('.');
        if (dot != std::string::npos && dot < declaration.find_first_of("( ")) {
            space = declaration.substr(0, dot + 1);
            declaration.erase(0, dot + 1);
            namespaces.insert(lowerName(space.substr(0, dot)));
        }
        made.declaration = parseDeclaration(declaration);
        made.name = space + made.declaration.name;
        std::vector<NativeFunction>& overloads = functions[lowerName(made.name)];
        if (overloads.empty()) names.push_back(made.name);
        overloads.push_back(std::move(made));
    }
};

const Catalogue& catalogue() {
    static const Catalogue made;
    return made;
}

} // namespace

std::span<const NativeFunction> findNatives(std::string_view lower) {
    const auto found = catalogue().functions.find(lower);
    if (found == catalogue().functions.end()) return {};
    return found->second;
}

bool isNativeNamespace(std::string_view lower) { return catalogue().namespaces.contains(lower); }
std::vector<std::string> nativeNames() { return catalogue().names; }

Text::Text(const Value& value) {
    encoding_ = value.isString() ? encodingOf(value.string()) : uint32_t{kREALEncodingUTF8};
    if (encoding_ == kREALEncodingUTF8 || encoding_ == kREALEncodingASCII ||
        encoding_ == kREALEncodingUnknown) {
        view_ = bytesOf(value.string());
    } else {
        own_ = value.toText();
        view_ = own_;
        encoding_ = kREALEncodingUTF8;
    }
}

Value Text::piece(std::string_view part) const {
    const bool kept = encoding_ == kREALEncodingUnknown;
    return Value::adopt(newString(part, kept ? encoding_ : uint32_t{kREALEncodingUTF8}));
}

std::string shownText(const Value& value, const char* by) {
    if (value.isObject() && !isA(value.object(), "Date"))
        raise("TypeMismatchException",
              std::string(by) + " shows texts, numbers and dates, not " + value.typeName());
    return value.toText();
}

} // namespace host::basic
