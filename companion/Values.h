// Values.h: platform values as host values, as far as the companion hands any out.
#import "companion/Host.h"

// A new host Dictionary; null for nil. Values that have no counterpart in the host are there as nil.
REALdictionary newHostDictionary(NSDictionary* dictionary);
