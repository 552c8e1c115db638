// DeclarationTest.cpp: declarations of members and constants, good ones and bad ones.
#include "tests/host/Support.hpp"

namespace {

using namespace test;

std::string normal(std::string_view text) { return parseDeclaration(text).text(); }

std::string problemOf(std::string_view text) {
    try {
        parseDeclaration(text);
    } catch (const DeclarationError& error) {
        return error.what();
    }
    return "";
}

TEST(Declaration, GoodOnesAreReadWhateverTheirCaseAndBlanks) {
    const std::pair<const char*, const char*> good[] = {
        {"mediaType as string", "mediaType As String"},
        {"device(index as UInt32) as DRDeviceQRX", "device(index As UInt32) As DRDeviceQRX"},
        {"devices as DRDeviceQRX()", "devices As DRDeviceQRX()"},
        {"writeLayout(tracks() as DRTrackQRX)", "writeLayout(tracks() As DRTrackQRX)"},
        {"writeLayout(tracks as DRTrackQRX())", "writeLayout(tracks() As DRTrackQRX)"},
        {"abort", "abort"},
        {"abort()", "abort()"},
        {"  LenB( s as string ) as integer ", "LenB(s As String) As Int32"},
        {"f(byref flags as uint32, BYREF s As String)", "f(ByRef flags As UInt32, ByRef s As String)"},
        {"Value(key As Variant, Assigns _value As Variant)",
         "Value(key As Variant, Assigns _value As Variant)"},
        {"f(optional a as integer)", "f(Optional a As Int32)"},
        {"f(\ta as\nmemoryblock,b as Folderitem)as dictionary",
         "f(a As memoryblock, b As Folderitem) As dictionary"},
    };
    for (const auto& [text, expected] : good)
        EXPECT_EQ(normal(text), expected) << text;
}

TEST(Declaration, BadOnesAreRefusedWithTheReasonAndThePlace) {
    const std::pair<const char*, const char*> bad[] = {
        {"", "a member's name is expected at the end"},
        {"(a as integer)", "a member's name is expected before \"(a as integer)\""},
        {"1st as string", "a member's name is expected before \"1st as string\""},
        {"f(a as", "a type is expected at the end"},
        {"f(a)", "\"as\" and a type are expected before \")\""},
        {"f(a as integer", "\",\" is expected at the end"},
        {"f(a as integer,)", "a parameter's name is expected before \")\""},
        {"f(a as integer b as integer)", "\",\" is expected before \"b as integer)\""},
        {"f() as", "a type is expected at the end"},
        {"f as string string", "nothing more is expected after it before \"string\""},
        {"f(a( as integer)", "\")\" is expected before \"as integer)\""},
        {"f(a() as integer())", "\"()\" may stand once only before \")\""},
        {"f(assigns a as integer, b as integer)",
         "the parameter that is assigned is the last one: \")\" is expected before \"b as integer)\""},
    };
    for (const auto& [text, expected] : bad)
        EXPECT_EQ(problemOf(text), expected) << text;
}

TEST(Declaration, MatchingRegardsParameterNamesTypesAndResult) {
    const auto wanted = parseDeclaration("Constructor(bytes as Integer)");
    EXPECT_TRUE(parseDeclaration("constructor( BYTES As int32 )").matches(wanted));
    EXPECT_FALSE(parseDeclaration("Constructor(frames as integer)").matches(wanted));
    EXPECT_FALSE(parseDeclaration("Constructor(bytes as int64)").matches(wanted));
    EXPECT_FALSE(parseDeclaration("Constructor(bytes as integer) as integer").matches(wanted));
    EXPECT_FALSE(parseDeclaration("Constructor(byref bytes as integer)").matches(wanted));
    EXPECT_FALSE(parseDeclaration("Constructor").matches(wanted));
}

TEST(Declaration, ConstantsHaveTheKindOfTheirLiteral) {
    EXPECT_EQ(parseConstant("kDRBlockSizeAudio = 2352").value.toInt32(), 2352);
    EXPECT_EQ(parseConstant("NSOKButton=1").name, "NSOKButton");
    EXPECT_EQ(parseConstant("a = -5").value.kind(), Kind::Int32);
    EXPECT_EQ(parseConstant("a = &hFFFFFFFF").value.toInt64(), 0xFFFFFFFF);
    EXPECT_EQ(parseConstant("a = 4294967296").value.kind(), Kind::Int64);
    EXPECT_EQ(parseConstant("a = 1.5").value.kind(), Kind::Double);
    EXPECT_EQ(parseConstant("a = \"x y\"").value.toText(), "x y");
    EXPECT_EQ(parseConstant("a = True").value.kind(), Kind::Boolean);
    EXPECT_EQ(parseConstant("Const a As Double = 2").value.kind(), Kind::Double);
    for (const char* bad : {"", "a", "a =", "a = b", "= 1", "a = 1 2", "a = &hXY", "a = \"x", "a = nan"})
        EXPECT_THROW(parseConstant(bad), DeclarationError) << bad;
}

TEST(Declaration, TypeNamesGiveTheirTypes) {
    EXPECT_EQ(typeNamed("INTEGER").kind, Kind::Int32);
    EXPECT_EQ(typeNamed("uint64").kind, Kind::UInt64);
    EXPECT_EQ(typeNamed("variant").kind, Kind::Variant);
    EXPECT_EQ(typeNamed("Object"), typeNamed("object"));
    EXPECT_EQ(typeNamed("Foo"), typeNamed("FOO"));
    EXPECT_NE(typeNamed("Foo"), typeNamed("Foo()"));
    EXPECT_TRUE(typeNamed("string()").array);
}

} // namespace
