// BuiltinsTest.cpp: dictionaries, memory blocks, dates and folder items as programs use them.
#include "host/runtime/Date.hpp"
#include "host/runtime/Dictionary.hpp"
#include "host/runtime/FolderItem.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "tests/host/Support.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>

namespace {

using namespace test;
namespace fs = std::filesystem;

class Dictionaries : public NothingLeft {};

TEST_F(Dictionaries, KeepValuesByKeyInOrderOfInsertion) {
    const Value d = make("Dictionary");
    const auto set = [&](Value key, Value value) {
        std::vector<Value> keys{std::move(key)};
        assign(d, "Value", keys, value);
    };
    set("Zoe", 1);
    set("anna", 2);
    set(7, "seven");
    set("ZOE", 3);
    EXPECT_EQ(ask(d, "Count").toInt32(), 3);
    EXPECT_EQ(ask(d, "Value", {"zoe"}).toInt32(), 3);
    EXPECT_EQ(ask(d, "Value", {7.0}).toText(), "seven");
    EXPECT_EQ(ask(d, "Key", {0}).toText(), "Zoe");
    EXPECT_EQ(ask(d, "Key", {2}).kind(), Kind::Int32);
    EXPECT_FALSE(ask(d, "HasKey", {"7"}).toBoolean()) << "a text is no number";
    EXPECT_EQ(ask(d, "Lookup", {"none", "default"}).toText(), "default");
    ask(d, "Remove", {"Anna"});
    EXPECT_EQ(ask(d, "Key", {1}).toInt32(), 7);
    EXPECT_EQ(ask(d, "Value", {7}).toText(), "seven");
    set(Value(), Value());
    EXPECT_TRUE(ask(d, "HasKey", {Value()}).toBoolean());
    EXPECT_EQ(upperBound(ask(d, "Keys").object()), 2);
    EXPECT_EQ(arrayGet(ask(d, "Values").object(), 0).toInt32(), 3);
    const Value copy = ask(d, "Clone");
    ask(d, "Clear");
    EXPECT_EQ(ask(d, "Count").toInt32(), 0);
    EXPECT_EQ(ask(copy, "Count").toInt32(), 3);
}

TEST_F(Dictionaries, TellWhichKeyIsMissing) {
    const Value d = make("Dictionary");
    EXPECT_EQ(raisedBy([&] { ask(d, "Value", {"x"}); }),
              "KeyNotFoundException: the dictionary has no key \"x\"");
    EXPECT_EQ(raisedBy([&] { ask(d, "Remove", {1}); }), "KeyNotFoundException: the dictionary has no key 1");
    EXPECT_EQ(raisedBy([&] { ask(d, "Key", {0}); }),
              "OutOfBoundsException: index 0 is out of bounds: the dictionary has 0 keys");
}

class MemoryBlocks : public NothingLeft {
  protected:
    static void put(const Value& block, const char* name, int offset, Value value) {
        std::vector<Value> at{offset};
        assign(block, name, at, value);
    }
};

TEST_F(MemoryBlocks, HoldNumbersInEitherByteOrder) {
    const Value block = make("MemoryBlock", {16});
    EXPECT_EQ(ask(block, "Size").toInt32(), 16);
    assign(block, "LittleEndian", {}, true);
    put(block, "UInt32Value", 4, uint32_t{0x01020304});
    EXPECT_EQ(ask(block, "Byte", {4}).toInt32(), 4);
    assign(block, "LittleEndian", {}, false);
    EXPECT_EQ(ask(block, "UInt32Value", {4}).toInt64(), 0x04030201);
    put(block, "DoubleValue", 8, 1.5);
    EXPECT_EQ(ask(block, "DoubleValue", {8}).toDouble(), 1.5);
    EXPECT_EQ(ask(block, "Byte", {8}).toInt32(), 0x3F);
    put(block, "Int16Value", 0, -2);
    EXPECT_EQ(ask(block, "Int16Value", {0}).toInt32(), -2);
    put(block, "UInt64Value", 0, uint64_t{0xFFFFFFFFFFFFFFFF});
    EXPECT_EQ(ask(block, "Int8Value", {7}).toInt32(), -1);
    put(block, "BooleanValue", 0, true);
    EXPECT_TRUE(ask(block, "BooleanValue", {0}).toBoolean());
}

TEST_F(MemoryBlocks, RefuseWhatIsOutOfBounds) {
    const Value block = make("MemoryBlock", {4});
    EXPECT_EQ(raisedBy([&] { ask(block, "Int32Value", {1}); }),
              "OutOfBoundsException: 4 bytes at offset 1 are out of bounds: the memory block has 4 bytes");
    EXPECT_EQ(raisedBy([&] { ask(block, "Byte", {-1}); }),
              "OutOfBoundsException: 1 bytes at offset -1 are out of bounds: the memory block has 4 bytes");
    EXPECT_NE(raisedBy([&] { ask(block, "StringValue", {0, 5}); }), "");
    EXPECT_EQ(raisedBy([&] { make("MemoryBlock", {-1}); }),
              "InvalidArgumentException: a memory block can't have -1 bytes");
    EXPECT_EQ(ask(block, "StringValue", {4, 0}).toText(), "");
}

TEST_F(MemoryBlocks, HoldTextAndGrow) {
    const Value block = make("MemoryBlock", {4});
    std::vector<Value> place{1, 3};
    assign(block, "StringValue", place, "abcdef");
    EXPECT_EQ(ask(block, "StringValue", {0, 4}).toString().bytes(), std::string_view("\0abc", 4));
    EXPECT_EQ(ask(block, "CString", {1}).toText(), "abc");
    assign(block, "Size", {}, 8);
    EXPECT_EQ(ask(block, "CString", {1}).toText(), "abc");
    EXPECT_EQ(ask(ask(block, "MidB", {1, 2}), "StringValue", {0, 2}).toText(), "ab");
    EXPECT_EQ(ask(ask(block, "RightB", {4}), "Byte", {0}).toInt32(), 0);
    EXPECT_EQ(ask(ask(block, "LeftB", {2}), "Size").toInt32(), 2);
}

TEST_F(MemoryBlocks, ThatPointAtForeignMemoryNeitherCopyNorFreeIt) {
    int32_t foreign[2] = {1, 2};
    const Value block = newPointerBlock(foreign);
    put(block, "Int32Value", 4, 9);
    EXPECT_EQ(foreign[1], 9);
    EXPECT_FALSE(hasKnownSize(block.object()));
    EXPECT_EQ(raisedBy([&] { assign(block, "Size", {}, 4); }),
              "UnsupportedOperationException: a memory block that points at foreign memory can't be resized");
}

class Dates : public NothingLeft {
  protected:
    void SetUp() override {
        setenv("TZ", "Europe/Berlin", 1);
        tzset();
    }
};

TEST_F(Dates, ArePutTogetherFromTheirParts) {
    const Value date = make("Date", {2026, 1, 31, 9, 5, 7});
    EXPECT_EQ(ask(date, "SQLDateTime").toText(), "2026-01-31 09:05:07");
    EXPECT_EQ(ask(date, "DayOfWeek").toInt32(), 7);
    EXPECT_EQ(ask(date, "DayOfYear").toInt32(), 31);
    // Year, month and day are set one after the other on a date that stands at the 31st.
    assign(date, "Year", {}, 2024);
    assign(date, "Month", {}, 2);
    assign(date, "Day", {}, 29);
    EXPECT_EQ(ask(date, "SQLDate").toText(), "2024-02-29");
    assign(date, "Month", {}, 14);
    EXPECT_EQ(ask(date, "SQLDate").toText(), "2025-03-01") << "parts out of range roll over";
}

TEST_F(Dates, AreReadFromText) {
    const Value date = make("Date");
    assign(date, "SQLDateTime", {}, "2009-02-28 23:59:58");
    EXPECT_EQ(ask(date, "Second").toInt32(), 58);
    assign(date, "SQLDate", {}, "2010-07-01");
    EXPECT_EQ(ask(date, "SQLDateTime").toText(), "2010-07-01 00:00:00");
    for (const char* bad : {"", "yesterday", "2010-07", "2010-07-01 12", "2010-07-01 12:00:00 x"})
        EXPECT_EQ(raisedBy([&] { assign(date, "SQLDateTime", {}, bad); }),
                  "UnsupportedFormatException: \"" + std::string(bad) +
                      "\" is no date: write it as 2026-01-31 or 2026-01-31 09:05:00");
}

TEST_F(Dates, CountSecondsSince1904InLocalTime) {
    const Value date = make("Date", {1904, 1, 1});
    EXPECT_EQ(ask(date, "TotalSeconds").toDouble(), 0.0);
    assign(date, "TotalSeconds", {}, 86400.0 * 366);
    EXPECT_EQ(ask(date, "SQLDate").toText(), "1905-01-01") << "1904 was a leap year";
    EXPECT_EQ(dateSeconds(newDate(1700000000).get()), 1700000000);
    EXPECT_EQ(ask(make("Date", {2026, 7, 1}), "GMTOffset").toDouble(), 2.0);
}

TEST_F(Dates, RefuseWhatIsTooFarAwayAndStayAsTheyWere) {
    constexpr int lowest = std::numeric_limits<int32_t>::min(), highest = std::numeric_limits<int32_t>::max();
    const std::string refusal =
        "InvalidArgumentException: a date can't be that far away: its year would not fit into an Integer";
    const Value date = make("Date", {2026, 1, 31, 9, 5, 7});
    for (const int year : {lowest, lowest + 1899})
        EXPECT_EQ(raisedBy([&] { assign(date, "Year", {}, year); }), refusal) << year;
    EXPECT_EQ(raisedBy([&] { assign(date, "Month", {}, lowest); }), refusal);
    EXPECT_EQ(raisedBy([&] { make("Date", {lowest, 1, 1}); }), refusal);
    EXPECT_EQ(raisedBy([&] { make("Date", {2026, lowest, 1}); }), refusal);
    EXPECT_EQ(raisedBy([&] { make("Date", {highest, 13, 1}); }), refusal) << "rolls over";
    for (const char* far : {"-2147483648-01-01", "4294969322-01-31", "99999999999999999999-01-01"})
        EXPECT_EQ(raisedBy([&] { assign(date, "SQLDate", {}, far); }), refusal) << far;
    for (const double seconds : {1e17, -1e17, 1e300, -1e300})
        EXPECT_EQ(raisedBy([&] { assign(date, "TotalSeconds", {}, seconds); }), refusal) << seconds;
    EXPECT_EQ(raisedBy([] { newDate(std::numeric_limits<std::time_t>::max()); }), refusal);
    EXPECT_EQ(ask(date, "SQLDateTime").toText(), "2026-01-31 09:05:07");
    // As far as it goes.
    EXPECT_EQ(ask(make("Date", {highest, 12, 31}), "Year").toInt32(), highest);
    EXPECT_EQ(ask(make("Date", {lowest + 1900, 6, 1}), "Year").toInt32(), lowest + 1900);
}

TEST_F(Dates, TheLastSecondBefore1970IsNoFailure) {
    const Value date = make("Date", {1970, 1, 1, 0, 59, 59}); // an hour east of UTC
    EXPECT_EQ(dateSeconds(date.object()), -1);
    EXPECT_EQ(ask(date, "SQLDateTime").toText(), "1970-01-01 00:59:59");
}

class FolderItems : public NothingLeft {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/folder-items-XXXXXX";
        folder = mkdtemp(pattern);
    }
    void TearDown() override { fs::remove_all(folder); }
    Value item(const std::string& path) { return make("FolderItem", {path}); }
    std::string folder;
};

