// The speaker and the headphone amplifier beside the codec.
#pragma once

namespace veltra {

// Sends the speaker amplifier its six commands, or only the second one, which carries gain step and enable
// byte. Stops at the first failure.
bool SpeakerAmpWrite(bool full);
// Switches the speakers on or off: the enable byte, and the second command.
bool SetSpeakerAmp(bool on);

// Writes the gain register, muted or not, and, when `full`, the other registers.
void HeadphoneAmpInit(bool full, bool muted);
bool SetHeadphoneMute(bool muted);

}  // namespace veltra
