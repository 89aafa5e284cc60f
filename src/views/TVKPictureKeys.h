#pragma once

class QWidget;

// Ctrl+C, Ctrl+V and Delete on a picture of the surface: Copy, Paste and Clear Action for the
// selected control or display. The keys are the picture's alone, so every text field keeps its
// own. A command that cannot act says why in the window's status line.
namespace TVKPictureKeys {

void install(QWidget* picture);

} // namespace TVKPictureKeys
