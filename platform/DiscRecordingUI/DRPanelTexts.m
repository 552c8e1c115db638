// DRPanelTexts.m: looks translations up, and writes speeds.
#import "DRPanelTexts.h"
#import "DRDeviceConstants.h"

NSString* DRPanelText(NSString* english) {
    return [[NSBundle mainBundle] localizedStringForKey:english value:english table:@"DiscRecordingUI"];
}

NSString* DRTextOfSpeed(float speed, NSString* mediaClass) {
    float single = DRDeviceBurnSpeedDVD1x;
    if ([mediaClass isEqual:DRDeviceMediaClassCD])
        single = DRDeviceBurnSpeedCD1x;
    if ([mediaClass isEqual:DRDeviceMediaClassBD])
        single = DRDeviceBurnSpeedBD1x;
    const double factor = speed / single;
    // Media are rated in whole steps above 3x, and in halves or less below.
    NSString* rated = [NSString stringWithFormat:factor >= 2.95 ? @"%.0f" : @"%.1f", factor];
    if ([rated hasSuffix:@".0"])
        rated = [rated substringToIndex:[rated length] - 2];
    return [NSString
        stringWithFormat:DRTextSpeedFormat, rated, [NSString stringWithFormat:@"%.0f", (double)speed]];
}
