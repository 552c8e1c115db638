// ValueTest.cpp: values, their conversions and comparisons, and variants.
#include "host/runtime/Date.hpp"
#include "host/runtime/Variant.hpp"
#include "tests/host/Support.hpp"

#include <cmath>
#include <limits>

namespace {

using namespace test;

class Values : public NothingLeft {};

TEST_F(Values, HaveTheKindOfTheirCppType) {
    EXPECT_EQ(Value(true).kind(), Kind::Boolean);
    EXPECT_EQ(Value(int8_t{1}).kind(), Kind::Int8);
    EXPECT_EQ(Value(1).kind(), Kind::Int32);
    EXPECT_EQ(Value(int64_t{1}).kind(), Kind::Int64);
    EXPECT_EQ(Value(uint16_t{1}).kind(), Kind::UInt16);
    EXPECT_EQ(Value(uint64_t{1}).kind(), Kind::UInt64);
    EXPECT_EQ(Value(1.5f).kind(), Kind::Single);
    EXPECT_EQ(Value(1.5).kind(), Kind::Double);
    EXPECT_EQ(Value("x").kind(), Kind::String);
    EXPECT_TRUE(Value().isNil());
    EXPECT_TRUE(Value::adopt(REALobject()).isNil());
}

TEST_F(Values, BecomeText) {
    EXPECT_EQ(Value(true).toText(), "True");
    EXPECT_EQ(Value(-12).toText(), "-12");
    EXPECT_EQ(Value(std::numeric_limits<uint64_t>::max()).toText(), "18446744073709551615");
    EXPECT_EQ(Value(0.1).toText(), "0.1");
    EXPECT_EQ(Value(0.1f).toText(), "0.1");
    EXPECT_EQ(Value(3.0).toText(), "3");
    EXPECT_EQ(Value().toText(), "");
}

TEST_F(Values, BecomeNumbers) {
    EXPECT_EQ(Value("12 MB").toInt32(), 12);
    EXPECT_EQ(Value("  -1.9e1x").toDouble(), -19.0);
    EXPECT_EQ(Value("&hFF").toInt32(), 255);
    EXPECT_EQ(Value("&b101").toInt32(), 5);
    EXPECT_EQ(Value("9007199254740993").toInt64(), 9007199254740993);
    EXPECT_EQ(Value("none").toInt32(), 0);
    EXPECT_EQ(Value("inf").toDouble(), 0);
    EXPECT_EQ(Value(-1.9).toInt32(), -1);
    EXPECT_EQ(Value(1e30).toInt32(), std::numeric_limits<int32_t>::max());
    EXPECT_EQ(Value(-1e30).toInt64(), std::numeric_limits<int64_t>::min());
    EXPECT_EQ(Value(std::nan("")).toInt64(), 0);
    EXPECT_EQ(Value(1e19).toUInt64(), 10000000000000000000u);
    EXPECT_TRUE(Value("TRUE").toBoolean());
    EXPECT_FALSE(Value("no").toBoolean());
    EXPECT_EQ(Value(true).toInt32(), 1);
}

TEST_F(Values, ConvertToDeclaredTypes) {
    const auto to = [](const Value& value, const char* type) {
        return convert(value, typeNamed(type), "it");
    };
    EXPECT_EQ(to(300, "UInt8").toInt32(), 44);
    EXPECT_EQ(to(7, "Double").kind(), Kind::Double);
    EXPECT_EQ(to(2.9, "Integer").toInt32(), 2);
    EXPECT_EQ(to(-1, "UInt64").toUInt64(), std::numeric_limits<uint64_t>::max());
    EXPECT_EQ(to(5, "Boolean").kind(), Kind::Boolean);
    EXPECT_EQ(to(7, "Variant").kind(), Kind::Int32);
    EXPECT_TRUE(to(Value(), "FolderItem").isNil());
    EXPECT_EQ(raisedBy([&] { to("7", "Integer"); }), "TypeMismatchException: it must be Int32, not String");
    EXPECT_EQ(raisedBy([&] { to(7, "String"); }), "TypeMismatchException: it must be String, not Int32");
    EXPECT_EQ(raisedBy([&] { to(Value(), "String"); }), "TypeMismatchException: it must be String, not nil");
    EXPECT_EQ(raisedBy([&] { to(newDate(), "Dictionary"); }),
              "TypeMismatchException: it must be Dictionary, not Date");
    EXPECT_EQ(raisedBy([&] { to(newArray(typeNamed("String")), "Integer()"); }),
              "TypeMismatchException: it must be Int32(), not String()");
}

TEST_F(Values, CompareAsBasicDoes) {
    EXPECT_TRUE(equalValues("Straße", "STRAßE"));
    EXPECT_TRUE(equalValues(1, 1.0));
    EXPECT_FALSE(equalValues(Value(), 0));
    EXPECT_FALSE(equalValues("1", 1));
    EXPECT_FALSE(equalValues(std::numeric_limits<uint64_t>::max(), -1));
    EXPECT_LT(compareValues("abc", "ABD"), 0);
    EXPECT_GT(compareValues(std::numeric_limits<uint64_t>::max(), 1), 0);
    EXPECT_EQ(raisedBy([] { compareValues("a", 1); }),
              "TypeMismatchException: a String can't be compared with a Int32");
    const Value date = newDate(1000), same = newDate(1000), later = newDate(2000);
    EXPECT_TRUE(equalValues(date, same));
    EXPECT_LT(compareValues(date, later), 0);
}

TEST_F(Values, DefaultsAreWhatAVariableStartsWith) {
    EXPECT_EQ(Value::defaultFor(typeNamed("UInt8")).kind(), Kind::UInt8);
    EXPECT_EQ(Value::defaultFor(typeNamed("String")).toText(), "");
    EXPECT_TRUE(Value::defaultFor(typeNamed("Dictionary")).isNil());
    EXPECT_TRUE(Value::defaultFor(typeNamed("Integer()")).isArray());
}

TEST_F(Values, VariantsBoxScalarsAndAreObjectsOtherwise) {
    const Value date = newDate();
    const auto variant = Ref::adopt(boxVariant(date));
    EXPECT_EQ(variant.get(), date.object());
    EXPECT_EQ(boxVariant(Value()), nullptr);
    const auto box = Ref::adopt(boxVariant(7));
    EXPECT_EQ(classOf(box.get()).name(), "Variant");
    EXPECT_EQ(unboxVariant(box.get()).kind(), Kind::Int32);
    EXPECT_TRUE(unboxVariant(nullptr).isNil());
}

TEST_F(Values, TypeCodesAreThoseOfVarType) {
    EXPECT_EQ(variantType(Value()), 0);
    EXPECT_EQ(variantType(Value(1)), 2);
    EXPECT_EQ(variantType(Value(int16_t{1})), 2);
    EXPECT_EQ(variantType(Value(int64_t{1})), 3);
    EXPECT_EQ(variantType(Value(uint32_t{1})), 3);
    EXPECT_EQ(variantType(Value(1.0f)), 4);
    EXPECT_EQ(variantType(Value(1.0)), 5);
    EXPECT_EQ(variantType(Value(newDate())), 7);
    EXPECT_EQ(variantType(Value("")), 8);
    EXPECT_EQ(variantType(make("Dictionary")), 9);
    EXPECT_EQ(variantType(Value(true)), 11);
    const std::pair<const char*, int> arrays[] = {
        {"Integer", 0x1002}, {"Int64", 0x1003},  {"Single", 0x1004},  {"Double", 0x1005}, {"Date", 0x1007},
        {"String", 0x1008},  {"Object", 0x1009}, {"Variant", 0x1009}, {"Boolean", 0x100B}};
    for (const auto& [element, code] : arrays)
        EXPECT_EQ(variantType(Value(newArray(typeNamed(element)))), code) << element;
}

TEST_F(Values, VariantPropertiesCanBeReadOfBoxesAndOfPlainObjects) {
    const Value box = Value::adopt(boxVariant("12"));
    EXPECT_EQ(ask(box, "Type").toInt32(), 8);
    EXPECT_EQ(ask(box, "StringValue").toText(), "12");
    EXPECT_EQ(ask(box, "Int32Value").toInt32(), 12);
    EXPECT_EQ(ask(box, "LongValue").kind(), Kind::Int64);
    EXPECT_EQ(ask(box, "SingleValue").kind(), Kind::Single);
    EXPECT_EQ(ask(box, "DoubleValue").toDouble(), 12.0);
    EXPECT_TRUE(ask(box, "DateValue").isNil());
    const Value date = newDate();
    EXPECT_EQ(ask(date, "DateValue").object(), date.object());
    EXPECT_EQ(ask(date, "Type").toInt32(), 7);
}

} // namespace
