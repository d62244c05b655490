#include "tests/board/expected_bus.h"

#include <algorithm>

#include "board/codec_download.h"

namespace veltra {
namespace {

constexpr uint32_t kOn = 0x00800000;
constexpr uint32_t kTwo = 0x01000000;
constexpr uint32_t kTen = 0x05000000;

std::vector<uint8_t> FromHex(std::string_view text) {
  std::vector<uint8_t> bytes;
  for (size_t at = 0; at + 1 < text.size(); at += 3)
    bytes.push_back(static_cast<uint8_t>(std::stoi(std::string(text.substr(at, 2)), nullptr, 16)));
  return bytes;
}

}  // namespace

void ExpectedBus::Line(uint8_t device, const Data& data) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string line = {kDigits[device >> 4], kDigits[device & 15], ':'};
  for (const uint8_t byte : data) line.append({' ', kDigits[byte >> 4], kDigits[byte & 15]});
  lines_.push_back(std::move(line));
}

void ExpectedBus::PortA(int set, int clear) {
  portA_ = static_cast<uint8_t>((portA_ | set) & ~clear);
  Line(0x20, {0x12, portA_});
}

void ExpectedBus::PortB(int set, int clear) {
  portB_ = static_cast<uint8_t>((portB_ | set) & ~clear);
  Line(0x20, {0x13, portB_});
}

void ExpectedBus::Block(uint16_t address, std::span<const uint8_t> data, uint16_t step) {
  for (; !data.empty(); address = static_cast<uint16_t>(address + step)) {
    const auto piece = data.first(std::min<size_t>(data.size(), 240));
    Data bytes = {static_cast<uint8_t>(address >> 8), static_cast<uint8_t>(address)};
    bytes.insert(bytes.end(), piece.begin(), piece.end());
    Line(0x38, bytes);
    data = data.subspan(piece.size());
  }
}

void ExpectedBus::Value(uint16_t address, uint32_t bits) {
  Codec(address, {static_cast<uint8_t>(bits >> 24), static_cast<uint8_t>(bits >> 16),
                  static_cast<uint8_t>(bits >> 8), static_cast<uint8_t>(bits)});
}

void ExpectedBus::Pair(uint16_t first, uint16_t second, uint32_t bits) {
  Value(first, bits);
  Value(second, bits);
}

void ExpectedBus::Selector(uint16_t first, uint16_t last, uint16_t chosen) {
  for (uint16_t address = first; address <= last; ++address) Value(address, address == chosen ? kOn : 0);
}

void ExpectedBus::SpeakerAmp(uint8_t enable) {
  Line(0x30, {0x05, 0x22, 0x00, gainStep_, 0x01, enable});
}

void ExpectedBus::Headphones(uint8_t reg, uint8_t value) {
  Line(0x10, {reg, value});
}

void ExpectedBus::StartRadios() {
  PortA(0x02);
  PortB(0x04);
}

void ExpectedBus::PhoneAnswered() {
  PortB(0x40);
}

void ExpectedBus::UsbOff() {
  PortA(0x10);
  PortB(0x80);
}

void ExpectedBus::UsbOn() {
  PortA(0, 0x10);
  PortB(0, 0x80);
}

void ExpectedBus::PowerUpSupply() {
  PortA(0x24);
  PortB(0x08);
  Line(0x20, {0x00, 0x00});
  Line(0x20, {0x01, 0x00});
  PortA(0x80);
  PortA(0x40);
}

void ExpectedBus::PowerUpCodec() {
  PortB(0x01);
  PortA(0x08);
  PortB(0x10);
}

void ExpectedBus::Download() {
  Codec(0xE220, {0x00, 0x1C});
  Codec(0xE228, {0x00, 0x00});
  Block(0x2000, CodecProgramImage(), 40);
  Codec(0xE000, FromHex("10 00 04 00 0C 00 10 00 10 00 14 00 18 00 1C 00 20 00"));
  Codec(0xE040, FromHex("10 00 A4 00 14 00 18 00 1C 00 14 00 1C 00 1C 00 0C 00"));
  Codec(0xE049, {0x00, 0x00});
  Codec(0xE080, FromHex("00 05 00 11 00 06 00 13 00 3F 00 3F 00 3F 00 3F"));
  Codec(0xE088, FromHex("00 10 00 02 00 10 00 03 00 3F 00 3F 00 3F 00 3F"));
  Codec(0xE090, FromHex("00 10 00 3F 00 21 00 23 00 14 00 3F 00 16 00 3F 00 3F 00 3F 00 3F 00 3F"));
  Codec(0xE0C0, FromHex("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01"));
  Codec(0xE101, {0x00, 0x00});
  Codec(0xE141, {0x00, 0x0F});
  Data twentyFour;
  for (int n = 0; n < 24; ++n) twentyFour.insert(twentyFour.end(), {0x01, 0x3F});
  Codec(0xE180, twentyFour);
  Codec(0xE1C0, Data(64, 0x80));
  Codec(0xE200, FromHex("23 24 41 B0 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                        "05 00 05 00 00 00 0B 00 00 00 0E 00 00 00 00 00 00 00 00 00 00 00 00 "
                        "1F 00 00 01 00 00 00 00 10 00 00 01 00 00 1F 00 00 1C 00 05 "
                        "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00"));
  Codec(0xE240, Data(4, 0));
  Codec(0xE247, Data(12, 0));
  Codec(0xE280, {0x00, 0x2F});
  Block(0x0000, CodecParameterImage(), 60);
  Codec(0xE21F, {0x1F, 0xFA});
  Codec(0x5FFA, FromHex("00 7F BB CE 00 00 44 32 00 7F BB CE 00 00 44 32 00 7F BB CE 00 00 44 32"));
  Codec(0xE220, {0x00, 0x00});
  Codec(0xE228, {0x00, 0x01});
  Codec(0xE221, {0x00, 0x00});
  Codec(0xE221, {0x00, 0x05});
}

