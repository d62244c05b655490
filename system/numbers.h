// The numbers by which Windows and other programs call the tool, and it them. This file needs no Windows
// header, so that the programs around the tool can use it.
#pragma once

#include <cstdint>

namespace veltra {

// ---- timers of the main window

constexpr uint32_t kBatteryTimer = 1;
constexpr uint32_t kResumeTimer = 3;
constexpr uint32_t kMiddleButtonTimer = 5;  // of a long press, like the top and the bottom one
constexpr uint32_t kFlightModeTimer = 6;
constexpr uint32_t kTopButtonTimer = 7;
constexpr uint32_t kBottomButtonTimer = 8;
constexpr uint32_t kCallProfileTimer = 9;
constexpr uint32_t PORT_RETRY_TIMER = 10;
constexpr uint32_t kSwitch1AcceptTimer = 11;  // of a press that counts only after a while
constexpr uint32_t kSwitch2AcceptTimer = 12;

// ---- private messages to the main window

constexpr uint32_t kFirstUserMessage = 0x0400;         // WM_USER
constexpr uint32_t kFirstApplicationMessage = 0x8000;  // WM_APP

// Mouse events of the two tray icons.
constexpr uint32_t kPowerIconMessage = kFirstUserMessage;
constexpr uint32_t kToolIconMessage = kFirstUserMessage + 1;

// Posted for every received byte, in the order of arrival: wParam the byte, lParam the port's number.
constexpr uint32_t WM_PIC_BYTE = kFirstApplicationMessage + 0xCD;
// Posted after the last byte when the monitor thread ends by itself because the device is gone: lParam the
// port's number.
constexpr uint32_t WM_PIC_LINE_LOST = kFirstApplicationMessage + 0xCE;
// Posted after the bytes of earlier openings when the port was opened: wParam which opening.
constexpr uint32_t WM_PIC_LINE_OPENED = kFirstApplicationMessage + 0xCF;
// Posted to the Firmware dialog: wParam a BootProgress, lParam its detail.
constexpr uint32_t WM_FIRMWARE_PROGRESS = kFirstApplicationMessage + 0xDE;
constexpr uint32_t WM_QUERY_PIC_FIRMWARE = kFirstApplicationMessage + 0xDF;
constexpr uint32_t kDeviceToolRequest = kFirstApplicationMessage + 0x76C;  // wParam: which, below
constexpr uint32_t kDeviceReportRequest =
    kFirstApplicationMessage + 0x76D;  // wParam: which report, lParam: the receiver
constexpr uint32_t kFirmwareFileRequest = kFirstApplicationMessage + 0x76E;  // of the options dialog
constexpr uint32_t kStatusLedRequest = kFirstApplicationMessage + 0x76F;
constexpr uint32_t kCodecStatusQuery = kFirstApplicationMessage + 0x770;

// What kDeviceToolRequest asks. Every other number up to the last operation is a device operation, counted
// from 1.
constexpr uint32_t kFirstOperationRequest = 1;
constexpr uint32_t kPowerSourceRequest = 12;
constexpr uint32_t kCapacityRequest = 13;
constexpr uint32_t kLastOperationRequest = 19;
constexpr uint32_t kSpeakerVolumeRequest = 20;

// What kDeviceReportRequest asks for; any other number is a report without items.
constexpr uint32_t kWholeReport = 0;
constexpr uint32_t kBatteryReport = 1;

// ---- tags of copied data

// To the main window.
constexpr uint32_t kFirstInfraredRequest = 0;
constexpr uint32_t kLastInfraredRequest = 1;
constexpr uint32_t kFirmwareUpdate = 2;  // the path of the HEX file
constexpr uint32_t kInfraredCancel = 3;
constexpr uint32_t kFirstIdentityUpdate = 12344;  // in the order of the update table
constexpr uint32_t kLastIdentityUpdate = 12350;
// To the program that asked.
constexpr uint32_t kReplyTag = 0;
constexpr uint32_t kReportTag = 0;

// ---- messages and tags of the maker's applications

// To "Talk Builder" and "Lexora": wParam 0, lParam the letter of a switch event.
constexpr uint32_t kSwitchLetterMessage = kFirstApplicationMessage + 100;
// To "PageVoice" and "Wendle": wParam the number of the command.
constexpr uint32_t kPageVoiceCommandMessage = kFirstApplicationMessage + 91;
constexpr uint32_t kWendleCommandMessage = kFirstApplicationMessage + 73;
// Copied data to "Talk Builder 4 Class": a command's number in 32 bits, or the ID of a cell in UTF-16 without
// terminator.
constexpr uint32_t kTalkBuilderCommandTag = 1703;
constexpr uint32_t kTalkBuilderCellTag = 1704;

}  // namespace veltra
