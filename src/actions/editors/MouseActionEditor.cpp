#include "actions/editors/MouseActionEditor.h"

#include "actions/ActionText.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKMouseAction.h"
#include "actions/editors/EditorActions.h"
#include "core/Notifications.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

namespace corvane {

namespace {

const QString kPrepareText = QStringLiteral(
    "Make sure destination application is visible in background and click Capture button. "
    "Position mouse pointer over desired starting point and hit <COMMAND K> to complete "
    "capture.");
const QString kReadyText =
    QStringLiteral("Ready to capture mouse pointer Location...\nPress <COMMAND K> to Capture");

QString typeZeroText()
{
    return surfaceConstants().captureModeFormatString(0);
}

} // namespace

MouseActionEditor::MouseActionEditor(TVKActionContainer& container, qint32 actionType,
                                     const PointerEnvironment& environment)
    : m_container(container), m_actionType(actionType), m_environment(environment)
{
    m_endCaptureObservation =
        NotificationCenter::defaultCenter().observe<corvane::note::EndCapture>(
            nullptr, [this](const corvane::note::EndCapture&) { endCapture(); });
}

void MouseActionEditor::setParameterChangedHandler(std::function<void()> handler)
{
    m_parameterChanged = std::move(handler);
}

void MouseActionEditor::actionParameterChanged()
{
    if (m_parameterChanged)
        m_parameterChanged();
}

TVKMouseAction* MouseActionEditor::editedAction() const
{
    if (m_container.actionType() != m_actionType)
        return nullptr;
    return static_cast<TVKMouseAction*>(m_container.action());
}

TVKMouseAction* MouseActionEditor::currentAction(unsigned newOperation)
{
    if (TVKMouseAction* action = editedAction())
        return action;
    std::unique_ptr<TVKMouseAction> action = makeMouseActionOfType(m_actionType, newOperation);
    TVKMouseAction* raw = action.get();
    m_container.setAction(std::move(action));
    return raw;
}

void MouseActionEditor::selectOperation(int tag)
{
    const StateChange change(*this);
    m_operationTag = tag;
    if (tag < 1 || tag > 10) {
        m_container.setAction(nullptr);
    } else if (TVKMouseAction* action = currentAction(unsigned(tag))) {
        action->setOperation(unsigned(tag));
        m_captureText = typeZeroText();
    }
    refreshEnabling();
}

void MouseActionEditor::selectLocationType(int tag)
{
    const StateChange change(*this);
    m_locationTag = tag;
    if (TVKMouseAction* action = currentAction(1)) {
        action->setLocationType(unsigned(qMax(tag, 0)));
        if (tag == 0) {
            m_captureText = typeZeroText();
            m_captureButtonVisible = false;
        } else {
            m_captureText = kPrepareText;
            m_captureButtonVisible = true;
        }
    }
    refreshEnabling();
}

void MouseActionEditor::setUsePartialWindowName(bool use)
{
    const StateChange change(*this);
    m_partialNameChecked = use;
    if (TVKMouseAction* action = currentAction(1))
        action->setUsePartialWindowName(use);
    refreshEnabling();
}

void MouseActionEditor::setWindowName(const QString& name)
{
    const StateChange change(*this);
    m_windowNameText = name;
    if (TVKMouseAction* action = currentAction(1))
        action->setWindowName(name);
    refreshEnabling();
}

void MouseActionEditor::setModifierBoxes(unsigned tickedTags)
{
    const StateChange change(*this);
    m_modifierBoxTags = tickedTags & (2 | 4 | 8 | 16);
    if (TVKMouseAction* action = currentAction(1))
        action->setModifierFlags(m_modifierBoxTags << 16);
    refreshEnabling();
}

void MouseActionEditor::refreshEnabling()
{
    const TVKMouseAction* action = editedAction();
    const bool active = action && action->operation() != 0;
    m_locationEnabled = m_modifiersEnabled = active;
    m_partialEnabled = active && action->locationType() != 0;
    m_windowNameEnabled = m_partialEnabled && action->usePartialWindowName();
}

void MouseActionEditor::startCapture()
{
    const StateChange change(*this);
    m_captureButtonVisible = false;
    m_captureText = kReadyText;
    m_progressRunning = true;
    NotificationCenter::defaultCenter().post(corvane::note::StartCapture{}, this);
}

QPointF MouseActionEditor::locationForPointer(unsigned locationType, QPointF pointer,
                                              const WindowUnderPointer& window)
{
    const double dx = pointer.x() - window.windowPosition.x();
    const double dy = pointer.y() - window.windowPosition.y();
    const double width = window.windowSize.width();
    const double height = window.windowSize.height();
    const double fraction = width != 0.0 ? dx / width : 0.0;
    switch (locationType) {
    case 1:
        return QPointF(dx, dy);
    case 2:
        return QPointF(width - dx, dy);
    case 3:
        return QPointF(fraction, dy);
    case 4:
        return QPointF(dx, height - dy);
    case 5:
        return QPointF(width - dx, height - dy);
    case 6:
        return QPointF(fraction, height - dy);
    case 7:
        return pointer;
    default:
        return QPointF();
    }
}

bool MouseActionEditor::acceptsCapture(const TVKKeyset* keyset, bool queryOk,
                                       const WindowUnderPointer& target)
{
    if (!keyset || !queryOk)
        return false;
    // Bundle identifiers are compared as objects here, so only two absent ones count as the
    // same; a matching signature is what normally lets a capture through.
    const bool bothAbsent = !keyset->hasBundleID() && !target.bundleID.has_value();
    if (keyset->signature() != target.signature && !bothAbsent)
        return false;
    if (isMissingSignature(keyset->signature())) {
        const QString ours = keyset->hasBundleID() ? keyset->bundleID() : QString();
        const QString theirs = target.bundleID.value_or(QString());
        if (ours != theirs)
            return false;
    }
    return true;
}

QString MouseActionEditor::locationText(unsigned locationType, QPointF location,
                                        const QString& window)
{
    const double x =
        TVKMouseAction::isWidthFraction(locationType) ? location.x() * 100.0 : location.x();
    return fillFormat(surfaceConstants().captureModeFormatString(int(locationType)), {window},
                      {location.y(), x});
}

void MouseActionEditor::endCapture()
{
    const StateChange change(*this);
    TVKMouseAction* action = editedAction();
    if (!action)
        return;
    QPointF pointer = m_environment.pointerLocation();
    pointer.setY(m_environment.screensHeight() - pointer.y());

    QString windowTitle;
    QPointF location;
    if (action->locationType() == 7) {
        windowTitle = QStringLiteral("Screen");
        location = pointer;
    } else {
        const TVKModelData* model = TVKModelData::defaultModelData();
        const TVKKeyset* keyset =
            model && model->numberOfKeysets() > 0 ? model->selectedKeyset() : nullptr;
        WindowUnderPointer target;
        const bool queryOk = keyset && m_environment.windowUnderPointer(pointer, target);
        if (!acceptsCapture(keyset, queryOk, target)) {
            m_captureText =
                fillFormat(QStringLiteral("Please place the mouse pointer over the application %@"),
                           {keyset ? keyset->name() : QString()}, {});
            m_progressRunning = false;
            m_captureButtonVisible = true;
            return;
        }
        windowTitle = target.windowTitle;
        location = locationForPointer(action->locationType(), pointer, target);
    }
    action->setLocation(location);
    action->setWindowName(windowTitle);
    actionParameterChanged();
    refreshEnabling();
    m_captureText = locationText(action->locationType(), location, windowTitle);
    m_windowNameText = windowTitle;
    m_progressRunning = false;
    m_captureButtonVisible = false;
}

void MouseActionEditor::updateForNewAction()
{
    const StateChange change(*this);
    if (const TVKMouseAction* action = editedAction()) {
        m_operationTag = int(action->operation());
        m_locationTag = int(action->locationType());
        m_partialNameChecked = action->usePartialWindowName();
        m_modifierBoxTags = (action->modifierFlags() >> 16) & (2 | 4 | 8 | 16);
        if (action->locationType() == 0) {
            m_captureText = typeZeroText();
            m_windowNameText.clear();
        } else {
            m_captureText =
                locationText(action->locationType(), action->location(), action->windowName());
            m_windowNameText = action->windowName();
        }
    } else {
        m_operationTag = m_locationTag = 0;
        m_partialNameChecked = false;
        m_modifierBoxTags = 0;
        m_captureText.clear();
        m_windowNameText.clear();
    }
    m_progressRunning = false;
    m_captureButtonVisible = false;
    refreshEnabling();
}

} // namespace corvane
