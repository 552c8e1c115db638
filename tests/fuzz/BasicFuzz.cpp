// BasicFuzz.cpp: BASIC programs, read, compiled, and run for as long as a few thousand statements.
//
// Programs that could reach files, wait or change the environment are only compiled.
#include "tests/fuzz/Fuzz.hpp"

#include "host/basic/command/Program.hpp"
#include "host/basic/compile/Compiler.hpp"
#include "host/basic/library/Library.hpp"
#include "host/basic/run/Context.hpp"
#include "host/basic/syntax/Parser.hpp"
#include "host/runtime/Class.hpp"
#include "host/runtime/Lock.hpp"

#include <algorithm>
#include <new>
#include <string>
#include <sys/resource.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HAS_ADDRESS_SANITIZER
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define HAS_ADDRESS_SANITIZER
#endif

#ifdef HAS_ADDRESS_SANITIZER
// A program that wants more memory than there is has to end well: here there are 64 MB for each piece. The
// sanitizer's own operator new ends the process instead of throwing.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64:alloc_dealloc_mismatch=0";
}
void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif

// Elsewhere the system says when a process has enough; the sanitizer needs more room for addresses than that.
static void boundMemory() {
#ifndef HAS_ADDRESS_SANITIZER
    const rlimit room{rlim_t{512} << 20, rlim_t{512} << 20};
    setrlimit(RLIMIT_AS, &room);
#endif
}

namespace {

constexpr uint32_t turns = 100; // of a few dozen statements each

bool mayRun(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    for (const char* word :
         {"folder", "file", "volume", "stream", "system", "sleep", "doevents", "input", "stdin"})
        if (lower.find(word) != std::string::npos) return false;
    return true;
}

void compileOnly(const host::basic::Source& source) {
    host::basic::Diagnostics diagnostics;
    const auto program = host::basic::parse(source, diagnostics);
    if (diagnostics.empty()) (void)host::basic::compile(program, source, diagnostics);
    (void)diagnostics.render(source);
}

void run(const host::basic::Source& source) {
    host::basic::Context& context = host::basic::Context::ofThisThread();
    context.turnsLeft = turns;
    context.leaving = false;
    host::basic::stop::request = 0; // by a program before this one
    host::basic::runSource(source, false);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const bool isReady = (boundMemory(), host::basic::defineLibraryClasses(), true);
    (void)isReady;
    const std::string_view text = fuzz::textOf(data, size);
    // Such a file is refused before it is read.
    if (text.find('\0') != std::string_view::npos) return 0;
    if (host::basic::findInvalidUtf8(text) != std::string_view::npos) return 0;
    const host::Locked locked;
    const host::basic::Source source("program.bas", std::string(text));
    if (mayRun(text))
        run(source);
    else
        compileOnly(source);
    host::forgetProgramClasses();
    return 0;
}
