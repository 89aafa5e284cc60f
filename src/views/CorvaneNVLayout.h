#pragma once

// The NV expander as its windows number it: 240 LCD buttons (and as many button displays) in
// ten banks of 24.
namespace corvane::nv {

constexpr int kButtonsPerBank = 24;
constexpr int kBanks = 10;
// Model-data groups of the LCD buttons and of their displays.
constexpr int kLCDButtonGroup = 24;
constexpr int kButtonDisplayGroup = 4;
constexpr int kFunctionKeys = 8;
constexpr int kParametersPerFunction = 5;
constexpr int kActionsPerParameter = 4;
// On-screen groups of the NV's keys, and of its button displays.
constexpr int kOnscreenLCDButtons = 40;
constexpr int kOnscreenBankButtons = 41;
constexpr int kOnscreenFirstFunctionKeys = 42;
constexpr int kOnscreenSecondFunctionKeys = 43;
constexpr int kOnscreenParameters = 44;
constexpr int kOnscreenActions = 45;
constexpr int kOnscreenFirstButtonDisplays = 7;
constexpr int kOnscreenLastButtonDisplays = 10;

} // namespace corvane::nv
