// FileEventsTest.cpp: files whose bytes a program produces: what the burn engine asks, and what the events get.
#include "host/runtime/MemoryBlock.hpp"
#include "tests/plugin/FSObjects.hpp"
#include "tests/plugin/Handlers.hpp"

#include <cstring>

namespace {

using namespace test;

constexpr const char* calculateSize = "calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64";
constexpr const char* prepare = "prepareFileForBurn As Boolean";
constexpr const char* produceFile =
    "produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, "
    "address As UInt64, blocksize As UInt32) As UInt32";
constexpr const char* prepareVerification = "prepareFileForVerification As Boolean";
constexpr const char* cleanup = "cleanupFileAfterBurn";

const char* const callbacks[] = {"calculateSizeOfFile:fork:estimating:", "prepareFileForBurn:",
                                 "produceFile:fork:intoBuffer:length:atAddress:blockSize:",
                                 "prepareFileForVerification:", "cleanupFileAfterBurn:"};

class FileEvents : public FSObjectTest {
  protected:
    // The file and its host object hold each other, which is kept; each test lets its own go at the end.
    ~FileEvents() override {
        for (const objc::Id file : files_)
            objc::release(file);
    }

    Ref object(std::vector<host::MemberSpec> handlers) {
        static int number = 0;
        const std::string name = "Producer" + std::to_string(++number);
        host::defineClass({name, "DRFileQRX", std::move(handlers), {}, {}});
        Ref made = make(name.c_str());
        call<void>("DRFileQRX", "Constructor(name as string)", made.get(), String("produced").get());
        EXPECT_NE(frame::slot(made.get()), nullptr);
        // The destructor finds no file then, and nobody is released twice.
        files_.push_back(std::exchange(frame::slot(made.get()), nullptr));
        return made;
    }
    objc::Id file() const { return files_.back(); }
    bool responds(const char* selector) const {
        return objc::send<"respondsToSelector:", objc::Boolean>(file(), objc::sel_registerName(selector)) !=
               0;
    }
    uint64_t size(int fork = 0, bool estimating = false) const {
        return objc::send<"calculateSizeOfFile:fork:estimating:", uint64_t>(file(), file(), int32_t{fork},
                                                                            objc::Boolean{estimating});
    }
    uint32_t produce(void* buffer, uint32_t length, uint64_t address) const {
        return objc::send<"produceFile:fork:intoBuffer:length:atAddress:blockSize:", uint32_t>(
            file(), file(), int32_t{1}, buffer, length, address, uint32_t{2048});
    }

