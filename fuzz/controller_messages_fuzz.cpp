// Any messages of the controller, in good frames, and bytes between them.
#include "fuzz/tablet_for_fuzzing.h"

namespace {

using fuzz::Input;
using fuzz::Tablet;

void SayText(Tablet& tablet, Input& input) {
  tablet.Pic().SendText(fuzz::Narrow(input.Piece()));
}

void SayReply(Tablet& tablet, Input& input) {
  tablet.Pic().SendReply(fuzz::Narrow(input.Piece()));
}

void SayAnything(Tablet& tablet, Input& input) {
  tablet.Pic().SendRaw(simulator::EncodeFrame(input.Piece()));
}

void SayBytes(Tablet& tablet, Input& input) {
  tablet.Pic().SendRaw(input.Piece());
}

constexpr fuzz::Act kActs[] = {SayText, SayReply, SayAnything, SayBytes};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::PlayOnNewTablet(data, size, kActs);
  return 0;
}
