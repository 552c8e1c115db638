/* ExceptionFrame.h: runs a body inside an Objective-C exception frame.
 *
 * Plain C, because the implementation is the plug-in's one file that is not C++: a @catch in Objective-C++
 * meets the C++ personality and crashes when a platform exception passes. */
#ifndef PLUGIN_OBJC_EXCEPTIONFRAME_H
#define PLUGIN_OBJC_EXCEPTIONFRAME_H

#ifdef __cplusplus
extern "C" {
#endif

/* Runs body(context). Answers the NSException that it raised, or null when it returned. Anything else that is
 * thrown, platform object or C++ exception, flies on unchanged. */
void* objcRunInExceptionFrame(void (*body)(void* context), void* context);

#ifdef __cplusplus
}
#endif

#endif
