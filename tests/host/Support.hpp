// Support.hpp: what the host's tests share.
#pragma once

#include "host/plugin/PluginLoader.hpp"
#include "host/runtime/Array.hpp"
#include "host/runtime/Harness.hpp"
#include "host/runtime/Invoke.hpp"
#include "host/runtime/Lock.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace test {

using namespace host;

// Every service as a plug-in gets it.
struct Services {
#define TEST_CELL(Result, name, parameters)                                                                  \
    Result(*name) parameters = reinterpret_cast<Result(*) parameters>(resolver()(#name));
    REAL_HOST_ENTRIES(TEST_CELL)
#undef TEST_CELL
};

inline std::string pluginPath() { return TEST_PLUGIN; }
inline const Plugin& testPlugin() { return loadPlugin(pluginPath()); }

// Calls with arguments that are no variables.
inline Value ask(const Value& target, std::string_view name, std::vector<Value> arguments = {}) {
    return invoke(target, name, arguments);
}
inline Value askClass(std::string_view className, std::string_view name, std::vector<Value> arguments = {}) {
    return invokeShared(requireClass(className), name, arguments);
}
inline Value make(std::string_view className, std::vector<Value> arguments = {}) {
    return construct(requireClass(className), arguments);
}

// What a piece of code raises, as "Class: message"; "" when it raises nothing.
template <class Code>
std::string raisedBy(Code code) {
    try {
        code();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "";
}

// A class of a program that handles events of TestBase.
inline MemberSpec on(std::string_view declaration, Body body) {
    MemberSpec spec;
    spec.kind = MemberKind::Event;
    spec.declaration = parseDeclaration(declaration);
    spec.body = std::move(body);
    return spec;
}
inline MemberSpec def(std::string_view declaration, Body body) {
    MemberSpec spec;
    spec.declaration = parseDeclaration(declaration);
    spec.body = std::move(body);
    return spec;
}
inline MemberSpec stored(std::string_view declaration, Value initial = {}) {
    MemberSpec spec;
    spec.kind = MemberKind::Property;
    spec.declaration = parseDeclaration(declaration);
    spec.initial = std::move(initial);
    return spec;
}

// Checks at its end that nothing is left alive that was not there at its start.
class NothingLeft : public ::testing::Test {
  protected:
    NothingLeft() {
        testPlugin(); // its classes keep texts of their constants
        objects_ = harness::liveInstances();
        strings_ = harness::liveStrings();
    }
    // Texts that a class defined by the test keeps.
    void keeps(std::size_t strings) { strings_ += strings; }

    ~NothingLeft() override {
        EXPECT_EQ(harness::takeException(), std::nullopt);
        EXPECT_EQ(harness::liveInstances(), objects_);
        EXPECT_EQ(harness::liveStrings(), strings_);
    }

  private:
    std::map<std::string, std::size_t> objects_;
    std::size_t strings_;
};

} // namespace test
