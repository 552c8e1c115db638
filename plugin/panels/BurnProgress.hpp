// BurnProgress.hpp: what is a burn's about a progress panel: its names and its events.
#pragma once

#include "plugin/frame/Events.hpp"

namespace panels {

struct BurnProgress {
    static constexpr objc::FixedString platformClass = "DRBurnProgressPanel";
    static constexpr const char* delegateName = "MyDRBurnProgressPanelDelegateMethods";
    static constexpr objc::FixedString willBegin = "burnProgressPanelWillBegin:";
    static constexpr objc::FixedString didFinish = "burnProgressPanelDidFinish:";
    static constexpr objc::FixedString jobDidFinish = "burnProgressPanel:burnDidFinish:";

    using WillBegin = frame::Event<"burnProgressPanelWillBegin", void(REALobject)>;
    using DidFinish = frame::Event<"burnProgressPanelDidFinish", void(REALobject)>;
    using JobDidFinish = frame::Event<"burnProgressPanelBurnDidFinish(burn as DRBurnQRX) as boolean",
                                      REALboolean(REALobject, REALobject burn)>;

    // In the order of declaration, which is fixed.
    static frame::EventTable<WillBegin, DidFinish, JobDidFinish> events;
};

} // namespace panels
