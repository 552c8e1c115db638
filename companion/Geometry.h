// Geometry.h: host objects whose instance data is one of the platform's geometry structures, as it is.
#import "companion/Holders.h"

// The host's names for the platform's numbers on this word size.
#if defined(CGFLOAT_IS_DBL) && CGFLOAT_IS_DBL
#define HOST_CGFLOAT "double"
_Static_assert(sizeof(CGFloat) == sizeof(double), "HOST_CGFLOAT must name the platform's type");
#else
#define HOST_CGFLOAT "single"
_Static_assert(sizeof(CGFloat) == sizeof(float), "HOST_CGFLOAT must name the platform's type");
#endif
#if __SIZEOF_POINTER__ == 8
#define HOST_NSUINTEGER "UInt64"
_Static_assert(sizeof(NSUInteger) == 8, "HOST_NSUINTEGER must name the platform's type");
#else
#define HOST_NSUINTEGER "UInt32"
_Static_assert(sizeof(NSUInteger) == 4, "HOST_NSUINTEGER must name the platform's type");
#endif

// A new NSRectQRX, or null where the host can't make one.
REALobject newHostRect(NSRect rect);
// The rectangle in an NSRectQRX; zeros for null.
NSRect rectOf(REALobject object);
// A new object of the class for the platform's range, rectangle, size or point; null for any other value.
REALobject newHostGeometry(NSValue* value);
