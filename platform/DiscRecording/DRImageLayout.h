// DRImageLayout: what an image file burns; an opaque layout for DRBurn.
#ifndef DISCRECORDING_DRIMAGELAYOUT_H
#define DISCRECORDING_DRIMAGELAYOUT_H

#import <Foundation/Foundation.h>

#include "BurnProcess.hpp"

/**
 * Remembers the file, which is read again for each burn: a layout is then good for several, and what the file says
 * is what is burned.
 */
@interface DRImageLayout : NSObject {
  @private
    NSString* _path;
}

/** Nil for a file that is no image, or that can't be read; the reason goes to the log. */
+ (DRImageLayout*)layoutForPath:(NSString*)path;

@end

/// Sets the plan's layout, and what the image says of the disc. Errors: BadLayout, FileLocationConflict,
/// AudioFileNotSupported.
engine::Result<void> DRReadImageLayout(DRImageLayout* layout, discrecording::BurnPlan& plan);

#endif
