// DRPanelConstants.m: the panels' names, defined from the list that declares them.
#import "DRPanelConstants.h"

DR_PANEL_STRINGS(DR_DEFINE_STRING)
