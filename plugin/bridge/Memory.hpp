// Memory.hpp: zero-filled heap memory.
#pragma once

#include <cstdint>

// Null for a size below 1 or above 0x7FFFFFFF, and when there is no memory.
void* AllocateClearMemory(int64_t size);
void ClearMemory(void* memory, int64_t size);
void FreeMemoryNow(void* memory);
