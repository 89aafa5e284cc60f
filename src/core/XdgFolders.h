#pragma once

#include <QString>

namespace corvane {

// The desktop's per-user base folders: the variable's value when it is an absolute path, else
// its default below the home folder (a relative value is invalid and ignored, as desktops do).
QString xdgDataHome();   // $XDG_DATA_HOME, default ~/.local/share
QString xdgConfigHome(); // $XDG_CONFIG_HOME, default ~/.config

} // namespace corvane
