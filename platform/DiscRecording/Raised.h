// Raised: stops what the platform raises before it passes through the engine.
#ifndef DISCRECORDING_RAISED_H
#define DISCRECORDING_RAISED_H

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Runs the body. Answers nil, or "NAME: REASON" of what it raised, autoreleased.
NSString* DRRaisedBy(void (*body)(void* context), void* context);

#ifdef __cplusplus
}

namespace discrecording {

/// The same for anything that can be called.
template <typename Body> NSString* raisedBy(Body body) {
    return DRRaisedBy([](void* context) { (*static_cast<Body*>(context))(); }, &body);
}

} // namespace discrecording
#endif

#endif
