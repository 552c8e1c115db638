// NumberKindsTest.cpp: the platform's real numbers: the type that each says to be of, and the host's kind for it.
#include "plugin/bridge/Variants.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include <climits>

namespace {

using namespace test;
using objc::Id;
using objc::send;
using objc::sendClass;

using NumberKinds = LoadedTest;

struct Case {
    Id number;
    const char* type;
    Kind kind;
    int64_t value;
};

// The platform keeps any integer as an "int" when it lies inside of that type's range, limits left out, else as a
// "long long" or an "unsigned long long": whatever it was made from, and with words of either size alike. The
// table of all other types is tested with numbers made for it (VariantsTest.cpp).
TEST_F(NumberKinds, IntegersAreOfTheTypeThatTheirValueNeeds) {
    const Case cases[] = {
        {sendClass<"NSNumber", "numberWithChar:">(static_cast<signed char>(5)), "i", Kind::Int32, 5},
        {sendClass<"NSNumber", "numberWithUnsignedChar:">(static_cast<unsigned char>(200)), "i", Kind::Int32,
         200},
        {sendClass<"NSNumber", "numberWithUnsignedChar:">(static_cast<unsigned char>(1)), "i", Kind::Int32,
         1},
        {sendClass<"NSNumber", "numberWithShort:">(static_cast<short>(-300)), "i", Kind::Int32, -300},
        {sendClass<"NSNumber", "numberWithUnsignedShort:">(static_cast<unsigned short>(65535)), "i",
         Kind::Int32, 65535},
        {sendClass<"NSNumber", "numberWithInt:">(INT_MIN), "i", Kind::Int32, INT_MIN},
        {sendClass<"NSNumber", "numberWithInt:">(INT_MAX), "i", Kind::Int32, INT_MAX},
        {sendClass<"NSNumber", "numberWithUnsignedInt:">(7u), "i", Kind::Int32, 7},
        {sendClass<"NSNumber", "numberWithUnsignedInt:">(4'000'000'000u), "q", Kind::Int64, 4'000'000'000},
        {sendClass<"NSNumber", "numberWithLong:">(-7l), "i", Kind::Int32, -7},
        {sendClass<"NSNumber", "numberWithLong:">(long{INT_MAX} - 1), "i", Kind::Int32, INT_MAX - 1},
        {sendClass<"NSNumber", "numberWithLong:">(long{INT_MAX}), "q", Kind::Int64, INT_MAX},
        {sendClass<"NSNumber", "numberWithLong:">(long{INT_MIN}), "q", Kind::Int64, INT_MIN},
        {sendClass<"NSNumber", "numberWithUnsignedLong:">(7ul), "i", Kind::Int32, 7},
        {sendClass<"NSNumber", "numberWithUnsignedLong:">(4'000'000'000ul), "q", Kind::Int64, 4'000'000'000},
        {sendClass<"NSNumber", "numberWithInteger:">(-8l), "i", Kind::Int32, -8},
        {sendClass<"NSNumber", "numberWithLongLong:">(7ll), "i", Kind::Int32, 7},
        {sendClass<"NSNumber", "numberWithLongLong:">(-5'000'000'000ll), "q", Kind::Int64, -5'000'000'000},
        {sendClass<"NSNumber", "numberWithUnsignedLongLong:">(7ull), "i", Kind::Int32, 7},
        {sendClass<"NSNumber", "numberWithUnsignedLongLong:">((1ull << 32) + 7), "q", Kind::Int64,
         (1ll << 32) + 7},
        // Only here is an unsigned number one, and loses its high 32 bits.
        {sendClass<"NSNumber", "numberWithUnsignedLongLong:">((1ull << 63) + 7), "Q", Kind::UInt64, 7},
    };
    int row = 0;
    for (const Case& one : cases) {
        EXPECT_STREQ((send<"objCType", const char*>(one.number)), one.type) << "row " << row;
        const Value value = valueOf(Ref::adopt(NewVariantFromNSObject(one.number)));
        EXPECT_EQ(value.kind(), one.kind) << "row " << row;
        EXPECT_EQ(value.toInt64(), one.value) << "row " << row;
        ++row;
    }
}

TEST_F(NumberKinds, ALongOfMoreThan32BitsIsAWhole64BitNumber) {
    if constexpr (sizeof(long) == 8) {
        const auto large = static_cast<long>(5'000'000'000);
        const Id number = sendClass<"NSNumber", "numberWithLong:">(large);
        EXPECT_STREQ((send<"objCType", const char*>(number)), "q");
        const Value value = valueOf(Ref::adopt(NewVariantFromNSObject(number)));
        EXPECT_EQ(value.kind(), Kind::Int64);
        EXPECT_EQ(value.toInt64(), large);
    } else {
        GTEST_SKIP() << "no long is that long here";
    }
}

TEST_F(NumberKinds, BooleansSinglesAndDoublesStayWhatTheyAre) {
    const Value truth = valueOf(
        Ref::adopt(NewVariantFromNSObject(sendClass<"NSNumber", "numberWithBool:">(objc::Boolean{1}))));
    EXPECT_EQ(truth.kind(), Kind::Boolean);
    EXPECT_TRUE(truth.toBoolean());
    const Id single = sendClass<"NSNumber", "numberWithFloat:">(7.0f);
    EXPECT_STREQ((send<"objCType", const char*>(single)), "f");
    EXPECT_EQ(valueOf(Ref::adopt(NewVariantFromNSObject(single))).kind(), Kind::Single);
    const Id real = sendClass<"NSNumber", "numberWithDouble:">(7.0);
    EXPECT_STREQ((send<"objCType", const char*>(real)), "d");
    EXPECT_EQ(valueOf(Ref::adopt(NewVariantFromNSObject(real))).kind(), Kind::Double);
}

} // namespace
