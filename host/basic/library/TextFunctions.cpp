// Functions on texts. Positions count characters from 1; comparisons do not look at case.
#include "Numbers.hpp"
#include "Tables.hpp"
#include "Utf8.hpp"
#include "host/runtime/Array.hpp"

#include <algorithm>

namespace host::basic {

namespace {

Value arrayOfTexts(const std::vector<Value>& texts) {
    const Ref made = newArray({Kind::String, {}, false});
    for (const Value& text : texts)
        arrayAppend(made.get(), text);
    return Value::borrow(made.get());
}

std::vector<std::string_view> fields(std::string_view text, std::string_view separator) {
    std::vector<std::string_view> made;
    if (text.empty()) return made;
    if (separator.empty()) { // every character
        for (size_t at = 0; at < text.size();) {
            const size_t start = at;
            utf8::next(text, at);
            made.push_back(text.substr(start, at - start));
        }
        return made;
    }
    size_t start = 0;
    for (;;) {
        const utf8::Match found = utf8::find(text, separator, start, false);
        made.push_back(text.substr(start, found.found() ? found.offset - start : std::string_view::npos));
        if (!found.found()) return made;
        start = found.offset + found.size;
    }
}

Value replaced(const Text& text, std::string_view what, std::string_view with, bool all) {
    if (what.empty()) return text.piece(text.view());
    std::string made;
    size_t start = 0;
    for (;;) {
        const utf8::Match found = utf8::find(text.view(), what, start, false);
        if (!found.found()) break;
        made.append(text.view().substr(start, found.offset - start)).append(with);
        start = found.offset + found.size;
        if (!all) break;
    }
    made.append(text.view().substr(start));
    return text.piece(made);
}

Value middle(const Text& text, int64_t start, int64_t count) {
    if (start < 1) {
        if (count != INT64_MAX) count += start - 1;
        start = 1;
    }
    if (count <= 0) return text.piece("");
    const size_t from = utf8::offsetOf(text.view(), static_cast<size_t>(start - 1));
    const std::string_view rest = text.view().substr(from);
    return text.piece(count == INT64_MAX ? rest
                                         : rest.substr(0, utf8::offsetOf(rest, static_cast<size_t>(count))));
}

// Bytes as they are stored, in whatever encoding.
Value middleBytes(const Value& text, int64_t start, int64_t count) {
    const std::string_view bytes = bytesOf(text.string());
    const auto size = static_cast<int64_t>(bytes.size());
    const int64_t from = std::clamp<int64_t>(start - 1, 0, size);
    const int64_t length = std::clamp<int64_t>(count, 0, size - from);
    const auto piece = bytes.substr(static_cast<size_t>(from), static_cast<size_t>(length));
    return Value(String::adopt(newString(piece, encodingOf(text.string()))));
}

Value position(int64_t start, const Value& whole, const Value& part, bool caseCounts) {
    const Text text(whole), wanted(part);
    if (start < 1) start = 1;
    const size_t from = utf8::offsetOf(text.view(), static_cast<size_t>(start - 1));
    const utf8::Match found = utf8::find(text.view(), wanted.view(), from, caseCounts);
    if (!found.found()) return Value(int32_t{0});
    return Value(static_cast<int32_t>(utf8::count(text.view().substr(0, found.offset))) + 1);
}

Value joinedTexts(const Value& array, std::string_view separator) {
    if (array.isNil()) raise("NilObjectException", "the array to join is nil");
    std::string made;
    for (int32_t i = 0; i <= upperBound(array.object()); ++i) {
        if (i > 0) made.append(separator);
        made.append(arrayGet(array.object(), i).toText());
    }
    return Value(made);
}

Value character(int64_t code) {
    if (code < 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000))
        raise("OutOfBoundsException", "there is no character with the number " + std::to_string(code));
    std::string made;
    utf8::append(made, static_cast<char32_t>(code));
    return Value(made);
}

Value integerOf(const Value& value) {
    if (!value.isString()) return Value(value.toInt64());
    const Text text(value);
    if (const auto whole = leadingInteger(text.view())) return Value(*whole);
    return Value(Value(leadingNumber(text.view())).toInt64());
}

constexpr NativeEntry kEntries[] = {
    {"Len(text As String) As Integer",
     [](Context&, Arguments a) -> Value {
         return Value(static_cast<int32_t>(utf8::count(Text(a[0]).view())));
     }},
    {"Length(text As String) As Integer",
     [](Context&, Arguments a) -> Value {
         return Value(static_cast<int32_t>(utf8::count(Text(a[0]).view())));
     }},
    {"LenB(text As String) As Integer",
     [](Context&, Arguments a) -> Value {
         return Value(static_cast<int32_t>(bytesOf(a[0].string()).size()));
     }},
    {"Left(text As String, count As Int64) As String",
     [](Context&, Arguments a) -> Value { return middle(Text(a[0]), 1, a[1].toInt64()); }},
    {"Right(text As String, count As Int64) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         const auto length = static_cast<int64_t>(utf8::count(text.view()));
         const int64_t count = std::clamp<int64_t>(a[1].toInt64(), 0, length);
         return middle(text, length - count + 1, count);
     }},
    {"Mid(text As String, start As Int64) As String",
     [](Context&, Arguments a) -> Value { return middle(Text(a[0]), a[1].toInt64(), INT64_MAX); }},
    {"Mid(text As String, start As Int64, count As Int64) As String",
     [](Context&, Arguments a) -> Value { return middle(Text(a[0]), a[1].toInt64(), a[2].toInt64()); }},
    {"LeftB(text As String, count As Int64) As String",
     [](Context&, Arguments a) -> Value { return middleBytes(a[0], 1, a[1].toInt64()); }},
    {"RightB(text As String, count As Int64) As String",
     [](Context&, Arguments a) -> Value {
         const auto size = static_cast<int64_t>(bytesOf(a[0].string()).size());
         const int64_t count = std::clamp<int64_t>(a[1].toInt64(), 0, size);
         return middleBytes(a[0], size - count + 1, count);
     }},
    {"MidB(text As String, start As Int64) As String",
     [](Context&, Arguments a) -> Value { return middleBytes(a[0], a[1].toInt64(), INT32_MAX); }},
    {"MidB(text As String, start As Int64, count As Int64) As String",
     [](Context&, Arguments a) -> Value { return middleBytes(a[0], a[1].toInt64(), a[2].toInt64()); }},
    {"InStr(text As String, find As String) As Integer",
     [](Context&, Arguments a) -> Value { return position(1, a[0], a[1], false); }},
    {"InStr(start As Int64, text As String, find As String) As Integer",
     [](Context&, Arguments a) -> Value { return position(a[0].toInt64(), a[1], a[2], false); }},
    {"InStrB(text As String, find As String) As Integer",
     [](Context&, Arguments a) -> Value {
         const size_t found = bytesOf(a[0].string()).find(bytesOf(a[1].string()));
         return Value(found == std::string_view::npos ? int32_t{0} : static_cast<int32_t>(found) + 1);
     }},
    {"Contains(text As String, find As String) As Boolean",
     [](Context&, Arguments a) -> Value { return Value(position(1, a[0], a[1], false).toInt32() > 0); }},
    {"BeginsWith(text As String, start As String) As Boolean",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]), start(a[1]);
         const size_t size = utf8::offsetOf(text.view(), utf8::count(start.view()));
         return Value(utf8::compare(text.view().substr(0, size), start.view()) == 0);
     }},
    {"EndsWith(text As String, end As String) As Boolean",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]), end(a[1]);
         const size_t length = utf8::count(text.view()), wanted = utf8::count(end.view());
         return Value(wanted <= length &&
                      utf8::compare(text.view().substr(utf8::offsetOf(text.view(), length - wanted)),
                                    end.view()) == 0);
     }},
    {"Replace(text As String, find As String, with As String) As String",
     [](Context&, Arguments a) -> Value {
         return replaced(Text(a[0]), Text(a[1]).view(), Text(a[2]).view(), false);
     }},
    {"ReplaceAll(text As String, find As String, with As String) As String",
     [](Context&, Arguments a) -> Value {
         return replaced(Text(a[0]), Text(a[1]).view(), Text(a[2]).view(), true);
     }},
    {"Trim(text As String) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         return text.piece(utf8::trim(text.view(), true, true));
     }},
    {"LTrim(text As String) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         return text.piece(utf8::trim(text.view(), true, false));
     }},
    {"RTrim(text As String) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         return text.piece(utf8::trim(text.view(), false, true));
     }},
    {"Uppercase(text As String) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         return text.piece(utf8::upper(text.view()));
     }},
    {"Lowercase(text As String) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         return text.piece(utf8::lower(text.view()));
     }},
    {"Titlecase(text As String) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         return text.piece(utf8::title(text.view()));
     }},
    {"StrComp(first As String, second As String, mode As Integer) As Integer",
     [](Context&, Arguments a) -> Value { // mode 0: byte by byte; 1: without regard to case
         const int order = a[2].toInt32() == 0 ? bytesOf(a[0].string()).compare(bytesOf(a[1].string()))
                                               : utf8::compare(Text(a[0]).view(), Text(a[1]).view());
         return Value(int32_t{order < 0 ? -1 : order > 0 ? 1 : 0});
     }},
    {"NthField(text As String, separator As String, number As Int64) As String",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         const auto parts = fields(text.view(), Text(a[1]).view());
         const int64_t number = a[2].toInt64();
         return text.piece(number >= 1 && number <= static_cast<int64_t>(parts.size())
                               ? parts[static_cast<size_t>(number - 1)]
                               : "");
     }},
    {"CountFields(text As String, separator As String) As Integer",
     [](Context&, Arguments a) -> Value {
         return Value(static_cast<int32_t>(fields(Text(a[0]).view(), Text(a[1]).view()).size()));
     }},
    {"Split(text As String) As String()",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         std::vector<Value> parts;
         for (const std::string_view part : fields(text.view(), " "))
             parts.push_back(text.piece(part));
         return arrayOfTexts(parts);
     }},
    {"Split(text As String, separator As String) As String()",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         std::vector<Value> parts;
         for (const std::string_view part : fields(text.view(), Text(a[1]).view()))
             parts.push_back(text.piece(part));
         return arrayOfTexts(parts);
     }},
    {"Join(texts() As String) As String",
     [](Context&, Arguments a) -> Value { return joinedTexts(a[0], " "); }},
    {"Join(texts() As String, separator As String) As String",
     [](Context&, Arguments a) -> Value { return joinedTexts(a[0], Text(a[1]).view()); }},
    {"Chr(code As Int64) As String",
     [](Context&, Arguments a) -> Value { return character(a[0].toInt64()); }},
    {"ChrB(byte As Int64) As String",
     [](Context&, Arguments a) -> Value {
         const char byte = static_cast<char>(a[0].toInt64());
         return Value::adopt(newString(std::string_view(&byte, 1), kREALEncodingUnknown));
     }},
    {"Asc(text As String) As Integer",
     [](Context&, Arguments a) -> Value {
         const Text text(a[0]);
         size_t at = 0;
         return Value(text.view().empty() ? int32_t{0} : static_cast<int32_t>(utf8::next(text.view(), at)));
     }},
    {"AscB(text As String) As Integer",
     [](Context&, Arguments a) -> Value {
         const std::string_view bytes = bytesOf(a[0].string());
         return Value(bytes.empty() ? int32_t{0} : int32_t{static_cast<unsigned char>(bytes[0])});
     }},
    {"Val(text As String) As Double",
     [](Context&, Arguments a) -> Value { return Value(leadingNumber(Text(a[0]).view())); }},
    {"CDbl(value As Variant) As Double",
     [](Context&, Arguments a) -> Value {
         return Value(a[0].isString() ? leadingNumber(Text(a[0]).view()) : a[0].toDouble());
     }},
    {"CLong(value As Variant) As Int64", [](Context&, Arguments a) -> Value { return integerOf(a[0]); }},
    {"CInt(value As Variant) As Integer",
     [](Context&, Arguments a) -> Value { return Value::integer(Kind::Int32, integerOf(a[0]).toInt64()); }},
    {"Str(value As Variant) As String",
     [](Context&, Arguments a) -> Value { return Value(shownText(a[0], "Str")); }},
    {"Str(value As Double, pattern As String) As String",
     [](Context&, Arguments a) -> Value { return Value(formatNumber(a[0].toDouble(), Text(a[1]).view())); }},
    {"CStr(value As Variant) As String",
     [](Context&, Arguments a) -> Value { return Value(shownText(a[0], "CStr")); }},
    {"ToString(value As Variant) As String",
     [](Context&, Arguments a) -> Value { return Value(shownText(a[0], "ToString")); }},
    {"Format(value As Double, pattern As String) As String",
     [](Context&, Arguments a) -> Value { return Value(formatNumber(a[0].toDouble(), Text(a[1]).view())); }},
    {"EndOfLine As String", [](Context&, Arguments) -> Value { return Value("\n"); }},
};

} // namespace

std::span<const NativeEntry> textFunctions() { return kEntries; }

} // namespace host::basic
