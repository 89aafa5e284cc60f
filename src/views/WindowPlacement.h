#pragma once

#include "core/PlistValue.h"

#include <QRect>
#include <optional>
#include <vector>

class QWidget;

namespace corvane {

// Where a window opens, every window alike. A remembered frame stays where the user left it,
// moved and shrunk only as far as it must to lie wholly on the available screen. A window opened
// for the first time takes the first place beside the windows already open (to the right of one,
// then below one) where it lies on the screen and covers none of them; where there is no such
// place, it goes where it covers least of them, preferring the screen's lower corners so that the
// tops of the windows below, with their names, layers and connection, stay in sight; the first
// of the open windows is the main one, whose top matters most.
// All rectangles are frames, decorations included, in the screen's logical pixels.
QRect placeWindow(QSize frameSize, const QRect& available, const std::vector<QRect>& open,
                  const std::optional<QRect>& remembered = std::nullopt);

// `frame` moved and shrunk as little as possible to lie inside `available`.
QRect clampToScreen(const QRect& frame, const QRect& available);

// A shown window pulled back onto its screen: once shown, its frame is known, and where it leaves
// the available screen the window is moved and shrunk as little as it must be.
void keepOnScreen(QWidget* window);

// A window's place as the store keeps it: where its contents begin, in device pixels, which
// name the same spot on the screen whatever the scale; and their size, in logical pixels, which
// is what they need at any scale. Read back as a rectangle of that place and size. (The contents,
// not the frame: a frame is known only once the desktop has drawn it.)
PlistValue storedFrame(QPoint position, QSize size, qreal devicePixelRatio);
std::optional<QRect> frameFromStore(const PlistValue& stored, qreal devicePixelRatio);

} // namespace corvane
