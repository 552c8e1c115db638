// Memory.cpp: zero-filled heap memory.
#include "plugin/bridge/Memory.hpp"

#include <cstdlib>
#include <cstring>

void* AllocateClearMemory(int64_t size) {
    if (size < 1 || size > 0x7FFFFFFF) return nullptr;
    return std::calloc(1, static_cast<std::size_t>(size));
}

void ClearMemory(void* memory, int64_t size) { std::memset(memory, 0, static_cast<std::size_t>(size)); }

void FreeMemoryNow(void* memory) { std::free(memory); }
