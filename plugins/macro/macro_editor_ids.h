// Numbers of the editor's dialog, controls and texts.
#pragma once

#define IDD_MACRO_EDITOR 101

#define IDC_MACRO 1001
#define IDC_KEYS 1002
#define IDC_INSERT 1003
#define IDC_MISTAKE 1004

#define IDS_PLACE 200  // before what is wrong
#define IDS_NOT_CLOSED 201
#define IDS_NOT_OPENED 202
#define IDS_UNKNOWN_KEY 203
#define IDS_NOT_A_MODIFIER 204
#define IDS_BAD_NUMBER 205
#define IDS_PAUSES_TOO_LONG 206
#define IDS_FOREIGN_CHARACTER 207
#define IDS_TEXT_TOO_LONG 208
#define IDS_DUTCH_KEY_NAMES 209  // "1" or "0"
