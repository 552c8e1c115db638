// Encodings by name, and texts from one to another.
#include "Tables.hpp"

namespace host::basic {

namespace {

void checkEncoding(int64_t encoding) {
    if (encoding != kREALEncodingUnknown && !iconvName(static_cast<uint32_t>(encoding)))
        raise("UnsupportedFormatException",
              "there is no text encoding with the number " + std::to_string(encoding));
}

template <uint32_t Number>
Value number(Context&, Arguments) {
    return Value(static_cast<int32_t>(Number));
}

constexpr NativeEntry kEntries[] = {
    {"Encodings.UTF8 As Integer", number<kREALEncodingUTF8>},
    {"Encodings.UTF16 As Integer", number<kREALEncodingUTF16>},
    {"Encodings.UTF32 As Integer", number<kREALEncodingUTF32>},
    {"Encodings.ASCII As Integer", number<kREALEncodingASCII>},
    {"Encodings.ISOLatin1 As Integer", number<0x0201>},
    {"Encodings.WindowsLatin1 As Integer", number<0x0500>},
    {"Encodings.MacRoman As Integer", number<0>},
    {"Encodings.Unknown As Integer", number<kREALEncodingUnknown>},
    {"Encoding(text As String) As Integer",
     [](Context&, Arguments a) -> Value { return Value(static_cast<int32_t>(encodingOf(a[0].string()))); }},
    {"DefineEncoding(text As String, encoding As Int64) As String",
     [](Context&, Arguments a) -> Value {
         checkEncoding(a[1].toInt64());
         return Value::adopt(newString(bytesOf(a[0].string()), static_cast<uint32_t>(a[1].toInt64())));
     }},
    {"ConvertEncoding(text As String, encoding As Int64) As String",
     [](Context&, Arguments a) -> Value {
         checkEncoding(a[1].toInt64());
         const auto encoding = static_cast<uint32_t>(a[1].toInt64());
         if (encoding == kREALEncodingUnknown)
             return Value::adopt(newString(bytesOf(a[0].string()), encoding));
         REALstring made = convertString(a[0].string(), encoding);
         if (!made) raise("UnsupportedFormatException", "the text can't be converted to this encoding");
         return Value::adopt(made);
     }},
};

} // namespace

std::span<const NativeEntry> encodingFunctions() { return kEntries; }

} // namespace host::basic
