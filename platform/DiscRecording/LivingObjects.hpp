// LivingObjects: objects that another thread may look for without keeping them alive.
#pragma once

#import <Foundation/Foundation.h>

namespace discrecording {

/// A number stands for an object from enter() until its last reference goes; none is used twice. The class's
/// -release must be releaseLiving(), so that nobody finds an object that is being deallocated:
///
///     - (oneway void)release {
///         if (discrecording::releaseLiving(_number, self))
///             [self dealloc];
///     }
uint64_t enterLiving(id object);

/// Drops one reference. True for the last one: the object can't be found any more, and the caller
/// deallocates it.
bool releaseLiving(uint64_t number, id object);

/// Retained and autoreleased; nil when it is gone.
id livingObject(uint64_t number);

} // namespace discrecording
