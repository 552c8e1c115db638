// DRStringConstants.h: how the lists of string constants become declarations.
#ifndef DISCRECORDING_DRSTRINGCONSTANTS_H
#define DISCRECORDING_DRSTRINGCONSTANTS_H

#import <Foundation/Foundation.h>

// A constant's text is its own name, so each list below names every constant once: the headers declare from
// it, and one source file defines from it.
#define DR_DECLARE_STRING(name) extern NSString* const name;
#define DR_DEFINE_STRING(name) NSString* const name = @ #name;
#define DR_DECLARE_STRINGS(list) list(DR_DECLARE_STRING)

#endif
