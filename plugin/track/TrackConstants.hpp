// TrackConstants.hpp: the numbers that say what a track's blocks are.
//
// The host evaluates the text after the "="; nothing here computes. Values: MMC's block types, data forms and
// session formats, and the sizes of their blocks in bytes.
#pragma once

#include "plugin/frame/PluginInterface.h"

namespace track {

// In the order of declaration.
inline REALconstant constants[] = {
    {"kDRBlockSizeAudio = 2352", {}},
    {"kDRBlockSizeMode1Data = 2048", {}},
    {"kDRBlockSizeMode2Data = 2332", {}},
    {"kDRBlockSizeMode2Form1Data = 2048", {}},
    {"kDRBlockSizeMode2Form2Data = 2324", {}},
    {"kDRBlockSizeDVDData = 2048", {}},
    {"kDRBlockTypeAudio = 0", {}},
    {"kDRBlockTypeMode1Data = 8", {}},
    {"kDRBlockTypeMode2Data = 13", {}},
    {"kDRBlockTypeMode2Form1Data = 10", {}},
    {"kDRBlockTypeMode2Form2Data = 12", {}},
    {"kDRBlockTypeDVDData = 8", {}},
    {"kDRDataFormAudio = 0", {}},
    {"kDRDataFormMode1Data = 16", {}},
    {"kDRDataFormMode2Data = 32", {}},
    {"kDRDataFormMode2Form1Data = 32", {}},
    {"kDRDataFormMode2Form2Data = 32", {}},
    {"kDRDataFormDVDData = 16", {}},
    {"kDRTrackModeAudio = 0", {}},
    {"kDRTrackMode1Data = 4", {}},
    {"kDRTrackMode2Data = 4", {}},
    {"kDRTrackMode2Form1Data = 4", {}},
    {"kDRTrackMode2Form2Data = 4", {}},
    {"kDRTrackModeDVDData = 5", {}},
    {"kDRSessionFormatAudio = 0", {}},
    {"kDRSessionFormatMode1Data = 0", {}},
    {"kDRSessionFormatCDI = 16", {}},
    {"kDRSessionFormatCDXA = 32", {}},
    {"kDRSessionFormatDVDData = 0", {}},
    {"DRFlagSubchannelDataRequested = 2", {}},
};

} // namespace track
