// MemoryBlocksTest.cpp: memory blocks that change their size around a conversion.
#include "host/runtime/Invoke.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "plugin/bridge/DataView.hpp"
#include "plugin/bridge/Variants.hpp"
#include "tests/plugin/PlatformObjects.hpp"

#include <cstring>

namespace {

using namespace test;

class MemoryBlocks : public LoadedTest {
  protected:
    static Ref blockOf(std::string_view text) {
        Ref made = host::newMemoryBlock(static_cast<int64_t>(text.size()));
        std::memcpy(REALMemoryBlockGetPtr(made.get()), text.data(), text.size());
        return made;
    }
    static void resize(const Ref& block, int size) { host::assign(Value(block), "Size", {}, size); }
    static std::string bytesOf(objc::Id data) {
        return {static_cast<const char*>(objc::send<"bytes", const void*>(data)),
                objc::send<"length", unsigned long>(data)};
    }
};

TEST_F(MemoryBlocks, DataIsWhatTheBlockHeldWhenItWasMade) {
    const Ref block = blockOf("sixsix");
    const objc::Id six = NewNSData(block.get());
    resize(block, 3);
    const objc::Id three = NewNSData(block.get());
    resize(block, 1 << 20);
    const objc::Id many = NewNSData(block.get());
    resize(block, 0);
    EXPECT_EQ(NewNSData(block.get()), nullptr) << "deliberately no empty data";
    EXPECT_EQ(bytesOf(six), "sixsix");
    EXPECT_EQ(bytesOf(three), "six");
    EXPECT_EQ(bytesOf(many), "six" + std::string((1 << 20) - 3, '\0'));
}

TEST_F(MemoryBlocks, AViewKeepsTheBlockButItsLengthIsThatOfItsBeginning) {
    Ref block = blockOf("0123456789");
    const REALmemoryBlock known = block.get();
    {
        const rbData view(known, 0, 0);
        block = Ref();
        EXPECT_EQ(std::string(view.bytes(), 10), "0123456789") << "nobody else holds it";
        resize(Ref::borrow(known), 4);
        EXPECT_EQ(view.length(), 10); // its bytes went with the resizing and may not be read now
        EXPECT_EQ(rbData(known, 0, 0).length(), 4);
        EXPECT_EQ(harness::references(known), 1u);
    }
    EXPECT_EQ(harness::liveInstances()["MemoryBlock"], 0u);
}

} // namespace
