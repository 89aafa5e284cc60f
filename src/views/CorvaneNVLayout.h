#pragma once

// The NV expander as its windows number it: 240 LCD buttons (and as many button displays) in
// ten banks of 24.
namespace corvane::nv {

constexpr int kButtonsPerBank = 24;
constexpr int kBanks = 10;
// Model-data groups of the LCD buttons and of their displays.
constexpr int kLCDButtonGroup = 24;
constexpr int kButtonDisplayGroup = 4;

} // namespace corvane::nv
