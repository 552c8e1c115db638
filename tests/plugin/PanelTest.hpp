// PanelTest.hpp: programs' panel objects over panels that show nothing, and what tests of all five classes want to know.
#pragma once

#include "plugin/bridge/Registry.hpp"
#include "plugin/bridge/Text.hpp"
#include "plugin/bridge/Wrappers.hpp"
#include "tests/plugin/Drives.hpp"
#include "tests/plugin/FakePanels.hpp"
#include "tests/plugin/Handlers.hpp"
#include "tests/plugin/PluginTest.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace test {

using objc::Id;

inline unsigned long retains(Id object) { return objc::send<"retainCount", unsigned long>(object); }

// The object that an event was given, or null.
inline REALobject objectOf(const Value& argument) { return argument.isNil() ? nullptr : argument.object(); }

class PanelTest : public LoadedTest {
  protected:
    void SetUp() override {
        companion::offerRegistry();
        LoadedTest::SetUp();
        fake::offerPanels();
    }

    // An object of a program's class with these handlers, not constructed.
    Ref objectWith(const char* className, std::vector<host::MemberSpec> handlers) {
        static int number = 0;
        const std::string name = "ProgramsPanel" + std::to_string(++number);
        host::defineClass({name, className, std::move(handlers), {}, {}});
        return make(name.c_str());
    }
    // The same with a panel.
    Ref panelWith(const char* className, std::vector<host::MemberSpec> handlers) {
        Ref panel = objectWith(className, std::move(handlers));
        fake::newPanel(std::string(className).substr(0, std::string(className).size() - 3).c_str());
        construct(className, panel);
        fake::told.clear();
        return panel;
    }
    void construct(const char* className, const Ref& panel) {
        call<void>(className, "Constructor", panel.get());
    }

    // The delegate of the panel that was made last.
    Id delegate() { return objc::send<"delegate">(fake::shared); }
    REALobject& hostOfDelegate() { return *objc::ivar<REALobject>(delegate(), "host"); }
    // What a progress panel's delegate has of the burn or erase that was begun last.
    REALobject job() { return *objc::ivar<REALobject>(delegate(), "job"); }

    Id aDevice() { return objc::send<"objectAtIndex:">(objc::sendClass<"DRDevice", "devices">(), 0ul); }
    Ref aBurn() { return Ref::adopt(NewDRBurnQRX(objc::sendClass<"DRBurn", "burnForDevice:">(aDevice()))); }
    Ref anErase() {
        return Ref::adopt(NewDREraseQRX(
            objc::autoreleased(objc::send<"initWithDevice:">(objc::alloc<"DRErase">(), aDevice()))));
    }
    Ref aTrack() {
        return Ref::adopt(NewDRTrackQRX(objc::autoreleased(objc::send<"init">(objc::alloc<"DRTrack">()))));
    }
    // A host array of these objects, one reference to it.
    Ref arrayOf(const std::vector<REALobject>& objects) {
        const REALarray array = REALCreateArrayObject(-1);
        for (std::size_t i = 0; i < objects.size(); ++i)
            REALInsertArrayValueObject(array, static_cast<int32_t>(i), objects[i]);
        return Ref::adopt(reinterpret_cast<REALobject>(array));
    }

    // How often the panels were told a message that begins so.
    long timesTold(const std::string& start) {
        return std::ranges::count_if(fake::told,
                                     [&](const auto& one) { return one.message.starts_with(start); });
    }

    OwnDrives drives;
};

inline const Raised panelIsBroken{"RuntimeException", "The panel is broken."};

} // namespace test
