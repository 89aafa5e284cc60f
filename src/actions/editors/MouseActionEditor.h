#pragma once

#include "actions/editors/EditorLogic.h"
#include "core/FourCharCode.h"
#include "core/NotificationCenter.h"

#include <QPointF>
#include <QSizeF>
#include <QString>
#include <functional>
#include <optional>

class TVKActionContainer;
class TVKMouseAction;
class TVKKeyset;

namespace corvane {

// What lies under the mouse pointer, as the accessibility query reports it.
struct WindowUnderPointer
{
    QString applicationName;
    FourCharCode signature = 0;
    std::optional<QString> bundleID; // none when the application has no identifier
    QString windowTitle;
    QPointF windowPosition; // top-left corner, screen coordinates with the origin at the top left
    QSizeF windowSize;
};

// The platform side of a capture: where the pointer is and what lies under it.
class PointerEnvironment
{
public:
    virtual ~PointerEnvironment() = default;
    // The pointer with the origin at the bottom left of the screen space.
    virtual QPointF pointerLocation() const = 0;
    // Height of the union of all screens' frames.
    virtual double screensHeight() const = 0;
    // The application and window under a point given with the origin at the top left; false
    // when the query fails.
    virtual bool windowUnderPointer(QPointF point, WindowUnderPointer& result) const = 0;
};

// The mouse editor's decisions: which controls are enabled, the capture texts, and the capture
// computation and its refusal rules against the keyset being edited.
class MouseActionEditor : public EditorLogic
{
public:
    enum Tag
    {
        OperationPopUp = 0,
        LocationPopUp = 1,
        PartialNameBox = 2,
        WindowNameField = 3,
        ModifierBoxes = 4
    };

    MouseActionEditor(TVKActionContainer& container, qint32 actionType,
                      const PointerEnvironment& environment);

    void setParameterChangedHandler(std::function<void()> handler);

    // Sender tag 0 with the chosen item's tag (1..10; anything else removes the action).
    void selectOperation(int tag);
    void selectLocationType(int tag);
    void setUsePartialWindowName(bool use);
    void setWindowName(const QString& name);
    // tickedTags: OR of the ticked modifier boxes' tags (2 Shift, 4 Control, 8 Option, 16 Command).
    void setModifierBoxes(unsigned tickedTags);

    // The Capture button: posts "TVKStartCapture" with this editor as sender.
    void startCapture();
    // "TVKEndCapture" (the editor observes it for as long as it lives; it acts only when the
    // container holds an action of its type): reads the pointer and stores the location, or
    // refuses.
    void endCapture();
    void updateForNewAction();

    // State of the editor's controls.
    int operationTag() const { return m_operationTag; }
    int locationTag() const { return m_locationTag; }
    bool partialNameChecked() const { return m_partialNameChecked; }
    unsigned modifierBoxTags() const { return m_modifierBoxTags; }
    const QString& captureText() const { return m_captureText; }
    const QString& windowNameText() const { return m_windowNameText; }
    bool captureButtonVisible() const { return m_captureButtonVisible; }
    bool progressRunning() const { return m_progressRunning; }
    bool locationPopUpEnabled() const { return m_locationEnabled; }
    bool modifierBoxesEnabled() const { return m_modifiersEnabled; }
    bool partialNameBoxEnabled() const { return m_partialEnabled; }
    bool windowNameFieldEnabled() const { return m_windowNameEnabled; }

    // The editor text of a stored location ("Move mouse pointer to ...").
    static QString locationText(unsigned locationType, QPointF location, const QString& window);
    // Whether a capture over that window may be stored for the keyset.
    static bool acceptsCapture(const TVKKeyset* keyset, bool queryOk,
                               const WindowUnderPointer& target);
    // The stored point for a pointer (origin top left) over a window, by location type.
    static QPointF locationForPointer(unsigned locationType, QPointF pointer,
                                      const WindowUnderPointer& window);

private:
    TVKMouseAction* editedAction() const;
    TVKMouseAction* currentAction(unsigned newOperation);
    void refreshEnabling();
    void actionParameterChanged();

    TVKActionContainer& m_container;
    qint32 m_actionType;
    const PointerEnvironment& m_environment;
    std::function<void()> m_parameterChanged;
    NotificationCenter::Observation m_endCaptureObservation;

    int m_operationTag = 0;
    int m_locationTag = 0;
    bool m_partialNameChecked = false;
    unsigned m_modifierBoxTags = 0;
    QString m_captureText;
    QString m_windowNameText;
    bool m_captureButtonVisible = false;
    bool m_progressRunning = false;
    bool m_locationEnabled = false;
    bool m_modifiersEnabled = false;
    bool m_partialEnabled = false;
    bool m_windowNameEnabled = false;
};

} // namespace corvane
