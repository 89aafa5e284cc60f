#pragma once

#include "actions/TVKAction.h"

#include <QPointF>

// Operates the mouse: optionally puts the pointer at a stored place relative to a window of the
// target application (or the screen), then clicks, moves, drags or scrolls with modifiers held.
class TVKMouseAction : public TVKAction
{
public:
    TVKMouseAction() = default;
    explicit TVKMouseAction(TVKControl* control) : TVKAction(control) {}
    TVKMouseAction(unsigned operation, TVKControl* control);
    TVKMouseAction(const corvane::PlistValue& archive, TVKControl* control);

    unsigned operation() const { return m_operation; }
    void setOperation(unsigned operation) { m_operation = operation; }
    unsigned locationType() const { return m_locationType; }
    void setLocationType(unsigned type) { m_locationType = type; }
    QPointF location() const { return m_location; }
    void setLocation(QPointF location) { m_location = location; }
    unsigned modifierFlags() const { return m_modifierFlags; }
    void setModifierFlags(unsigned flags) { m_modifierFlags = flags; }
    bool usePartialWindowName() const { return m_usePartialWindowName; }
    void setUsePartialWindowName(bool use) { m_usePartialWindowName = use; }
    // Null when no window has been captured.
    const QString& windowName() const { return m_windowName; }
    void setWindowName(const QString& name) { m_windowName = name; }

    QString actionDescriptor() const override;
    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

    // The point in its stored text form "{x, y}", and back (an unreadable text gives 0, 0).
    static QString stringFromPoint(QPointF point);
    static QPointF pointFromString(const QString& text);
    // Location types 3 and 6 store a fraction of the window's width, shown as a percentage.
    static bool isWidthFraction(unsigned locationType)
    {
        return locationType == 3 || locationType == 6;
    }

protected:
    TVKMouseAction(const TVKMouseAction&) = default;

private:
    unsigned m_operation = 0;
    unsigned m_locationType = 0;
    QPointF m_location;
    unsigned m_modifierFlags = 0;
    bool m_usePartialWindowName = false;
    QString m_windowName;
};

CORVANE_ACTION_FOR_CONTROL_KIND(TVKButtonMouseAction, TVKMouseAction, 259)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKEncoderMouseAction, TVKMouseAction, 515)
CORVANE_ACTION_FOR_CONTROL_KIND(TVK4WayMouseAction, TVKMouseAction, 771)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKShuttleMouseAction, TVKMouseAction, 1027)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKJogMouseAction, TVKMouseAction, 1283)
