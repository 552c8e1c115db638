// PluginTest.hpp: the plug-in loaded into the host, with a platform pool, and checks that nothing is left
// behind.
//
// Every test is a process of its own, so each starts with empty caches.
#pragma once

#include "host/runtime/Harness.hpp"
#include "host/runtime/Object.hpp"
#include "host/runtime/String.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/Message.hpp"
#include "tests/plugin/Pool.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>

extern "C" void REALPluginMain(REALresolver resolver);

namespace test {

using host::Ref;
using host::String;
using host::harness::Raised;
namespace harness = host::harness;

// A host that lacks something withdraws it before load().
class PluginTest : public testing::Test {
  protected:
    void load() { REALPluginMain(host::resolver()); }

    // An object of a class as a program's `New` begins it: made, its class constructor run.
    Ref make(const char* className) { return Ref::adopt(REALnewInstance(className)); }

    // Calls an instance member by its declaration.
    template <class Result, class... Args>
    Result call(const char* className, const char* declaration, Args... args) {
        auto* function = harness::member<Result(Args...)>(className, declaration);
        if (!function) {
            ADD_FAILURE() << className << " declares no " << declaration;
            return Result();
        }
        return function(args...);
    }

    // The text of a string result, which is taken over.
    std::string textOf(REALstring string) { return String::adopt(string).utf8(); }

    std::optional<Raised> raised() { return harness::takeException(); }

    Pool pool;
};

// The same with everything loaded at the start.
class LoadedTest : public PluginTest {
  protected:
    void SetUp() override { load(); }
};

} // namespace test
