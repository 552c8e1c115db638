// DeclarationsFuzz.cpp: declarations of members, as the host reads them and as the plug-in's tables do.
#include "tests/fuzz/Fuzz.hpp"

#include "host/runtime/Declaration.hpp"
#include "plugin/frame/Declaration.hpp"

#include <string>

namespace {

using fuzz::require;

// What the host makes of a declaration is itself one, of the same member.
void readInHost(std::string_view text) {
    try {
        const host::Declaration declaration = host::parseDeclaration(text);
        const std::string normal = declaration.text();
        const host::Declaration again = host::parseDeclaration(normal);
        require(declaration.matches(again), "a declaration's own text declares the same");
        require(again.text() == normal, "a normal text stays as it is");
    } catch (const host::DeclarationError& error) {
        require(error.position <= text.size(), "what is wrong lies in the text");
    }
    try {
        (void)host::parseConstant(text);
    } catch (const host::DeclarationError& error) {
        require(error.position <= text.size(), "what is wrong lies in the text");
    }
}

// At compile time what it throws is an error in the table.
void readInTables(std::string_view text) {
    try {
        const frame::Signature signature = frame::parseDeclaration(text);
        require(signature.count <= frame::detail::maxParameters, "a signature has room for its parameters");
        (void)frame::setterOf(signature);
    } catch (const char*) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    readInHost(text);
    readInTables(text);
    return 0;
}
