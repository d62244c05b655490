// The audio codec: power, download, routing profiles, and the writes that its neighbours need.
#pragma once

#include <windows.h>

#include "base/text.h"
#include "board/codec_parameters.h"

namespace veltra {

constexpr UINT kCallProfileMs = 5000;

// Both always return true: a failed transfer is reported by I2cWrite and the sequence goes on. Between the
// steps of the power-up is handled what Windows sends; when it is the end of the session or a suspend, no
// step follows.
bool CodecPowerUp();
bool CodecPowerDown();

// Resets the mixer and routes it by profile 1 to 6; any other number resets only.
void SetAudioProfile(int32_t profile);

// The call-profile timer fired: keeps the tablet awake while the communication application runs, else goes
// back to profile 1.
void OnCallProfileTimer();

void SetMicrophonePath(bool on);

// One block write; false when one of its transfers failed, which ends it.
bool CodecWrite(uint16_t address, Bytes data);
void WriteParameter(const CodecParameter& parameter);
void WritePair(const CodecPair& pair, const CodecValue& value);
void SwitchPair(const CodecPair& pair, bool on);
// 1.0 at the index, 0.0 at all others.
void Select(const CodecSelector& selector, uint16_t index);

}  // namespace veltra
