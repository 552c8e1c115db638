// XXH3, with the widest vectors that this processor has where the library can find that out: several times as fast.
#pragma once

#include <xxhash.h>

#ifdef DISC_XXH3_DISPATCH
#include <xxh_x86dispatch.h>
#endif
