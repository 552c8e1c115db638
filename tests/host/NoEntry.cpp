// NoEntry.cpp: a shared library that is no plug-in.
extern "C" int NotTheEntry();
extern "C" int NotTheEntry() { return 1; }
