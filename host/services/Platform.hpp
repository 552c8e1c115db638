// Platform.hpp: the host's own view of the platform, found at run time; without one everything here does
// nothing.
#pragma once

#include "plugin/frame/PluginInterface.h"

#include <string>
#include <string_view>

namespace host {

bool hasPlatform();

// Tells the platform the time zone that TZ names: its own classes don't look there, so a program's dates and theirs would
// differ. Before the platform is loaded, since it reads its own variable once, and before there are threads.
void nameTheTimeZone();

// What else TZ may say (CET-1CEST,M3.5.0,M10.5.0/3) the platform gets as rules, once it is there: those of the C library, which
// the program's dates go by.
void givePlatformTheTimeZone();

// An autorelease pool around a top-level statement, or around an event handler on a thread of the platform's.
class Pool {
  public:
    Pool();
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

  private:
    void* pool_;
};

// Makes the calling thread known to the platform until it ends; the main thread needs none of it.
void registerThread();

// Lets the platform deliver what waits for this thread's run loop, for at most that many seconds, with the
// BASIC lock given up meanwhile. Without a platform it sleeps. What App.DoEvents and Sleep do.
void runLoop(double seconds);

// Raises a platform exception on a thread of the platform's own. Returns on the main thread, where programs run and nobody
// waits for one, and without a platform.
void raiseOnPlatformThread(const std::string& name, const std::string& reason);

// A new platform string, or null without a platform or when it can't decode the bytes.
CFStringRef newPlatformString(REALstring string);

} // namespace host
