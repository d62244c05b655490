// What a screen reader says of a control.
#pragma once

#include <oleacc.h>

#include <string>

namespace pal {

struct State;
struct Window;

inline constexpr CLSID kAccPropServicesClass = {
    0xB5F8350B, 0x0548, 0x48B1, {0xA6, 0xEE, 0x88, 0xBD, 0x00, 0xB4, 0xA5, 0xE7}};
inline constexpr IID kAccPropServicesInterface = {
    0x6E26E776, 0x04F0, 0x495D, {0x80, 0xE4, 0x33, 0x30, 0x35, 0x2E, 0x31, 0x69}};

// Called with the machine's lock.
IAccPropServices* MakeAccPropServices(State& state);

// The name that the program gave it; else of buttons and labels their text, of others that of the label
// before them, unless the keyboard can stop between. Empty: the screen reader can only say what kind of
// control it is.
std::u16string SpokenName(State& state, const Window& control);

}  // namespace pal