TEST_F(FolderItems, TellAboutWhatIsThereAndWhatIsNot) {
    std::ofstream(folder + "/a ü.txt") << "12345";
    const Value file = item(folder + "/x/../a ü.txt");
    EXPECT_EQ(ask(file, "NativePath").toText(), folder + "/a ü.txt");
    EXPECT_EQ(ask(file, "Name").toText(), "a ü.txt");
    EXPECT_TRUE(ask(file, "Exists").toBoolean());
    EXPECT_FALSE(ask(file, "IsFolder").toBoolean());
    EXPECT_EQ(ask(file, "Length").toInt64(), 5);
    EXPECT_EQ(ask(file, "URLPath").toText(), "file://" + folder + "/a%20%C3%BC.txt");
    EXPECT_EQ(ask(ask(file, "Parent"), "NativePath").toText(), folder);
    EXPECT_FALSE(ask(file, "ModificationDate").isNil());
    const Value none = item(folder + "/none");
    EXPECT_FALSE(ask(none, "Exists").toBoolean());
    EXPECT_EQ(ask(none, "Length").toInt64(), 0);
    EXPECT_TRUE(ask(item("/"), "Parent").isNil());
    EXPECT_EQ(ask(item("/"), "Name").toText(), "/");
}

TEST_F(FolderItems, ListFoldersInAFixedOrder) {
    for (const char* name : {"c", "a", "b"})
        std::ofstream(folder + "/" + name) << name;
    const Value here = item(folder + "/");
    EXPECT_EQ(ask(here, "NativePath").toText(), folder);
    EXPECT_EQ(ask(here, "Count").toInt32(), 3);
    EXPECT_EQ(ask(ask(here, "Item", {1}), "Name").toText(), "a");
    EXPECT_EQ(ask(ask(here, "TrueItem", {3}), "Name").toText(), "c");
    EXPECT_NE(raisedBy([&] { ask(here, "Item", {0}); }), "");
    EXPECT_NE(raisedBy([&] { ask(here, "Item", {4}); }), "");
    EXPECT_EQ(ask(ask(here, "Child", {"new"}), "NativePath").toText(), folder + "/new");
    EXPECT_EQ(raisedBy([&] { ask(here, "Child", {"a/b"}); }),
              "InvalidArgumentException: \"a/b\" is not the name of one item");
}

