// DRCDTextBlock: the CD-Text of an audio disc in one language.
#ifndef DISCRECORDING_DRCDTEXTBLOCK_H
#define DISCRECORDING_DRCDTEXTBLOCK_H

#import "DRCDTextConstants.h"
#import <Foundation/Foundation.h>

/**
 * What an audio disc says about itself and its tracks, in one language and one character set. A disc
 * has up to eight blocks, and several may have the same language. A block holds about 3000 bytes of
 * text; up to 160 to a text are advised.
 *
 * The keys of DRCDTextConstants.h lead to NSString values, but for MCNISRC (NSData: up to 13 bytes for
 * the disc and 12 for a track) and GenreCode (NSNumber, 1 to 28). DiscIdent, Genre and GenreCode are
 * the disc's only. TOC, TOC2 and Size (NSData) are the disc's too; they are read and never written.
 */
@interface DRCDTextBlock : NSObject {
  @private
    NSString* _language;
    DRCDTextEncoding _encoding;
    NSDictionary* _properties;
    NSMutableArray* _tracks; // of NSMutableDictionary objects; the first is the disc's, and always there
}

/** An autoreleased block; see initWithLanguage:encoding:. */
+ (DRCDTextBlock*)cdTextBlockWithLanguage:(NSString*)language encoding:(DRCDTextEncoding)encoding;
/**
 * The blocks in whole packs of 18 bytes, with or without the four bytes that a drive puts before them.
 * Autoreleased; nil when the packs can't be read, and then the reason goes to the log.
 */
+ (NSArray*)arrayOfCDTextBlocksFromPacks:(NSData*)packs;

/**
 * An empty block. The language is an ISO 639 code, "" (or nil) when unknown; the disc will say
 * "unknown" also for one that it has no code for. No disc has UTF-8, so a block of that encoding holds
 * what ISO Latin 1 can and is written so. Nil for an encoding that is none of the four.
 */
- (id)initWithLanguage:(NSString*)language encoding:(DRCDTextEncoding)encoding;

/** The language that the block was made with. */
- (NSString*)language;
/** The encoding that the block was made with. */
- (DRCDTextEncoding)encoding;

/** All six properties. */
- (NSDictionary*)properties;
/**
 * Replaces the properties; what is absent gets its default. The language is given as the disc's code
 * or as an ISO 639 code, and is always answered as the disc's code. Character code and encoding stay
 * what they are, whatever is given.
 */
- (void)setProperties:(NSDictionary*)properties;

/** A copy of all dictionaries: the disc's at 0, that of track n at n. */
- (NSArray*)trackDictionaries;
/**
 * Replaces all dictionaries. Texts are made to fit the character set: read them back to see what the
 * disc will say. A key that has no place there, or a value of a wrong kind, raises
 * NSInvalidArgumentException and changes nothing.
 */
- (void)setTrackDictionaries:(NSArray*)tracks;

/** One value; nil when there is none. Track 0 is the disc. */
- (id)objectForKey:(NSString*)key ofTrack:(NSUInteger)trackIndex;
/** Sets one value as setTrackDictionaries: does; nil removes it. A track beyond the last one is added. */
- (void)setObject:(id)value forKey:(NSString*)key ofTrack:(NSUInteger)trackIndex;

/** The bytes of text that don't fit on the disc and will be cut off; 0 when all fit. Nothing is changed. */
- (uint32_t)flatten;

@end

#endif
