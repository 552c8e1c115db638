// Startup.hpp: what the platform needs before its first object is made.
#pragma once

// Fetches the instance registry, loads the application framework and has the exception bridge prepared, each
// once in the life of the process. Safe to call any number of times; every class constructor begins with it.
void CocoaInit();
