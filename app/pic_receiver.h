// The way of the received bytes into messages.
#pragma once

#include <cstdint>

namespace veltra {

// One received byte, in the order of arrival. Asks for a frame again whose checksum is wrong; every third
// time drops the send queue instead.
void OnPicByte(uint8_t byte);

}  // namespace veltra
