// EraseProgress.hpp: what is an erase's about a progress panel: its names and its events.
#pragma once

#include "plugin/frame/Events.hpp"

namespace panels {

struct EraseProgress {
    static constexpr objc::FixedString platformClass = "DREraseProgressPanel";
    static constexpr const char* delegateName = "MyDREraseProgressPanelDelegateMethods";
    static constexpr objc::FixedString willBegin = "eraseProgressPanelWillBegin:";
    static constexpr objc::FixedString didFinish = "eraseProgressPanelDidFinish:";
    static constexpr objc::FixedString jobDidFinish = "eraseProgressPanel:eraseDidFinish:";

    using WillBegin = frame::Event<"eraseProgressPanelWillBegin", void(REALobject)>;
    using DidFinish = frame::Event<"eraseProgressPanelDidFinish", void(REALobject)>;
    using JobDidFinish = frame::Event<"eraseProgressPanelEraseDidFinish(erase as DREraseQRX) as boolean",
                                      REALboolean(REALobject, REALobject erase)>;

    // In the order of declaration, which is fixed.
    static frame::EventTable<WillBegin, DidFinish, JobDidFinish> events;
};

} // namespace panels
