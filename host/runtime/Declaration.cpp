// Declaration.cpp: a small parser for the declarations of members and constants.
#include "host/runtime/Declaration.hpp"

#include <cctype>
#include <charconv>

namespace host {
namespace {

class Reader {
  public:
    explicit Reader(std::string_view text) : text_(text) { skipBlanks(); }

    bool atEnd() const { return position_ == text_.size(); }
    bool accept(char c) {
        if (atEnd() || text_[position_] != c) return false;
        ++position_;
        skipBlanks();
        return true;
    }
    void expect(char c) {
        if (!accept(c)) fail(std::string("\"") + c + "\" is expected");
    }
    bool acceptWord(std::string_view word) {
        if (!sameName(peekWord(), word)) return false;
        position_ += word.size();
        skipBlanks();
        return true;
    }
    std::string name(const char* what) {
        const auto word = peekWord();
        if (word.empty() || std::isdigit(static_cast<unsigned char>(word[0])))
            fail(std::string(what) + " is expected");
        position_ += word.size();
        skipBlanks();
        return std::string(word);
    }
    std::string_view rest() const { return text_.substr(position_); }
    void expectEnd() const {
        if (!atEnd()) fail("nothing more is expected after it");
    }
    [[noreturn]] void fail(const std::string& expectation) const {
        const std::string place = atEnd() ? "at the end" : "before \"" + std::string(rest()) + "\"";
        throw DeclarationError(expectation + " " + place, position_);
    }

  private:
    std::string_view text_;
    std::size_t position_ = 0;

    void skipBlanks() {
        while (!atEnd() && std::isspace(static_cast<unsigned char>(text_[position_])))
            ++position_;
    }
    std::string_view peekWord() const {
        auto end = position_;
        const auto isPart = [](unsigned char c) {
            return std::isalnum(c) || c == '_' || c == '.' || c >= 0x80;
        };
        while (end < text_.size() && isPart(static_cast<unsigned char>(text_[end])))
            ++end;
        return text_.substr(position_, end - position_);
    }
};

Type readType(Reader& reader) {
    Type type = typeNamed(reader.name("a type"));
    if (reader.accept('(')) {
        reader.expect(')');
        type.array = true;
    }
    return type;
}

Value readLiteral(std::string_view text, const Reader& reader);

Parameter readParameter(Reader& reader) {
    Parameter parameter;
    bool isOptional = false;
    for (;;) {
        if (reader.acceptWord("byref"))
            parameter.byRef = true;
        else if (reader.acceptWord("byval"))
            parameter.byRef = false;
        else if (reader.acceptWord("assigns"))
            parameter.assigns = true;
        else if (reader.acceptWord("optional"))
            isOptional = true;
        else
            break;
    }
    parameter.name = reader.name("a parameter's name");
    bool isArray = false;
    if (reader.accept('(')) {
        reader.expect(')');
        isArray = true;
    }
    if (!reader.acceptWord("as")) reader.fail("\"as\" and a type are expected");
    parameter.type = readType(reader);
    if (isArray && parameter.type.array) reader.fail("\"()\" may stand once only");
    parameter.type.array = parameter.type.array || isArray;
    if (isOptional) parameter.defaultValue = Value::defaultFor(parameter.type);
    return parameter;
}

Value readLiteral(std::string_view text, const Reader& reader) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return Value(text.substr(1, text.size() - 2));
    if (sameName(text, "true")) return true;
    if (sameName(text, "false")) return false;
    const char* end = text.data() + text.size();
    const auto whole = [](int64_t number) {
        return number == static_cast<int32_t>(number) ? Value(static_cast<int32_t>(number)) : Value(number);
    };
    if (text.size() > 2 && text[0] == '&') {
        const char letter = lowerName(text.substr(1, 1))[0];
        const int base = letter == 'h' ? 16 : letter == 'o' ? 8 : letter == 'b' ? 2 : 0;
        uint64_t number = 0;
        if (base) {
            const auto result = std::from_chars(text.data() + 2, end, number, base);
            if (result.ec == std::errc{} && result.ptr == end) return whole(static_cast<int64_t>(number));
        }
        reader.fail("a number is expected");
    }
    int64_t number = 0;
    auto result = std::from_chars(text.data(), end, number);
    if (result.ec == std::errc{} && result.ptr == end) return whole(number);
    double real = 0;
    result = std::from_chars(text.data(), end, real);
    const bool hasDigit = text.find_first_of("0123456789") != std::string_view::npos;
    if (hasDigit && result.ec == std::errc{} && result.ptr == end) return real;
    reader.fail("a number, a text in quotation marks, true or false is expected");
}

} // namespace

std::string Declaration::text() const {
    std::string text = name;
    if (hasParentheses || !parameters.empty()) {
        text += "(";
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            const auto& p = parameters[i];
            if (i > 0) text += ", ";
            if (p.defaultValue) text += "Optional ";
            if (p.byRef) text += "ByRef ";
            if (p.assigns) text += "Assigns ";
            text += p.name + (p.type.array ? "()" : "") + " As " +
                    (p.type.array ? p.type.element() : p.type).text();
        }
        text += ")";
    }
    if (result.kind != Kind::None) text += " As " + result.text();
    return text;
}

bool Declaration::matches(const Declaration& other) const {
    if (!sameName(name, other.name) || result != other.result || parameters.size() != other.parameters.size())
        return false;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const auto &a = parameters[i], &b = other.parameters[i];
        if (!sameName(a.name, b.name) || a.type != b.type || a.byRef != b.byRef || a.assigns != b.assigns)
            return false;
    }
    return true;
}

Declaration parseDeclaration(std::string_view text) {
    Reader reader(text);
    Declaration declaration;
    declaration.name = reader.name("a member's name");
    if (reader.accept('(')) {
        declaration.hasParentheses = true;
        while (!reader.accept(')')) {
            if (!declaration.parameters.empty()) reader.expect(',');
            if (declaration.isAssigning())
                reader.fail("the parameter that is assigned is the last one: \")\" is expected");
            declaration.parameters.push_back(readParameter(reader));
        }
    }
    if (reader.acceptWord("as")) declaration.result = readType(reader);
    reader.expectEnd();
    return declaration;
}

ConstantDeclaration parseConstant(std::string_view text) {
    Reader reader(text);
    reader.acceptWord("const");
    ConstantDeclaration constant;
    constant.name = reader.name("a constant's name");
    std::optional<Type> type;
    if (reader.acceptWord("as")) type = readType(reader);
    reader.expect('=');
    constant.value = readLiteral(reader.rest(), reader);
    if (type && fit(constant.value, *type) < 0)
        reader.fail("a value of type " + type->text() + " is expected");
    if (type) constant.value = convert(constant.value, *type, "constant " + constant.name);
    return constant;
}

} // namespace host
