// CompanionTest.hpp: the companion loaded into the host, with the plug-in or alone, and a platform pool; nothing
// may be left behind.
#pragma once

#include "host/plugin/PluginLoader.hpp"
#include "host/runtime/Dictionary.hpp"
#include "host/runtime/Harness.hpp"
#include "host/runtime/Invoke.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/Pool.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace test {

using host::Ref;
using host::Value;
using host::harness::Raised;
using objc::Id;
namespace harness = host::harness;

inline void loadCompanion() { host::loadPlugin(COMPANION); }
inline void loadPlugin() { host::loadPlugin(DISC_PLUGIN); }

inline Value ask(const Value& target, const char* name, std::vector<Value> arguments = {}) {
    return host::invoke(target, name, arguments);
}
inline Value askClass(const char* className, const char* name, std::vector<Value> arguments = {}) {
    return host::invokeShared(host::requireClass(className), name, arguments);
}
// New X(arguments)
inline Value make(const char* className, std::vector<Value> arguments = {}) {
    return host::construct(host::requireClass(className), arguments);
}
inline void set(const Value& target, const char* name, const Value& value) {
    host::assign(target, name, {}, value);
}

// Where a host object keeps its platform object: behind the header.
inline Id& slot(REALobject object) { return *reinterpret_cast<Id*>(object + 1); }

// A host object for a platform object, as plug-ins make it: by the name of its class.
inline Value holding(const char* className, Id object) {
    const REALobject made = host::newObject(host::requireClass(className));
    slot(made) = objc::send<"retain">(object);
    return Value::adopt(made);
}

inline unsigned long retains(Id object) { return objc::send<"retainCount", unsigned long>(object); }

// What a piece of code raises, as "Class: message"; "" when it raises nothing.
template <class Code>
std::string raisedBy(Code code) {
    try {
        code();
    } catch (const host::Exception& exception) {
        return exception.what();
    }
    return "";
}

// What the platform's log got while the body ran.
template <class Body>
std::string logOf(Body body) {
    testing::internal::CaptureStderr();
    body();
    return testing::internal::GetCapturedStderr();
}

// With nothing loaded yet.
class CompanionTest : public testing::Test {
  protected:
    CompanionTest() { unsetenv("DISPLAY"); }

    // Answers an exception of the platform with that name, reason and user information.
    static Id platformException(const char* reason, Id userInfo = nullptr) {
        return objc::sendClass<"NSException", "exceptionWithName:reason:userInfo:">(
            nsString("TestException"), reason ? nsString(reason) : nullptr, userInfo);
    }

    // The host object that the companion makes of it.
    static Value converted(Id exception) {
        return Value::adopt(
            objc::send<"NewNSExceptionQRX:", REALobject>(objc::classNamed<"NSException">(), exception));
    }

    // Objects of the companion's and the plug-in's that still live.
    static std::size_t livingWrappers() {
        std::size_t count = 0;
        for (const auto& [name, living] : harness::liveInstances())
            if (name.ends_with("QRX")) count += living;
        return count;
    }

    // A test has dropped its objects by now; what the pool keeps goes with the pool.
    void TearDown() override {
        pool.reset();
        EXPECT_EQ(livingWrappers(), 0u);
        EXPECT_EQ(harness::takeException(), std::nullopt);
    }

    OwnDrives drives;
    std::optional<Pool> pool{std::in_place};
};

// With the companion alone.
class WithCompanion : public CompanionTest {
  protected:
    WithCompanion() { loadCompanion(); }
};

// With both.
class WithBoth : public CompanionTest {
  protected:
    WithBoth() {
        loadPlugin();
        loadCompanion();
    }
};

} // namespace test
