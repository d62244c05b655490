// Ids of the program's resources, shared by the resource script and the code. Each type of resource counts for
// itself: an icon, a sound and a text may carry the same number.
#pragma once

// Icons. The battery pictures of the notification area come in small sizes; the power meter shows its own, larger set.
#define IDI_PROGRAM 144
#define IDI_BATTERY_HIGH 156
#define IDI_BATTERY_MEDIUM 157
#define IDI_BATTERY_LOW 158
#define IDI_MAINS 159
#define IDI_BATTERY_EMPTY 160
#define IDI_BATTERY_UNKNOWN 161
#define IDI_METER_HIGH 162
#define IDI_METER_MEDIUM 163
#define IDI_METER_LOW 164
#define IDI_METER_EMPTY 165
#define IDI_METER_CHARGING 166
#define IDI_METER_MAINS 167
#define IDI_CHARGING 168
#define IDI_METER_UNKNOWN 169
#define IDI_TOOL 170

// Sounds, resources of the type "WAVE".
#define IDW_LOW_ALARM 160
#define IDW_CRITICAL_ALARM 161
#define IDW_VOLUME_STEP 163
#define IDW_START 172

// Menus of the two tray icons.
#define IDM_POWER 132
#define IDM_TOOL 133

// Commands. The language items of the tool's menu count up from the first and take the place of the placeholder.
#define IDC_OPEN_POWER_METER 127
#define IDC_CLOSE 128
#define IDC_BATTERY_INFO 40205
#define IDC_OPTIONS 40211
#define IDC_FIRST_LANGUAGE 40212
#define IDC_LAST_LANGUAGE 40230
#define IDC_LANGUAGE_PLACEHOLDER 40233

// Texts: power source and power meter.
#define IDS_PERCENT_REMAINING 159
#define IDS_BATTERIES 160
#define IDS_AC_POWER 161
#define IDS_CHARGING 162
#define IDS_POWER_METER 163
#define IDS_POWER_STATUS 177
#define IDS_CURRENT_SOURCE 178
#define IDS_POWER_REMAINING 179
#define IDS_LOW_ALARM 180
#define IDS_ACTIVATE_LOW_ALARM 181
#define IDS_CRITICAL_ALARM 182
#define IDS_ACTIVATE_CRITICAL_ALARM 183
#define IDS_OK 184
#define IDS_CANCEL 185

// Texts: what a side button does.
#define IDS_ACTION_SEND_MACRO 165
#define IDS_ACTION_SEND_KEY 166
#define IDS_ACTION_PLAY_WAVE_FILE 167
#define IDS_ACTION_START_PROGRAM 168
#define IDS_ACTION_WINDOWS_FUNCTION 169
#define IDS_ACTION_TALK_BUILDER 170
#define IDS_ACTION_PAGE_VOICE 171
#define IDS_ACTION_WENDLE 172
#define IDS_ACTION_LEXORA 173
#define IDS_ACTION_TALK_BUILDER_CELL 226
#define IDS_ACTION_NONE 229
#define IDS_FILTER_ALL_FILES 174
#define IDS_FILTER_WAVE_FILES 175
#define IDS_FILTER_PROGRAMS 176

// Texts: options.
#define IDS_ON 187
#define IDS_OFF 188
#define IDS_OPTIONS 189
#define IDS_SPEAKERS 190
#define IDS_SPEAKER_VOLUME 191
#define IDS_HEADPHONES 192
#define IDS_MOBILE_PHONE 193
#define IDS_MICROPHONE 194
#define IDS_SWITCH_1_STARTS 195
#define IDS_FLIGHT_MODE 197
#define IDS_DISABLE_USB_BACK 198
#define IDS_PIC_VERSION 199
#define IDS_START_NEVER 200
#define IDS_START_AFTER_SECONDS 202
#define IDS_SWITCH_1 205
#define IDS_DEVICE_VERSION 208
#define IDS_SWITCHES 209
#define IDS_SWITCH_2 210
#define IDS_DISABLE_USB_BOTTOM 212
#define IDS_SWITCH_NORMAL 213
#define IDS_SWITCH_LEFT_CLICK 214
#define IDS_SWITCH_RIGHT_CLICK 215
#define IDS_START_IMMEDIATELY 216
#define IDS_SIDE_BUTTONS 217
#define IDS_BUTTON_TOP_SHORT 218
#define IDS_BUTTON_MIDDLE 219
#define IDS_BUTTON_BOTTOM_SHORT 220
#define IDS_MIDDLE_DISABLED 221
#define IDS_MIDDLE_CLICK_AND_ESCAPE 222
#define IDS_MICROPHONE_VOLUME 223
#define IDS_JOYSTICK_BUTTON 225
#define IDS_BUTTON_TOP_LONG 227
#define IDS_BUTTON_BOTTOM_LONG 228

// Texts: warnings and questions.
#define IDS_CRITICAL_BALLOON 203
#define IDS_LOW_BALLOON 204
#define IDS_CONFIRM_CLOSE 206
#define IDS_FLIGHT_MODE_BALLOON 211
