// DRCDTextConstants.h: the keys of CD-Text, and the encodings that its blocks can have.
#ifndef DISCRECORDING_DRCDTEXTCONSTANTS_H
#define DISCRECORDING_DRCDTEXTCONSTANTS_H

#import "DRStringConstants.h"

/** Keys of a block's properties, and of the dictionaries of disc and tracks. */
#define DR_CDTEXT_STRINGS(X)                                                                                 \
    X(DRCDTextLanguageKey)                                                                                   \
    X(DRCDTextCharacterCodeKey)                                                                              \
    X(DRCDTextNSStringEncodingKey)                                                                           \
    X(DRCDTextCopyrightAssertedForSpecialMessagesKey)                                                        \
    X(DRCDTextCopyrightAssertedForNamesKey)                                                                  \
    X(DRCDTextCopyrightAssertedForTitlesKey)                                                                 \
    X(DRCDTextTitleKey)                                                                                      \
    X(DRCDTextPerformerKey)                                                                                  \
    X(DRCDTextSongwriterKey)                                                                                 \
    X(DRCDTextComposerKey)                                                                                   \
    X(DRCDTextArrangerKey)                                                                                   \
    X(DRCDTextSpecialMessageKey)                                                                             \
    X(DRCDTextDiscIdentKey)                                                                                  \
    X(DRCDTextGenreKey)                                                                                      \
    X(DRCDTextGenreCodeKey)                                                                                  \
    X(DRCDTextTOCKey)                                                                                        \
    X(DRCDTextTOC2Key)                                                                                       \
    X(DRCDTextClosedKey)                                                                                     \
    X(DRCDTextMCNISRCKey)                                                                                    \
    X(DRCDTextSizeKey)
DR_DECLARE_STRINGS(DR_CDTEXT_STRINGS)

/** The encodings that a block can have; each is the NSStringEncoding of that number. */
enum {
    DRCDTextEncodingASCII = 1,
    DRCDTextEncodingUTF8 = 4,
    DRCDTextEncodingISOLatin1Modified = 5,
    DRCDTextEncodingShiftJIS = 8
};
typedef NSUInteger DRCDTextEncoding;

#endif
