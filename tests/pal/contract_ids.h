// Ids in contract.rc.
#pragma once

#define NEUTRAL_STRING 5
#define FIRST_STRING 160
#define CONTRACT_MENU 132
#define CONTRACT_CONTROLS 134

// Controls of the dialog CONTRACT_CONTROLS.
#define TALKING_LABEL 1001
#define MUTE_LABEL 1002
#define CHECK_BOX 1004
#define PUSH_BUTTON 1005
#define EDIT 1006
#define LIST 1007
#define OTHER_LIST 1008
#define TRACKBAR 1009
