// ProducedBurn.hpp: a track whose data an event of a host class gives, and its burn, through the registered tables.
#pragma once

#include "host/runtime/Class.hpp"
#include "host/runtime/Harness.hpp"
#include "host/runtime/MemoryBlock.hpp"
#include "host/runtime/Object.hpp"
#include "plugin/frame/HostServices.hpp"
#include "plugin/frame/InstanceData.hpp"
#include "plugin/objc/Message.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/Pool.hpp"

#include <chrono>
#include <initializer_list>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace test {

constexpr const char* produceDataEvent =
    "produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, "
    "address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32";
constexpr const char* producePreGapEvent =
    "producePreGapForTrack(buffer As MemoryBlock, Bufferlen As UInt32, "
    "address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32";

inline host::MemberSpec handler(const char* declaration, host::Body body) {
    host::MemberSpec spec;
    spec.kind = host::MemberKind::Event;
    spec.declaration = host::parseDeclaration(declaration);
    spec.body = std::move(body);
    return spec;
}

// The five numbers of a track's blocks, as the constants of DRTrackQRX make them.
struct BlockNumbers {
    int size, type, form, session, mode;
};
constexpr BlockNumbers dataBlocks{2048, 8, 16, 0, 4}, audioBlocks{2352, 0, 0, 0, 0};

// Keys are platform strings whose text is their name.
inline objc::Id dictionaryOf(std::initializer_list<std::pair<const char*, objc::Id>> entries) {
    const objc::Id made = objc::sendClass<"NSMutableDictionary", "dictionary">();
    for (const auto& [key, value] : entries)
        objc::send<"setObject:forKey:", void>(made, value, nsString(key));
    return made;
}
inline objc::Id number(int value) { return objc::sendClass<"NSNumber", "numberWithInt:">(value); }
inline objc::Id boolean(bool value) {
    return objc::sendClass<"NSNumber", "numberWithBool:">(static_cast<objc::Boolean>(value));
}

// The only drive, in a folder that DISC_DRIVES names, with a blank medium of that kind.
inline void insertBlank(const std::filesystem::path& drives, const std::string& kind) {
    writeFile(drives / "drive-1/drive.json",
              R"({"format": 1, "vendor": "Test", "product": "Drive", "firmwareRevision": "1.00", )"
              R"("tray": "closed"})");
    writeFile(drives / "drive-1/medium.json",
              R"({"format": 1, "kind": ")" + kind + R"(", "capacityBlocks": )" +
                  (kind.starts_with("CD") ? "359849" : "2295104") + R"(, "state": "blank", "sessions": []})");
}

// A new object of a program's class with these handlers, which is its own producer.
inline host::Ref producedTrack(const char* className, std::vector<host::MemberSpec> handlers,
                               const BlockNumbers& numbers, int blocks) {
    if (!host::findClass(className))
        host::defineClass({className, "DRTrackQRX", std::move(handlers), {}, {}});
    host::Ref track = host::Ref::adopt(REALnewInstance(className));
    host::harness::member<void(REALobject)>("DRTrackQRX", "Constructor")(track.get());
    objc::send<"setProperties:", void>(frame::held(track.get()),
                                       dictionaryOf({{"DRTrackLengthKey", number(blocks)},
                                                     {"DRBlockSizeKey", number(numbers.size)},
                                                     {"DRBlockTypeKey", number(numbers.type)},
                                                     {"DRDataFormKey", number(numbers.form)},
                                                     {"DRSessionFormatKey", number(numbers.session)},
                                                     {"DRTrackModeKey", number(numbers.mode)}}));
    return track;
}

// Burns it over what is on the first drive's medium, and answers the state that the burn ends with.
inline std::string burnAndWait(const host::Ref& track) {
    using host::harness::member;
    const host::Ref device = host::Ref::adopt(
        member<REALobject(uint32_t)>("DRDeviceQRX", "device(index as UInt32) as DRDeviceQRX")(0));
    const host::Ref burn = host::Ref::adopt(REALnewInstance("DRBurnQRX"));
    member<void(REALobject, REALobject)>("DRBurnQRX", "Constructor(device as DRDeviceQRX)")(burn.get(),
                                                                                            device.get());
    const objc::Id platformBurn = frame::held(burn.get());
    objc::send<"setProperties:", void>(
        platformBurn, dictionaryOf({{"DRBurnOverwriteDiscKey", boolean(true)},
                                    {"DRBurnVerifyDiscKey", boolean(false)},
                                    {"DRBurnCompletionActionKey", nsString("DRBurnCompletionActionMount")},
                                    {"DRBurnFailureActionKey", nsString("DRBurnFailureActionNone")}}));
    member<void(REALobject, REALobject)>("DRBurnQRX", "writeLayout(track as DRTrackQRX)")(burn.get(),
                                                                                          track.get());
    while (true) {
        const Pool pool;
        const objc::Id status = objc::send<"status">(platformBurn);
        const std::string state = text(objc::send<"objectForKey:">(status, nsString("DRStatusStateKey")));
        if (state == "DRStatusStateDone") return state;
        if (state == "DRStatusStateFailed")
            return text(
                objc::send<"description">(objc::send<"objectForKey:">(status, nsString("DRErrorStatusKey"))));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace test
