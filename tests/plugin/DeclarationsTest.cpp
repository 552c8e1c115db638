// DeclarationsTest.cpp: every declaration of every class, letter for letter and in order, against declarations.right.
//
// A new member is a new line there; on a difference the test prints the first line that differs, and where
// DECLARATIONS_OUT is set it writes what it found to that file.
#include "tests/plugin/PluginTest.hpp"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

using namespace test;

void describe(std::ostream& out, const char* kind, const REALmethodDefinition* rows, uintptr_t count) {
    for (uintptr_t i = 0; i < count; ++i)
        out << "  " << (rows[i].setter ? "property" : kind) << ' ' << rows[i].flags << ' '
            << rows[i].declaration << '\n';
}

std::string declarations() {
    std::ostringstream out;
    for (const std::string& name : harness::registrations()) {
        const REALclassDefinition& record = *harness::definition(name);
        out << name << (record.superName ? " inherits " : "") << (record.superName ? record.superName : "")
            << '\n';
        describe(out, "method", record.methods, record.methodCount);
        for (uintptr_t i = 0; i < record.eventCount; ++i)
            out << "  event " << record.events[i].declaration << '\n';
        for (uintptr_t i = 0; i < record.constantCount; ++i)
            out << "  constant " << record.constants[i].declaration << '\n';
        describe(out, "shared", record.sharedMethods, record.sharedMethodCount);
    }
    return out.str();
}

TEST_F(LoadedTest, DeclarationsAreThoseThatAreWrittenDown) {
    const std::string found = declarations();
    if (const char* path = std::getenv("DECLARATIONS_OUT")) std::ofstream(path) << found;
    std::ifstream file(DECLARATIONS);
    ASSERT_TRUE(file) << DECLARATIONS;
    std::istringstream lines(found);
    std::string wanted, line;
    for (int number = 1; std::getline(file, wanted); ++number) {
        ASSERT_TRUE(std::getline(lines, line)) << "line " << number << " is missing: " << wanted;
        ASSERT_EQ(line, wanted) << "line " << number;
    }
    EXPECT_FALSE(std::getline(lines, line)) << "not written down: " << line;
}

} // namespace
