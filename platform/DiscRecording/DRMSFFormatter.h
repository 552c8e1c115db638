// DRMSFFormatter: shows lengths on a disc in text fields, and reads them back.
#ifndef DISCRECORDING_DRMSFFORMATTER_H
#define DISCRECORDING_DRMSFFORMATTER_H

#import <Foundation/Foundation.h>

/** A formatter between DRMSF objects and text, in the format language of DRMSF's descriptionWithFormat:. */
@interface DRMSFFormatter : NSFormatter {
  @private
    NSString* _format;
}

/** Initialises with a format, which is copied; nil stands for "%02m:%02s:%02f". */
- (id)initWithFormat:(NSString*)format;
/** The format. */
- (NSString*)format;
/** Replaces the format, as initWithFormat: takes it. */
- (void)setFormat:(NSString*)format;

@end

#endif
