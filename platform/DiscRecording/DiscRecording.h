// DiscRecording.h: the whole of the disc recording classes.
#ifndef DISCRECORDING_DISCRECORDING_H
#define DISCRECORDING_DISCRECORDING_H

#import "DRBurn.h"
#import "DRBurnConstants.h"
#import "DRCDTextBlock.h"
#import "DRCDTextConstants.h"
#import "DRDevice.h"
#import "DRDeviceConstants.h"
#import "DRErase.h"
#import "DREraseConstants.h"
#import "DRFSObject.h"
#import "DRFSObjectConstants.h"
#import "DRFile.h"
#import "DRFolder.h"
#import "DRMSF.h"
#import "DRMSFFormatter.h"
#import "DRNotificationCenter.h"
#import "DRStatusConstants.h"
#import "DRTrack.h"
#import "DRTrackConstants.h"

#endif
