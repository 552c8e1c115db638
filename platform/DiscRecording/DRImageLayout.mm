// DRImageLayout: what an image file burns; an opaque layout for DRBurn.
#import "DRImageLayout.h"
#include "PathStrings.hpp"
#include "images/ReadImage.hpp"

@interface DRImageLayout (Path)
- (NSString*)path;
@end

@implementation DRImageLayout

+ (DRImageLayout*)layoutForPath:(NSString*)path {
    if (path == nil)
        return nil;
    const auto image = engine::readImageFile(pathnames::bytesOf(path));
    if (!image.ok()) {
        NSLog(@"No image can be burned: %@", pathnames::textOf(image.error().message));
        return nil;
    }
    DRImageLayout* layout = [[[self alloc] init] autorelease];
    layout->_path = [path copy];
    return layout;
}

- (void)dealloc {
    [_path release];
    [super dealloc];
}

- (NSString*)path {
    return _path;
}

@end

engine::Result<void> DRReadImageLayout(DRImageLayout* layout, discrecording::BurnPlan& plan) {
    auto image = engine::readImageFile(pathnames::bytesOf([layout path]));
    if (!image.ok())
        return image.error();
    image->applyTo(plan.options);
    plan.layout = std::move(image->layout);
    return {};
}