TEST_F(FolderItems, RefuseAZeroByteWhichWouldEndThePathAtAnotherItem) {
    std::ofstream(folder + "/a") << "another";
    const std::string zero("a\0b", 3);
    const std::string refusal = "InvalidArgumentException: a path can't contain a zero character";
    EXPECT_EQ(raisedBy([&] { item(folder + "/" + zero); }), refusal);
    EXPECT_EQ(raisedBy([&] { ask(item(folder), "Child", {zero}); }), refusal);
    EXPECT_EQ(raisedBy([&] { newFolderItem(folder + "/" + zero); }), refusal);
    EXPECT_EQ(raisedBy([&] { item(std::string("\0", 1)); }), refusal);
    EXPECT_TRUE(fs::exists(folder + "/a"));
}

TEST_F(FolderItems, MakeCopyMoveAndDelete) {
    const Value here = item(folder);
    const Value sub = ask(here, "Child", {"sub"});
    ask(sub, "CreateAsFolder");
    EXPECT_TRUE(ask(sub, "Directory").toBoolean());
    std::ofstream(folder + "/f") << "content";
    const Value file = ask(here, "Child", {"f"});
    ask(file, "CopyFileTo", {sub});
    EXPECT_EQ(fs::file_size(folder + "/sub/f"), 7u);
    ask(file, "MoveFileTo", {ask(here, "Child", {"g"})});
    EXPECT_TRUE(fs::exists(folder + "/g"));
    EXPECT_EQ(raisedBy([&] { ask(file, "Delete"); }),
              "IOException: deleting " + folder + "/f failed: No such file or directory");
    EXPECT_NE(raisedBy([&] { ask(sub, "Delete"); }), "") << "a folder that is not empty stays";
    EXPECT_TRUE(fs::exists(folder + "/sub/f"));
}

} // namespace
