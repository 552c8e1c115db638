// ProgressPanel.hpp: the two progress panels by what is different in them, for tests of what they have in common.
#pragma once

#include "tests/plugin/PanelTest.hpp"

namespace test {

struct ProgressKind {
    const char* className;
    const char* delegateClass;
    // The events in the order of their table, and the platform's callbacks in the same order.
    const char* events[3];
    const char* callbacks[3];
    const char* jobClass;
    const char* panelMessage;

    bool ofBurn() const { return std::string(jobClass) == "DRBurnQRX"; }
};

inline constexpr ProgressKind burnProgress = {
    "DRBurnProgressPanelQRX",
    "MyDRBurnProgressPanelDelegateMethods",
    {"burnProgressPanelWillBegin", "burnProgressPanelDidFinish",
     "burnProgressPanelBurnDidFinish(burn As DRBurnQRX) As Boolean"},
    {"burnProgressPanelWillBegin:", "burnProgressPanelDidFinish:", "burnProgressPanel:burnDidFinish:"},
    "DRBurnQRX",
    "beginProgressPanelForBurn:layout:"};

inline constexpr ProgressKind eraseProgress = {
    "DREraseProgressPanelQRX",
    "MyDREraseProgressPanelDelegateMethods",
    {"eraseProgressPanelWillBegin", "eraseProgressPanelDidFinish",
     "eraseProgressPanelEraseDidFinish(erase As DREraseQRX) As Boolean"},
    {"eraseProgressPanelWillBegin:", "eraseProgressPanelDidFinish:", "eraseProgressPanel:eraseDidFinish:"},
    "DREraseQRX",
    "beginProgressPanelForErase:"};

// How a test is named.
inline void PrintTo(const ProgressKind& kind, std::ostream* out) {
    *out << (kind.ofBurn() ? "Burn" : "Erase");
}

enum { WillBegin, DidFinish, JobDidFinish };

// What a handler answers that only looks.
inline Value nothingOf(int event) { return event == JobDidFinish ? Value(false) : Value(); }

// Each test runs with the burn's panel and with the erase's.
class ProgressTest : public PanelTest, public testing::WithParamInterface<ProgressKind> {
  protected:
    const ProgressKind& kind() const { return GetParam(); }
    Ref progress(std::vector<host::MemberSpec> handlers) {
        return panelWith(kind().className, std::move(handlers));
    }
    Ref listening(int event, host::Body body) {
        return progress({on(kind().events[event], std::move(body))});
    }
    Ref listening(int event) {
        return listening(event, [=](REALobject, Arguments) { return nothingOf(event); });
    }
    void destroy(const Ref& panel) { harness::definition(kind().className)->destructor(panel.get()); }

    Ref aJob() { return kind().ofBurn() ? aBurn() : anErase(); }
    // The free-standing panel, a burn's with one track.
    void begin(const Ref& panel, REALobject job) {
        if (kind().ofBurn())
            call<void>(kind().className, "beginProgressPanelForBurn(burn as DRBurnQRX, track as DRTrackQRX)",
                       panel.get(), job, aTrack().get());
        else
            call<void>(kind().className, "beginProgressPanelForErase(erase as DREraseQRX)", panel.get(), job);
    }

    // ---- the platform's callbacks
    void tellWillBegin() {
        if (kind().ofBurn())
            objc::send<"burnProgressPanelWillBegin:", void>(delegate(), Id{});
        else
            objc::send<"eraseProgressPanelWillBegin:", void>(delegate(), Id{});
    }
    void tellDidFinish() {
        if (kind().ofBurn())
            objc::send<"burnProgressPanelDidFinish:", void>(delegate(), Id{});
        else
            objc::send<"eraseProgressPanelDidFinish:", void>(delegate(), Id{});
    }
    bool askJobDidFinish(Id job) {
        if (kind().ofBurn())
            return objc::send<"burnProgressPanel:burnDidFinish:", objc::Boolean>(delegate(), fake::shared,
                                                                                 job) != 0;
        return objc::send<"eraseProgressPanel:eraseDidFinish:", objc::Boolean>(delegate(), fake::shared,
                                                                               job) != 0;
    }
    bool tell(int event) {
        if (event == JobDidFinish) return askJobDidFinish(nullptr);
        event == WillBegin ? tellWillBegin() : tellDidFinish();
        return false;
    }
};

inline auto bothKinds() { return testing::Values(burnProgress, eraseProgress); }

} // namespace test
