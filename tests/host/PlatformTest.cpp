// PlatformTest.cpp: the host with the platform in its process: strings, file references, pools, run loops.
#include "host/services/Platform.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/services/PathNames.hpp"
#include "tests/host/Support.hpp"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

// What the platform's own libraries keep until the end of the process is not for these tests. Here, and not
// in the environment, because the list of the tests is asked for without one.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:objc_malloc\nleak:class_copyMethodList\n";
}

namespace {

using namespace test;
namespace fs = std::filesystem;

class WithPlatform : public NothingLeft {
  protected:
    void SetUp() override {
        ASSERT_TRUE(hasPlatform());
        char pattern[] = "/tmp/host-platform-XXXXXX";
        folder = mkdtemp(pattern);
    }
    void TearDown() override { fs::remove_all(folder); }
    Services host;
    std::string folder;
};

// The platform string's text in UTF-8; releases it.
std::string taken(CFStringRef string) {
    const auto get = reinterpret_cast<uint8_t (*)(CFStringRef, char*, long, uint32_t)>(
        dlsym(RTLD_DEFAULT, "CFStringGetCString"));
    const auto release = reinterpret_cast<void (*)(CFStringRef)>(dlsym(RTLD_DEFAULT, "CFRelease"));
    if (!string || !get || !release) return "(null)";
    char text[256];
    const bool fits = get(string, text, sizeof text, kREALEncodingUTF8) != 0;
    release(string);
    return fits ? text : "(does not fit)";
}

TEST_F(WithPlatform, HostStringsOfEveryEncodingBecomePlatformStrings) {
    const Pool pool;
    const std::string_view text = "Grüße €";
    for (const uint32_t encoding :
         {uint32_t{kREALEncodingUTF8}, uint32_t{kREALEncodingUTF16}, uint32_t{kREALEncodingUTF32},
          uint32_t{kREALEncodingDefault}, 0x0500u, 0x10000100u, 0x0632u}) {
        std::string bytes;
        ASSERT_TRUE(transcode(text, kREALEncodingUTF8, encoding, bytes));
        const auto string = String::adopt(newString(bytes, encoding));
        EXPECT_EQ(taken(host.REALGetStringCFString(string.get(), 0)), text) << std::hex << encoding;
    }
    const auto unknown = String::adopt(newString("\x8A", kREALEncodingUnknown));
    EXPECT_EQ(taken(host.REALGetStringCFString(unknown.get(), 0)), "ä");
    EXPECT_EQ(host.REALGetStringCFString(nullptr, 0), nullptr);
}

TEST_F(WithPlatform, AFolderItemThatExistsBecomesAReferenceAndComesBack) {
    std::ofstream(folder + "/ä.txt") << "x";
    const Value item = newFolderItem(folder + "/ä.txt");
    FSRef ref{}, parent{};
    HFSUniStr255 name{};
    ASSERT_EQ(host.REALFSRefFromFolderItem(item.object(), &ref, nullptr), 1);
    ASSERT_EQ(host.REALFSRefFromFolderItem(item.object(), &parent, &name), 1);
    EXPECT_EQ(std::u16string(name.unicode, name.unicode + name.length), u"ä.txt");
    const Value back = Value::adopt(host.REALFolderItemFromParentFSRef(&parent, &name));
    EXPECT_EQ(pathOf(back.object()), folder + "/ä.txt");
    FSSpec spec{};
    ASSERT_EQ(host.REALFSSpecFromFolderItem(item.object(), &spec), 1);
    const Value fromSpec = Value::adopt(host.FolderItemFromFSSpec(&spec));
    ASSERT_FALSE(fromSpec.isNil());
    EXPECT_EQ(pathOf(fromSpec.object()), folder + "/ä.txt");
}

TEST_F(WithPlatform, AFolderItemThatDoesNotExistHasAParentAndALeafName) {
    const Value item = newFolderItem(folder + "/new file");
    FSRef ref{};
    HFSUniStr255 name{};
    EXPECT_EQ(host.REALFSRefFromFolderItem(item.object(), &ref, nullptr), 0);
    ASSERT_EQ(host.REALFSRefFromFolderItem(item.object(), &ref, &name), 1);
    EXPECT_EQ(name.length, 8);
    FSSpec spec{};
    EXPECT_EQ(host.REALFSSpecFromFolderItem(item.object(), &spec), 0);
    const Value back = Value::adopt(host.REALFolderItemFromParentFSRef(&ref, &name));
    EXPECT_EQ(pathOf(back.object()), folder + "/new file");
    const Value orphan = newFolderItem(folder + "/no/such");
    EXPECT_EQ(host.REALFSRefFromFolderItem(orphan.object(), &ref, &name), 0);
    const Value root = newFolderItem("/");
    EXPECT_EQ(host.REALFSRefFromFolderItem(root.object(), &ref, nullptr), 1);
    EXPECT_EQ(host.REALFSRefFromFolderItem(root.object(), &ref, &name), 0) << "the root has no leaf name";
}

TEST_F(WithPlatform, LeafNamesThatAreNoNameOfOneItemAreRefused) {
    const Value item = newFolderItem(folder + "/x");
    FSRef parent{};
    HFSUniStr255 name{};
    ASSERT_EQ(host.REALFSRefFromFolderItem(item.object(), &parent, &name), 1);
    const auto refused = [&](std::u16string text) {
        name.length = static_cast<uint16_t>(text.size());
        std::copy(text.begin(), text.end(), name.unicode);
        return host.REALFolderItemFromParentFSRef(&parent, &name) == nullptr;
    };
    EXPECT_TRUE(refused(u""));
    EXPECT_TRUE(refused(u"."));
    EXPECT_TRUE(refused(u".."));
    EXPECT_TRUE(refused(u"a/b"));
    EXPECT_TRUE(refused(std::u16string(u"a\0b", 3)));
}

TEST_F(WithPlatform, NamesThatAreNoUTF8ComeBackAsTheyWere) {
    for (const std::string name :
         {"caf\xE9", "\xFF\xFE", "ok", "\U0001F4BF", "\xEE\xBE\x80", "a\xED\xA0\x80z"}) {
        EXPECT_EQ(nameOnDisk(nameFromDisk(name)), name);
        std::ofstream(folder + "/" + name) << "x";
        const Value item = newFolderItem(folder + "/" + name);
        FSRef parent{};
        HFSUniStr255 leaf{};
        ASSERT_EQ(host.REALFSRefFromFolderItem(item.object(), &parent, &leaf), 1);
        const Value back = Value::adopt(host.REALFolderItemFromParentFSRef(&parent, &leaf));
        ASSERT_FALSE(back.isNil());
        EXPECT_TRUE(fs::exists(pathOf(back.object())));
    }
}

TEST_F(WithPlatform, TheRunLoopRunsForTheTimeItIsGiven) {
    const auto start = std::chrono::steady_clock::now();
    Locked lock;
    runLoop(0.1);
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(passed, std::chrono::milliseconds(100));
    EXPECT_LT(passed, std::chrono::seconds(5));
    EXPECT_TRUE(holdsLock());
}

// Processor time of the calling thread, in seconds.
double used() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

TEST_F(WithPlatform, TheRunLoopSleepsWhileItWaits) {
    const Locked lock;
    for (const double wait : {0.001, 0.0037, 0.02}) {
        runLoop(wait); // what is done once
        const double before = used();
        for (int i = 0; i < 50; ++i)
            runLoop(wait);
        EXPECT_LT(used() - before, 50 * wait / 2) << wait;
    }
}

// Messages without Objective-C: objc_msg_lookup, as the host itself does it.
void* send(void* receiver, const char* message) {
    const auto lookUp = reinterpret_cast<void* (*)(void*, void*)>(dlsym(RTLD_DEFAULT, "objc_msg_lookup"));
    const auto selector = reinterpret_cast<void* (*)(const char*)>(dlsym(RTLD_DEFAULT, "sel_registerName"));
    void* name = selector(message);
    return reinterpret_cast<void* (*)(void*, void*)>(lookUp(receiver, name))(receiver, name);
}

void* newPlatformObject() {
    const auto getClass = reinterpret_cast<void* (*)(const char*)>(dlsym(RTLD_DEFAULT, "objc_getClass"));
    return send(send(getClass("NSObject"), "alloc"), "init");
}

uintptr_t retainCount(void* object) { return reinterpret_cast<uintptr_t>(send(object, "retainCount")); }

TEST_F(WithPlatform, APoolReleasesWhatWasAutoreleasedInIt) {
    void* object = newPlatformObject();
    {
        const Pool pool;
        send(send(object, "retain"), "autorelease");
        EXPECT_EQ(retainCount(object), 2u);
    }
    EXPECT_EQ(retainCount(object), 1u);
    send(object, "release");
}

TEST_F(WithPlatform, EventsOnForeignThreadsRunInsideAPool) {
    static void* object;
    object = newPlatformObject();
    defineClass({"PoolUser",
                 "TestBase",
                 {on("notify",
                     [](REALobject, Arguments) -> Value {
                         send(send(object, "retain"), "autorelease");
                         EXPECT_EQ(retainCount(object), 2u);
                         return {};
                     })},
                 {},
                 {}});
    const Value user = make("PoolUser", {1});
    ASSERT_TRUE(ask(user, "startThread").toBoolean());
    ask(user, "joinThread");
    EXPECT_EQ(retainCount(object), 1u);
    send(object, "release");
}

} // namespace

// On its way out Foundation forgets objects that it kept, so leaks are looked for before main returns.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
#ifdef __SANITIZE_ADDRESS__
    __lsan_do_leak_check();
#endif
    return result;
}