void ExpectedBus::Microphone() {
  Pair(0x00C9, 0x00CB, 0);
  Value(0x0084, kOn);
  Selector(0x0085, 0x0089, 0x0085);
  Selector(0x008A, 0x008E, 0x008A);
  Value(0x008F, kOn);
  Selector(0x0090, 0x0094, 0x0090);
  Selector(0x0095, 0x0099, 0x0095);
  Pair(0x001E, 0x001F, kTen);
  Pair(0x001C, 0x001D, kTwo);
}

void ExpectedBus::ResetPaths() {
  Pair(0x00E5, 0x00E4, 0);
  Pair(0x0107, 0x0106, 0);
  Pair(0x0102, 0x0103, 0);
  Pair(0x0104, 0x0105, 0);
  Pair(0x00E6, 0x00E7, 0);
  Pair(0x001B, 0x001A, 0);
  Pair(0x00C9, 0x00CB, 0);
  Pair(0x0019, 0x0018, 0);
  Pair(0x0017, 0x0016, 0);
  for (const uint16_t half : {uint16_t{0x0008}, uint16_t{0x000B}}) {
    Value(half, 0x000000FF);
    Value(static_cast<uint16_t>(half + 1), 0x000AAAAB);
    Value(static_cast<uint16_t>(half + 2), 0);
  }
}

void ExpectedBus::NormalProfile() {
  ResetPaths();
  PortB(0x08);
  Codec(0xE280, {0x00, 0x27});
  Selector(0x00D2, 0x00D8, 0x00D2);
  Pair(0x0102, 0x0103, kOn);
  Selector(0x00D9, 0x00DF, 0x00D9);
  Pair(0x00E6, 0x00E7, kOn);
  Pair(0x0017, 0x0016, kOn);
  Selector(0x00CD, 0x00D1, 0x00CE);
  Pair(0x00E5, 0x00E4, kOn);
}

void ExpectedBus::PowerUpRest() {
  Download();
  const uint32_t kFilter[] = {0x007F68B3, 0xFF012E9A, 0x007F68B3, 0x00FED0B4, 0xFF812DE7};
  for (uint16_t n = 0; n < 5; ++n) Value(static_cast<uint16_t>(0x00E8 + n), kFilter[n]);
  for (uint16_t n = 0; n < 5; ++n) Value(static_cast<uint16_t>(0x00FB + n), n == 0 ? kOn : 0);
  Microphone();
  Line(0x30, {0x05, 0x21, 0x00, 0x03, 0x00, 0x00});
  SpeakerAmp(0x00);
  Line(0x30, {0x05, 0x23, 0x48, 0x00, 0x00, 0x00});
  Line(0x30, {0x05, 0x24, 0x03, 0x00, 0x00, 0x05});
  Line(0x30, {0x05, 0x25, 0x00, 0x02, 0x02, 0x00});
  Line(0x30, {0x05, 0x30, 0x30, 0x30, 0x0C, 0x00});
  Headphones(2, 0x86);
  const uint8_t kHeadphones[] = {0xB9, 0x05, 0xFD, 0x00, 0x40, 0x00, 0x10, 0x0B};
  for (uint8_t n = 0; n < 8; ++n) Headphones(static_cast<uint8_t>(3 + n), kHeadphones[n]);
  NormalProfile();
  SpeakerAmp(0x28);
  Headphones(2, 0x06);
  gainStep_ = 0x30;  // of the volume 50
  SpeakerAmp(0x28);
}

void ExpectedBus::PowerDown() {
  SpeakerAmp(0x28);
  Headphones(2, 0x86);
  PortB(0, 0x01);
  PortA(0, 0x80);
  PortA(0, 0x40);
  ResetPaths();
  PortB(0, 0x10);
  PortA(0, 0x08);
}

}  // namespace veltra
