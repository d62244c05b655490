// Ids in contract.rc.
#pragma once

#define NEUTRAL_STRING 5
#define FIRST_STRING 160
#define CONTRACT_ICON 170
#define CONTRACT_DATA 171
#define CONTRACT_SOUND 172
#define CONTRACT_MENU 132
#define CONTRACT_DIALOG 133
