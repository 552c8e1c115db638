// String.hpp: host strings, bytes with an encoding, and conversion between encodings.
#pragma once

#include "plugin/frame/PluginInterface.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace host {

// ---- raw strings: every maker gives one reference that the caller owns; null is the empty string -----

// Copies the bytes. An empty text in an encoding still gets a record of its own, so that its encoding is
// kept.
REALstring newString(std::string_view bytes, uint32_t encoding = kREALEncodingUTF8);
void retain(REALstring string);
void release(REALstring string);
// The bytes as they are, valid while a reference is held.
std::string_view bytesOf(REALstring string);
// Null is the empty string in UTF-8.
uint32_t encodingOf(REALstring string);
// The text in UTF-8, whatever its encoding. Unknown encodings are read as UTF-8 when the bytes are valid
// UTF-8, else as the default 8-bit encoding; bytes that mean nothing become U+FFFD.
std::string utf8Of(REALstring string);
// A new string in the encoding; characters it lacks become "?". Null only when the encoding is not known.
REALstring convertString(REALstring string, uint32_t encoding);

// ---- encodings ---------------------------------------------------------------------------------------

// The name that iconv knows for an encoding number, or null.
const char* iconvName(uint32_t encoding);
// Bytes from one encoding to another; false when either encoding is not known.
bool transcode(std::string_view bytes, uint32_t from, uint32_t to, std::string& out);
bool isValidUTF8(std::string_view bytes);
// Case folding for comparisons, of UTF-8 text.
std::string foldCase(std::string_view utf8);

// ---- an owned string ---------------------------------------------------------------------------------

class String {
  public:
    String() = default;
    String(std::string_view utf8) : string_(newString(utf8)) {}
    String(const String& other) : string_(other.string_) { retain(string_); }
    String(String&& other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
    String& operator=(String other) noexcept {
        std::swap(string_, other.string_);
        return *this;
    }
    ~String() { release(string_); }

    static String adopt(REALstring string) { // takes over the caller's reference
        String result;
        result.string_ = string;
        return result;
    }
    static String borrow(REALstring string) { // adds a reference
        retain(string);
        return adopt(string);
    }

    REALstring get() const { return string_; }
    REALstring detach() { return std::exchange(string_, nullptr); } // gives the reference away
    std::string_view bytes() const { return bytesOf(string_); }
    std::string utf8() const { return utf8Of(string_); }

  private:
    REALstring string_ = nullptr;
};

} // namespace host
