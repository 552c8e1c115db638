// LoaderTest.cpp: loading plug-ins, what they declared, and files that are none.
#include "tests/host/Support.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

using namespace test;

std::string refusal(const std::string& path) {
    try {
        loadPlugin(path);
    } catch (const PluginError& error) {
        return error.what();
    }
    return "";
}

TEST(Loader, RemembersClassesAndDeclarationsInOrder) {
    const Plugin& plugin = testPlugin();
    std::vector<std::string> names;
    for (const auto* known : plugin.classes)
        names.push_back(known->name());
    EXPECT_EQ(names, (std::vector<std::string>{"TestShape", "TestBase", "TestOrphan", "TestChildOfOrphan",
                                               "TestHidden"}));
    EXPECT_EQ(harness::announcedPluginVersion(), kREALPluginVersion);
    const auto list = listDeclarations(requireClass("TestBase"));
    EXPECT_EQ(list.front().kind, "method");
    EXPECT_EQ(list.front().text, "echoInt8(v as Int8) as Int8");
    const auto place = [&](const char* text) {
        const auto found =
            std::find_if(list.begin(), list.end(), [=](const Listed& l) { return l.text == text; });
        EXPECT_NE(found, list.end()) << text;
        return found;
    };
    EXPECT_EQ(place("number as integer")->kind, "property");
    EXPECT_EQ(place("notify")->kind, "event");
    EXPECT_EQ(place("kSize = 2352")->kind, "constant");
    EXPECT_EQ(place("answer as integer")->kind, "shared method");
    EXPECT_LT(place("number as integer"), place("text as string"));
}

TEST(Loader, LoadsAFileOnceOnly) {
    const Plugin& first = testPlugin();
    const auto relative = std::filesystem::relative(pluginPath()).string();
    EXPECT_EQ(&loadPlugin(relative), &first);
    EXPECT_EQ(loadedPlugins().size(), 1u);
}

TEST(Loader, RefusesWhatIsNoPluginWithTheReason) {
    const auto before = loadedPlugins().size();
    EXPECT_EQ(refusal("/no/such/plugin.so"), "/no/such/plugin.so can't be loaded: No such file or directory");
    EXPECT_EQ(refusal("/"), "/ is not a plug-in: it is a folder");
    EXPECT_EQ(refusal(TEST_NO_ENTRY),
              std::string(TEST_NO_ENTRY) + " is not a plug-in: it has no entry REALPluginMain");
    const auto file = std::filesystem::temp_directory_path() / ("no-plugin-" + std::to_string(getpid()));
    std::ofstream(file) << "plain text, long enough to be looked at as a library";
    const auto reason = refusal(file.string());
    EXPECT_TRUE(reason.starts_with(file.string() + " is not a plug-in: ")) << reason;
    std::filesystem::remove(file);
    EXPECT_EQ(loadedPlugins().size(), before);
}

} // namespace
