// VariantAccessorsTest.cpp: reading host variants by the host's functions, and by properties where it has none.
#include "tests/plugin/PlatformObjects.hpp"

#include <algorithm>

namespace {

using namespace test;

using VariantAccessors = LoadedTest;

struct Accessor {
    const char* entry;    // the host's function
    const char* property; // the entry that reads the property in its place
    double (*read)(REALvariant);

    friend void PrintTo(const Accessor& accessor, std::ostream* out) { *out << accessor.entry; }
};

class Accessors : public PluginTest, public testing::WithParamInterface<Accessor> {};

INSTANTIATE_TEST_SUITE_P(
    Each, Accessors,
    testing::Values(Accessor{"VariantToInt32", "REALGetPropValueInt",
                             [](REALvariant v) { return 1.0 * GetVariantInteger(v); }},
                    Accessor{"VariantToInt64", "REALGetPropValueInt64",
                             [](REALvariant v) { return static_cast<double>(GetVariantLong(v)); }},
                    Accessor{"VariantToSingle", "REALGetPropValueSingle",
                             [](REALvariant v) { return double{GetVariantSingle(v)}; }},
                    Accessor{"VariantToDouble", "REALGetPropValueDouble",
                             [](REALvariant v) { return GetVariantDouble(v); }},
                    Accessor{"VariantToString", "REALGetPropValueString",
                             [](REALvariant v) { return Value::adopt(GetVariantString(v)).toDouble(); }},
                    Accessor{"REALLoadGlobalMethod", "REALGetPropValueInt",
                             [](REALvariant v) { return GetVariantType(v) == 2 ? 7.0 : 0.0; }}));

TEST_P(Accessors, AskTheHostsFunctionAndNotTheProperty) {
    harness::withdraw(GetParam().property);
    load();
    EXPECT_EQ(GetParam().read(variant(7).get()), 7.0);
}

TEST_P(Accessors, ReadThePropertyWhereTheHostHasNoFunctionAndAskForItAgainNextTime) {
    harness::withdraw(GetParam().entry);
    load();
    const auto lookups = [] {
        const auto names = harness::lookups();
        return std::count(names.begin(), names.end(), GetParam().entry);
    };
    EXPECT_EQ(GetParam().read(variant(7).get()), 7.0);
    EXPECT_EQ(GetParam().read(variant(7).get()), 7.0);
    EXPECT_EQ(lookups(), 2);
    harness::restore(GetParam().entry);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(GetParam().read(variant(7).get()), 7.0);
    EXPECT_EQ(lookups(), 3) << "found once, kept";
}

TEST_P(Accessors, AnswerEmptyWhereTheHostHasNeither) {
    harness::withdraw(GetParam().entry);
    harness::withdraw(GetParam().property);
    load();
    EXPECT_EQ(GetParam().read(variant(7).get()), 0.0);
}

TEST_F(VariantAccessors, OnlyTheTextOfANilVariantIsAnsweredWithoutTheHost) {
    harness::withdraw("VariantToString");
    harness::withdraw("REALGetPropValueString");
    EXPECT_EQ(GetVariantString(nullptr), nullptr);
    const auto names = harness::lookups();
    EXPECT_EQ(std::count(names.begin(), names.end(), "VariantToString"), 0);
    EXPECT_EQ(GetVariantInteger(nullptr), 0);
    EXPECT_EQ(GetVariantLong(nullptr), 0);
    EXPECT_EQ(GetVariantSingle(nullptr), 0.0f);
    EXPECT_EQ(GetVariantDouble(nullptr), 0.0);
    EXPECT_EQ(GetVariantType(nullptr), 0);
    const auto asked = harness::lookups();
    for (const char* entry :
         {"VariantToInt32", "VariantToInt64", "VariantToSingle", "VariantToDouble", "REALLoadGlobalMethod"})
        EXPECT_EQ(std::count(asked.begin(), asked.end(), entry), 1) << entry;
}

} // namespace
