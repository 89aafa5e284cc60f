#pragma once

#include <QtGlobal>

namespace corvane {

// A keyset's emulation mode: whether its controls stand in for a standard control-surface
// protocol, and in which of its modes. Stored under "TVKEMode", sent in "Emul" and given as the
// tag of the emulation menu's items as the number it has here; a stored number beyond C is kept
// as it is.
enum class EmulationMode : uint
{
    None = 0,
    A = 1,
    B = 2,
    C = 3,
};

} // namespace corvane
