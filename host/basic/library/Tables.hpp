// The lists of functions that the library is put together from, one per file.
#pragma once

#include "Library.hpp"

namespace host::basic {

std::span<const NativeEntry> textFunctions();
std::span<const NativeEntry> encodingFunctions();
std::span<const NativeEntry> numberFunctions();
std::span<const NativeEntry> consoleFunctions();
std::span<const NativeEntry> systemFunctions();

/// The bytes of a text as UTF-8. Texts of unknown encoding are taken as they are, so that data survives.
class Text {
  public:
    explicit Text(const Value& value);
    std::string_view view() const { return view_; }
    /// A piece of it, in the encoding that the whole has.
    Value piece(std::string_view part) const;

  private:
    std::string own_;
    std::string_view view_;
    uint32_t encoding_ = kREALEncodingUTF8;
};

/// Standard output and standard error; raises IOException when they can't be written.
void writeOut(std::string_view text);
void flushOut();
void writeError(std::string_view text);

/// A value as Print shows it. Raises TypeMismatchException for objects that have no text.
std::string shownText(const Value& value, const char* by);

} // namespace host::basic
