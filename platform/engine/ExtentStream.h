/* ExtentStream.h: the stand-in for a file's contents while libisofs lays out the image.
 *
 * libisofs asks a stream for its size and its identity and gives it a place on the disc; the engine writes
 * the contents there itself. This is C because `struct iso_stream` has a member named `class`. */
#ifndef PLATFORM_ENGINE_EXTENTSTREAM_H
#define PLATFORM_ENGINE_EXTENTSTREAM_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct iso_stream;

/* A stream of `size` bytes with one reference, which the file node that takes it will own; NULL when there is
 * no memory. Streams of equal `number` (from 1) share one place. */
struct iso_stream* engine_extent_stream(uint64_t size, uint64_t number);

#ifdef __cplusplus
}
#endif
#endif
