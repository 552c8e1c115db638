// UTF8: a string's characters as UTF-8, in a buffer of the caller's, and strings from UTF-8.
#import <Foundation/Foundation.h>

// The whole text with a zero behind it, or NO: it does not fit, or has a surrogate without a partner. Takes no
// memory, which is why it does not leave this to Foundation.
BOOL WriteUTF8(NSString* text, char* buffer, size_t size);

// A new string, or nil for bytes that are no UTF-8; or it raises. Not for bytes that begin with a mark, which
// Foundation drops.
NSString* NewStringOfUTF8(const unsigned char* bytes, size_t count);
