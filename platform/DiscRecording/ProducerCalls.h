// ProducerCalls: what the engine's threads need to send messages.
#ifndef DISCRECORDING_PRODUCERCALLS_H
#define DISCRECORDING_PRODUCERCALLS_H

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Runs the body on a thread that Foundation may not know, with an autorelease pool of its own. What the platform
 * raises in it ends there: its reason comes back as text that the caller frees, else NULL. GCC's C++ can't catch
 * a platform exception, so this is C.
 */
char* DRCallProducer(void (*body)(void* context), void* context);

#ifdef __cplusplus
}
#endif

#endif
