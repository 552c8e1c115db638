// disc-drives: makes, shows, loads and checks drives.
#include "CommandLine.hpp"

int main(int count, char** arguments) { return drives::runCommandLine(count, arguments); }
