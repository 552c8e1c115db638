// AllocationsTest.cpp: short texts cross without an allocation, by anybody: every one of the process is counted.
//
// A program of its own, because it stands in for the C library's allocator; sanitizers have one of their own, so it is
// built without them. The host here keeps its strings in place, so that only the conversion could allocate.
#include "plugin/bridge/DataView.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/frame/Resolver.hpp"
#include "tests/plugin/Pool.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {
std::size_t allocations = 0; // by this thread: there is only one
}

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    ++allocations;
    return __libc_realloc(memory, size);
}
}

namespace {

using test::nsString;

// ---- a host that allocates nothing -------------------------------------------------------------------

namespace entries {

unsigned char bytes[4000];
REALstringStruct string{};

REALstring build(const char* from, int32_t length) {
    std::memcpy(bytes + 1, from, static_cast<std::size_t>(length));
    string = {1, bytes, static_cast<uintptr_t>(length), kREALEncodingUnknown};
    return &string;
}
void mark(REALstring made, uint32_t encoding) { made->encoding = encoding; }
// Cuts each unit to a byte: enough for a host of which only ASCII is asked.
REALstring convert(REALstring from, uint32_t encoding) {
    for (std::size_t i = 0; i < from->length / 2; ++i)
        bytes[1 + i] = bytes[1 + 2 * i];
    string = {1, bytes, from->length / 2, encoding};
    return &string;
}
void nothing(REALstring) {}

} // namespace entries

REALproc resolve(const char* entry) {
    const std::string_view name = entry;
    if (name == "REALBuildString") return reinterpret_cast<REALproc>(entries::build);
    if (name == "REALSetStringEncoding") return reinterpret_cast<REALproc>(entries::mark);
    if (name == "REALConvertString") return reinterpret_cast<REALproc>(entries::convert);
    if (name == "REALLockString") return reinterpret_cast<REALproc>(entries::nothing);
    if (name == "REALUnlockString") return reinterpret_cast<REALproc>(entries::nothing);
    return nullptr;
}

std::string_view textOf(REALstring made) {
    return made ? std::string_view(reinterpret_cast<const char*>(made->buffer) + 1, made->length) : "(null)";
}

// How often the code allocates, once everything that is looked up at first use is known.
template <class Code>
std::size_t allocationsOf(Code code) {
    code();
    const std::size_t before = allocations;
    code();
    return allocations - before;
}

// The compiler may leave out what nobody sees.
void* seen(void* memory) {
    void* volatile kept = memory;
    return kept;
}

class Allocations : public testing::Test {
  protected:
    void SetUp() override { frame::resolver = resolve; }

    test::Pool pool;
};

TEST_F(Allocations, AreCountedHere) {
    EXPECT_EQ(allocationsOf([] { std::free(seen(std::malloc(1))); }), 1u);
    EXPECT_EQ(allocationsOf([] { std::free(seen(std::calloc(1, 1))); }), 1u);
    EXPECT_EQ(allocationsOf([] { std::free(seen(std::realloc(nullptr, 1))); }), 1u);
    EXPECT_EQ(allocationsOf([] { ::operator delete(seen(::operator new(1))); }), 1u);
    EXPECT_GT(allocationsOf([] { objc::send<"release", void>(objc::sendClass<"NSObject", "new">()); }), 0u);
}

TEST_F(Allocations, ThereAreNoneForAPlatformTextOfNinetyNineUnitsAndOneForAHundred) {
    for (const char* character : {"x", "é", "€"}) {
        std::string text;
        for (int units = 0; units < 99; ++units)
            text += character;
        const objc::Id shorter = nsString(text.c_str());
        const objc::Id longer = nsString((text + character).c_str());
        REALstring made = nullptr;
        EXPECT_EQ(allocationsOf([&] { made = NSStringRB(shorter); }), 0u) << character;
        EXPECT_EQ(textOf(made), text);
        EXPECT_EQ(allocationsOf([&] { made = NSStringRB(longer); }), 1u) << character;
        EXPECT_EQ(textOf(made), text + character);
    }
}

TEST_F(Allocations, ThereAreNoneForUTF32BelowEightHundredBytesAndOneFromThere) {
    const std::u32string points(200, U'x');
    REALstring made = nullptr;
    for (const int64_t length : {4, 400, 796, 799}) {
        EXPECT_EQ(
            allocationsOf([&] { made = REALBuildUnicodeString(points.data(), length, kREALEncodingUTF32); }),
            0u)
            << length;
        EXPECT_EQ(textOf(made), std::string(static_cast<std::size_t>(length / 4), 'x'));
    }
    EXPECT_EQ(allocationsOf([&] { made = REALBuildUnicodeString(points.data(), 800, kREALEncodingUTF32); }),
              1u);
    EXPECT_EQ(textOf(made), std::string(200, 'x'));
}

TEST_F(Allocations, ThereAreNoneForAViewOfAnOlderHostsString) {
    frame::hostVersion = 2012.0;
    const REALstring text = entries::build("abc", 3);
    std::string_view seen;
    EXPECT_EQ(allocationsOf([&] {
                  const rbData view(text);
                  seen = {view.bytes(), static_cast<std::size_t>(view.length())};
              }),
              0u);
    EXPECT_EQ(seen, "abc");
}

TEST_F(Allocations, ThereAreNoneForEmptyTexts) {
    const objc::Id empty = nsString("");
    EXPECT_EQ(allocationsOf([&] {
                  EXPECT_EQ(NSStringRB(empty), nullptr);
                  EXPECT_EQ(NSStringRB(nullptr), nullptr);
              }),
              0u);
}

} // namespace
