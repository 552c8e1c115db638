// FileFrameTest.cpp: what every callback of a produced file does with the host around its event, call by call.
#include "plugin/objc/Ownership.hpp"
#include "tests/plugin/Companion.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/OwnResolver.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <utility>
#include <vector>

namespace {

using namespace test;
using Steps = std::vector<std::string>;

// Written by services of the test's own, which pass everything on to the host's.
Steps steps;
REALobject watched = nullptr, block = nullptr;
REALproc event = nullptr; // implements every event

void note(const char* step, REALobject object) {
    if (object && object == watched) steps.emplace_back(step);
    if (object && object == block) steps.push_back(step + std::string(" the block"));
}
REALproc lookedUp(REALobject object, uintptr_t) {
    note("look up", object);
    return event;
}
void locked(REALobject object) {
    note("lock", object);
    hostsOwn<void(REALobject)>("REALLockObject")(object);
}
void unlocked(REALobject object) {
    note("unlock", object);
    hostsOwn<void(REALobject)>("REALUnlockObject")(object);
}
REALmemoryBlock pointed(void* pointer) {
    block = hostsOwn<REALmemoryBlock(void*)>("PtrToMemoryBlock")(pointer);
    steps.emplace_back("make the block");
    return block;
}

class FileFrame : public PluginTest {
  protected:
    void SetUp() override {
        OwnServices::put("GetEventInstance", lookedUp);
        OwnServices::put("REALLockObject", locked);
        OwnServices::put("REALUnlockObject", unlocked);
        OwnServices::put("PtrToMemoryBlock", pointed);
        companion::offerRegistry();
        REALPluginMain(OwnServices::resolve);
        host_ = make("DRFileQRX");
        call<void>("DRFileQRX", "Constructor(name as string)", host_.get(), String("produced").get());
        file_ = std::exchange(frame::slot(host_.get()), nullptr);
        ASSERT_NE(file_, nullptr);
        watched = host_.get();
        steps.clear();
    }
    void TearDown() override {
        watched = nullptr;
        objc::release(file_);
    }

    Ref host_;
    objc::Id file_ = nullptr;
};

REALboolean seenEstimating{0};

uint64_t size(REALobject, int32_t, REALboolean estimating) {
    steps.emplace_back("event");
    seenEstimating = estimating;
    return 7;
}
// Any byte but 0 is true, and stays what it is.
REALboolean allBits(REALobject) {
    steps.emplace_back("event");
    return static_cast<REALboolean>(0xFF);
}
uint32_t produce(REALobject, int32_t, REALmemoryBlock given, uint32_t, uint64_t, uint32_t) {
    steps.emplace_back(given == block ? "event with the block" : "event");
    return 5;
}
void cleanUp(REALobject) { steps.emplace_back("event"); }

TEST_F(FileFrame, TheSizeIsAskedWithoutAReference) {
    event = reinterpret_cast<REALproc>(size);
    EXPECT_EQ((objc::send<"calculateSizeOfFile:fork:estimating:", uint64_t>(file_, file_, int32_t{0},
                                                                            objc::Boolean{0xFF})),
              7u);
    EXPECT_EQ(steps, (Steps{"look up", "event"}));
    EXPECT_EQ(seenEstimating, 0xFF) << "the platform's byte as it is";
}

TEST_F(FileFrame, APreparationIsAskedWithoutAReferenceForTheBurnAndWithOneForTheVerification) {
    event = reinterpret_cast<REALproc>(allBits);
    EXPECT_EQ((objc::send<"prepareFileForBurn:", objc::Boolean>(file_, file_)), 0xFF);
    EXPECT_EQ(steps, (Steps{"look up", "event"}));
    steps.clear();
    EXPECT_EQ((objc::send<"prepareFileForVerification:", objc::Boolean>(file_, file_)), 0xFF);
    EXPECT_EQ(steps, (Steps{"look up", "lock", "event", "unlock"}));
}

TEST_F(FileFrame, TheBlockIsMadeBehindTheLockAndLetGoInFrontOfTheUnlock) {
    event = reinterpret_cast<REALproc>(produce);
    char buffer[8];
    EXPECT_EQ(
        (objc::send<"produceFile:fork:intoBuffer:length:atAddress:blockSize:", uint32_t>(
            file_, file_, int32_t{0}, static_cast<void*>(buffer), uint32_t{8}, uint64_t{0}, uint32_t{2048})),
        5u);
    EXPECT_EQ(steps, (Steps{"look up", "lock", "make the block", "event with the block", "unlock the block",
                            "unlock"}));
}

TEST_F(FileFrame, TheEndIsToldWithAReference) {
    event = reinterpret_cast<REALproc>(cleanUp);
    objc::send<"cleanupFileAfterBurn:", void>(file_, file_);
    EXPECT_EQ(steps, (Steps{"look up", "lock", "event", "unlock"}));
}

} // namespace
