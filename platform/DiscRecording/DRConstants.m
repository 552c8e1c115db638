// DRConstants.m: every string and speed constant, defined from the lists that declare them.
#import "DRBurnConstants.h"
#import "DRCDTextConstants.h"
#import "DRDeviceConstants.h"
#import "DREraseConstants.h"
#import "DRFSObjectConstants.h"
#import "DRStatusConstants.h"
#import "DRTrackConstants.h"

DR_DEVICE_STRINGS(DR_DEFINE_STRING)
DR_BURN_STRINGS(DR_DEFINE_STRING)
DR_CDTEXT_STRINGS(DR_DEFINE_STRING)
DR_STATUS_STRINGS(DR_DEFINE_STRING)
DR_ERASE_STRINGS(DR_DEFINE_STRING)
DR_TRACK_STRINGS(DR_DEFINE_STRING)
DR_FSOBJECT_STRINGS(DR_DEFINE_STRING)
DR_FILE_STRINGS(DR_DEFINE_STRING)

NSString* const kDRPreGapIsRequiredKey = @"DRPreGapIsRequiredKey";

const float DRDeviceBurnSpeedCD1x = 176.4f;
const float DRDeviceBurnSpeedDVD1x = 1385.0f;
const float DRDeviceBurnSpeedBD1x = 4496.0f;
const float DRDeviceBurnSpeedHDDVD1x = 4496.0f;
const float DRDeviceBurnSpeedMax = 65535.0f;
