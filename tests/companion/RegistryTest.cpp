// RegistryTest.cpp: the table of wrappers, and that platform objects come back as the same host objects.
#include "tests/companion/CompanionTest.hpp"

#include "host/runtime/Array.hpp"

#include <atomic>
#include <dlfcn.h>
#include <thread>

namespace {

using namespace test;

// The platform's calls on the table.
using GetValue = const void*(void* table, const void* key);
using SetValue = void(void* table, const void* key, const void* value);

template <class Function>
Function* platformCall(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

void* table() { return objc::send<"GetInstancesDictionaryQRX", void*>(objc::classNamed<"NSException">()); }

using Registry = WithBoth;

TEST_F(Registry, IsOneTableForAll) {
    ASSERT_NE(table(), nullptr);
    EXPECT_EQ(table(), table());
}

TEST_F(Registry, ComparesKeysByIdentityAndRetainsNeitherKeysNorValues) {
    const Id one = objc::sendClass<"NSMutableString", "stringWithString:">(nsString("text"));
    const Id same = objc::sendClass<"NSMutableString", "stringWithString:">(nsString("text"));
    const Value value = make("NSRangeQRX");
    platformCall<SetValue>("CFDictionarySetValue")(table(), one, value.object());
    EXPECT_EQ(platformCall<GetValue>("CFDictionaryGetValue")(table(), one), value.object());
    EXPECT_EQ(platformCall<GetValue>("CFDictionaryGetValue")(table(), same), nullptr);
    EXPECT_EQ(retains(one), 1u);
    EXPECT_EQ(harness::references(value.object()), 1u);
    // A changed key is found, because its contents do not matter.
    objc::send<"appendString:", void>(one, nsString(" more"));
    EXPECT_EQ(platformCall<GetValue>("CFDictionaryGetValue")(table(), one), value.object());
    platformCall<void(void*, const void*)>("CFDictionaryRemoveValue")(table(), one);
    EXPECT_EQ(platformCall<GetValue>("CFDictionaryGetValue")(table(), one), nullptr);
}

// Events come on threads of the platform's, and those look wrappers up as well.
TEST_F(Registry, MayBeUsedByAnyNumberOfThreads) {
    static constexpr uintptr_t each = 20000;
    const auto address = [](uintptr_t number) { return reinterpret_cast<const void*>(number * 16); };
    const auto set = platformCall<SetValue>("CFDictionarySetValue");
    const auto get = platformCall<GetValue>("CFDictionaryGetValue");
    const auto remove = platformCall<void(void*, const void*)>("CFDictionaryRemoveValue");
    void* const all = table();
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (uintptr_t thread = 1; thread <= 3; ++thread)
        threads.emplace_back([=, &wrong] {
            for (uintptr_t i = 0; i < each; ++i) {
                const void* key = address(thread * each + i);
                set(all, key, key);
                if (get(all, key) != key) ++wrong;
                if (i % 2 == 0) remove(all, key);
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    for (uintptr_t i = each; i < 4 * each; ++i) {
        EXPECT_EQ(get(all, address(i)), i % 2 == 0 ? nullptr : address(i));
        remove(all, address(i));
    }
}

TEST_F(Registry, TheSameDriveIsTheSameObjectWhileItLives) {
    const Value first = askClass("DRDeviceQRX", "device", {0});
    const Value second = askClass("DRDeviceQRX", "device", {0});
    ASSERT_TRUE(first.isObject());
    EXPECT_EQ(first.object(), second.object());
    EXPECT_EQ(harness::references(first.object()), 2u);
    const Value all = askClass("DRDeviceQRX", "devices");
    EXPECT_EQ(host::arrayGet(all.object(), 0).object(), first.object());
}

TEST_F(Registry, ADriveWhoseObjectIsGoneComesBackAsANewOne) {
    Value first = askClass("DRDeviceQRX", "device", {0});
    const Id drive = slot(first.object());
    objc::send<"retain">(drive);
    EXPECT_EQ(platformCall<GetValue>("CFDictionaryGetValue")(table(), drive), first.object());
    first = Value();
    EXPECT_EQ(platformCall<GetValue>("CFDictionaryGetValue")(table(), drive), nullptr);
    const Value again = askClass("DRDeviceQRX", "device", {0});
    EXPECT_EQ(platformCall<GetValue>("CFDictionaryGetValue")(table(), drive), again.object());
    EXPECT_EQ(harness::references(again.object()), 1u);
    objc::send<"release", void>(drive);
}

TEST_F(Registry, TheFolderThatHoldsAFolderIsTheSameObject) {
    const Value root = askClass("DRFolderQRX", "virtualFolderWithName", {"root"});
    const Value child = askClass("DRFolderQRX", "virtualFolderWithName", {"child"});
    ask(root, "addChild", {child});
    EXPECT_EQ(ask(child, "parent").object(), root.object());
    EXPECT_EQ(harness::references(root.object()), 1u);
}

TEST_F(Registry, ExceptionsNameTheDriveByItsKnownObject) {
    const Value drive = askClass("DRDeviceQRX", "device", {0});
    Value exception;
    logOf([&] {
        try {
            askClass("DRDeviceQRX", "device", {7});
        } catch (const host::Exception& raised) {
            exception = raised.object();
        }
    });
    ASSERT_TRUE(exception.isObject());
    const Value info = ask(exception, "UserInfo");
    EXPECT_EQ(host::dictionaryGet(info.object(), "Index").toInt32(), 7);
    const Value drives = host::dictionaryGet(info.object(), "Array");
    ASSERT_TRUE(drives.isArray());
    EXPECT_EQ(host::arrayGet(drives.object(), 0).object(), drive.object());
}

} // namespace
