// Values.h: platform values as host values, as far as the companion hands any out.
#import "companion/Host.h"

// A new host Dictionary; null for nil.
//
// Strings and URLs are there as text; numbers; dates as Date, local and in whole seconds; data as MemoryBlock;
// ranges, rectangles, sizes and points as NSRangeQRX and so on; arrays and dictionaries; boxed host objects
// themselves; other objects by the name of their class, as NSErrorQRX. Nil are: NSNull, sets and all objects whose
// class the host has no class for; other NSValues; data of 2 GiB and more; dates before the year 1 or after 4000;
// a collection inside itself, deeper than 32 levels, or after 10000 others.
REALdictionary newHostDictionary(NSDictionary* dictionary);