    std::vector<objc::Id> files_;
};

TEST_F(FileEvents, OnlyWhatIsImplementedIsAnsweredFor) {
    const Ref host = object({on(produceFile, [](REALobject, Arguments) { return Value(0); })});
    for (const char* selector : callbacks)
        EXPECT_EQ(responds(selector), std::strstr(selector, "produceFile") != nullptr) << selector;
    EXPECT_TRUE(responds("baseName"));
    EXPECT_FALSE(responds("noSuchMessage"));
}

TEST_F(FileEvents, WithoutEventsTheCallbacksAnswerTheirDefaults) {
    const Ref host = object({});
    char buffer[8] = "before";
    EXPECT_EQ(size(), 0u);
    EXPECT_EQ(produce(buffer, 8, 0), 0u);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ((objc::send<"prepareFileForBurn:", objc::Boolean>(file(), file())), 0);
    EXPECT_EQ((objc::send<"prepareFileForVerification:", objc::Boolean>(file(), file())), 0);
    objc::send<"cleanupFileAfterBurn:", void>(file(), file());
}

TEST_F(FileEvents, TheSizeIsTheEventsUnchanged) {
    const Ref zero = object({on(calculateSize, [](REALobject, Arguments) { return Value(0); })});
    EXPECT_EQ(size(), 0u);
    const Ref large = object({on(calculateSize, [](REALobject, Arguments a) {
        EXPECT_EQ(a[0].toInt32(), 1);
        EXPECT_TRUE(a[1].toBoolean());
        return Value(uint64_t{0xFFFFFFFFFFFFFFF0});
    })});
    EXPECT_EQ(size(1, true), 0xFFFFFFFFFFFFFFF0u);
}

TEST_F(FileEvents, TheEventWritesIntoTheEnginesBuffer) {
    static REALobject self = nullptr;
    const Ref host = object({on(produceFile, [](REALobject object, Arguments a) -> Value {
        self = object;
        EXPECT_EQ(a[0].toInt32(), 1);
        EXPECT_FALSE(host::hasKnownSize(a[1].object()));
        EXPECT_EQ(a[2].toInt64(), 4000000000);
        EXPECT_EQ(a[3].toUInt64(), uint64_t{1} << 40);
        EXPECT_EQ(a[4].toInt32(), 2048);
        std::memcpy(host::memoryOf(a[1].object()).data(), "bytes", 5);
        return 5;
    })});
    char buffer[8] = {};
    EXPECT_EQ(produce(buffer, 4000000000, uint64_t{1} << 40), 5u)
        << "fewer than asked for, passed on as they are";
    EXPECT_STREQ(buffer, "bytes");
    EXPECT_EQ(self, host.get());
}

// The first two events are called without a reference to the host object, the others with one.
TEST_F(FileEvents, TheHostObjectIsHeldDuringThreeOfTheFiveEvents) {
    static std::vector<std::size_t> counts;
    const auto note = [](REALobject self, Arguments) -> Value {
        counts.push_back(harness::references(self));
        return 1;
    };
    const auto noteOnly = [](REALobject self, Arguments) -> Value {
        counts.push_back(harness::references(self));
        return {};
    };
    const auto noteBoolean = [](REALobject self, Arguments) -> Value {
        counts.push_back(harness::references(self));
        return true;
    };
    counts.clear();
    const Ref host = object({on(calculateSize, note), on(prepare, noteBoolean), on(produceFile, note),
                             on(prepareVerification, noteBoolean), on(cleanup, noteOnly)});
    char buffer[8];
    EXPECT_EQ(size(), 1u);
    EXPECT_EQ((objc::send<"prepareFileForBurn:", objc::Boolean>(file(), file())), 1);
    EXPECT_EQ(produce(buffer, 8, 0), 1u);
    EXPECT_EQ((objc::send<"prepareFileForVerification:", objc::Boolean>(file(), file())), 1);
    objc::send<"cleanupFileAfterBurn:", void>(file(), file());
    ASSERT_EQ(counts.size(), 5u);
    EXPECT_EQ(counts[0], counts[1]);
    for (const int held : {2, 3, 4})
        EXPECT_EQ(counts[static_cast<std::size_t>(held)], counts[0] + 1) << held;
}

TEST_F(FileEvents, TheFileKeepsItsHostObjectUntilItIsGone) {
    const Ref host = object({});
    EXPECT_EQ(harness::references(host.get()), 2u);
    objc::release(file());
    files_.pop_back();
    EXPECT_EQ(harness::references(host.get()), 1u);
}

TEST_F(FileEvents, ACopyIsTheFileItself) {
    const Ref host = object({});
    const auto before = objc::send<"retainCount", unsigned long>(file());
    const objc::Id copy = objc::send<"copyWithZone:">(file(), static_cast<void*>(nullptr));
    EXPECT_EQ(copy, file());
    EXPECT_EQ((objc::send<"retainCount", unsigned long>(file())), before + 1);
    objc::release(copy);
}

TEST_F(FileEvents, WithoutAHostObjectNothingIsDeniedAndEverythingHasItsDefault) {
    const Ref host = object({});
    REALobject& field = *objc::ivar<REALobject>(file(), "host");
    const REALobject kept = std::exchange(field, nullptr);
    for (const char* selector : callbacks)
        EXPECT_TRUE(responds(selector)) << selector;
    EXPECT_EQ(size(), 0u);
    char buffer[8];
    EXPECT_EQ(produce(buffer, 8, 0), 0u);
    EXPECT_EQ((objc::send<"prepareFileForBurn:", objc::Boolean>(file(), file())), 0);
    EXPECT_EQ((objc::send<"prepareFileForVerification:", objc::Boolean>(file(), file())), 0);
    objc::send<"cleanupFileAfterBurn:", void>(file(), file());
    field = kept;
}

TEST_F(FileEvents, TheFileHasTheNameAndIsVirtual) {
    const Ref host = object({});
    EXPECT_STREQ((objc::send<"UTF8String", const char*>(objc::send<"baseName">(file()))), "produced");
    EXPECT_TRUE((objc::send<"isVirtual", objc::Boolean>(file())));
    EXPECT_TRUE(objc::isKindOf<"MyDRFile">(file()));
    EXPECT_TRUE(objc::isKindOf<"DRFile">(file()));
}

} // namespace
