#pragma once

#include "platform/TVKAXUtilities.h"

#include <QPointF>
#include <QSizeF>
#include <memory>
#include <optional>

namespace corvane {

// The accessibility service of an X11 desktop, asked over the X protocol: an element is a window
// (a top-level client window, the one carrying WM_STATE, is the "AXWindow"; its sub-windows and
// the window manager's frames are groups), and each client window has an application element
// above it. The application's identifier is the desktop entry the window belongs to, as desktop
// shells find it. Coordinates are the X server's: pixels, origin at the top left of the screen.
class X11Accessibility : public TVKAXService
{
public:
    // Connects to the named display, or to $DISPLAY; without an X server (a Wayland session
    // without XWayland) every query fails.
    explicit X11Accessibility(const QString& displayName = QString());
    ~X11Accessibility() override;
    X11Accessibility(const X11Accessibility&) = delete;
    X11Accessibility& operator=(const X11Accessibility&) = delete;

    bool isConnected() const;
    // The pointer as the X server has it, which stays true under any toolkit scaling.
    std::optional<QPointF> pointer() const;
    // The size of the whole X screen.
    std::optional<QSizeF> screenSize() const;

    int copyElementAtPosition(QPointF point, TVKAXElement& element) override;
    int copyAttributeValue(const TVKAXElement& element, const QString& attribute,
                           TVKAXValue& value) override;
    int getPid(const TVKAXElement& element, qint64& pid) override;
    std::optional<RunningApplication> runningApplication(qint64 pid,
                                                         const TVKAXElement& element) override;

private:
    struct Connection;
    std::unique_ptr<Connection> d;
};

} // namespace corvane
