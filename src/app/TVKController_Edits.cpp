// The control edits the inspector posts: each changes the model, registers its inverse, tells
// the service which property of which control changed and moves the selection to it.
#include "actions/TVKAction.h"
#include "actions/TVKNULLAction.h"
#include "app/TVKController.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKModelData.h"
#include "service/TVK_PrivateMessenger.h"
#include "surface/TVK_Constant_Server.h"

namespace note = corvane::note;
using Property = TVK_PrivateMessenger::ControlProperty;

namespace {

// The four layers a deletion copied to all layers reaches, whatever the surface has.
constexpr int kDeleteCopyCount = 4;

template <typename T>
std::vector<T> repeated(const T& value, bool copyToAllLayers, qint64 layers)
{
    return std::vector<T>(copyToAllLayers ? size_t(std::max<qint64>(layers, 0)) : 1, value);
}

} // namespace

TVKControl* TVKController::controlAt(qint64 keyset, qint64 layer, qint64 group,
                                     qint64 control) const
{
    if (!m_modelData)
        return nullptr;
    return m_modelData->controlForKeyset(int(keyset), int(layer), int(group), int(control));
}

std::vector<qint64> TVKController::affectedLayers(qint64 layer, bool copyToAllLayers) const
{
    if (!copyToAllLayers)
        return {layer};
    std::vector<qint64> layers;
    const int count = m_constantServer ? m_constantServer->numLayers() : 0;
    for (int i = 0; i < count; ++i)
        layers.push_back(i);
    return layers;
}

template <typename Apply>
std::vector<TVKControl*> TVKController::forEachAffectedControl(qint64 keyset, qint64 layer,
                                                               qint64 group, qint64 control,
                                                               bool copyToAllLayers, Apply apply)
{
    std::vector<TVKControl*> visited;
    const std::vector<qint64> layers = affectedLayers(layer, copyToAllLayers);
    for (size_t i = 0; i < layers.size(); ++i) {
        TVKControl* target = controlAt(keyset, layers[i], group, control);
        visited.push_back(target);
        apply(i, layers[i], target);
    }
    return visited;
}

void TVKController::selectEditedControl(qint64 keyset, qint64 layer, qint64 group, qint64 control)
{
    const qint64 previousGroup = m_modelData->selectedGroupIndex();
    const qint64 previousControl = m_modelData->selectedControlIndex();
    m_modelData->setSelectedKeysetIndex(int(keyset));
    m_modelData->setSelectedLayerIndex(int(layer));
    m_modelData->setSelectedGroupIndex(int(group));
    m_modelData->setSelectedControlIndex(int(control));
    setIconForKeyset(m_modelData->selectedKeyset());
    updateHardwareControlsPreviousGroup(previousGroup, previousControl, group, control);
}

void TVKController::finishControlEdit(const std::vector<TVKControl*>& visited, bool copyToAllLayers,
                                      qint64 keyset, qint64 layer, qint64 group, qint64 control)
{
    if (!m_modelData)
        return;
    // Only a copy keeps the last control visited for the comparison with the selection, so a
    // single-layer edit always moves the selection.
    TVKControl* edited = copyToAllLayers && !visited.empty() ? visited.back() : nullptr;
    if (!edited || m_modelData->selectedControl() != edited)
        selectEditedControl(keyset, layer, group, control);
    else
        notifyOfControlPropertyChange(edited);
}

// --- Handlers ----------------------------------------------------------------------------------

void TVKController::handleUserNameChange(const note::UserNameChange& n)
{
    if (!m_modelData)
        return;
    // Typed on its own a name is not undoable; given inside a gesture the user undoes as one, it
    // goes back with the rest of it.
    if (m_undoManager.isGrouping()) {
        recordedSetUserNames(repeated(n.userName, n.copyToLayers,
                                      m_constantServer ? m_constantServer->numLayers() : 0),
                             m_modelData->selectedKeysetIndex(), m_modelData->selectedLayerIndex(),
                             m_modelData->selectedGroupIndex(), m_modelData->selectedControlIndex(),
                             n.copyToLayers);
        return;
    }
    undoableSetUserName(n.userName, m_modelData->selectedKeysetIndex(),
                        m_modelData->selectedLayerIndex(), m_modelData->selectedGroupIndex(),
                        m_modelData->selectedControlIndex(), n.copyToLayers);
}

void TVKController::handleDisplayUserNameChange(const note::DisplayUserNameChange& n)
{
    if (!m_modelData || !m_displaySelected)
        return;
    undoableSetDisplayUserName(n.userName, m_modelData->selectedKeysetIndex(),
                               m_modelData->selectedLayerIndex(), m_selectedDisplayGroup,
                               m_selectedDisplay, n.copyToLayers);
}

template <typename T, typename Primitive>
void TVKController::handleValueEdit(const T& value, bool copy, Primitive primitive)
{
    if (!m_modelData)
        return;
    // The value goes to every layer when copied, else to the selected control's layer.
    (this->*primitive)(repeated(value, copy, m_constantServer ? m_constantServer->numLayers() : 0),
                       m_modelData->selectedKeysetIndex(), m_modelData->selectedLayerIndex(),
                       m_modelData->selectedGroupIndex(), m_modelData->selectedControlIndex(),
                       copy);
}

void TVKController::handleLatchStyleChange(const note::LatchChange& n)
{
    handleValueEdit(n.latched, n.copyToLayers, &TVKController::undoableSetLatchStyle);
}

void TVKController::handleOnColorChange(const note::ColorChange& n)
{
    handleValueEdit(n.color, n.copyToLayers, &TVKController::undoableSetOnColor);
}

void TVKController::handleOffColorChange(const note::OffColorChange& n)
{
    handleValueEdit(n.color, n.copyToLayers, &TVKController::undoableSetOffColor);
}

void TVKController::handleBrightnessChange(const note::BrightnessChange& n)
{
    handleValueEdit(n.brightness, n.copyToLayers, &TVKController::undoableSetBrightness);
}

void TVKController::handleJogSensitivityChange(const note::JogSensChange& n)
{
    handleValueEdit(n.sensitivity, n.copyToLayers, &TVKController::undoableSetJogSensitivity);
}

void TVKController::handleJoystickSensitivityChange(const note::JoySensChange& n)
{
    handleValueEdit(n.sensitivity, n.copyToLayers, &TVKController::undoableSetJoystickSensitivity);
}

void TVKController::handleInsertEditedAction(const note::InsertEditedAction& n)
{
    const TVKAction* edited = m_views.windows->inspectorEditedAction();
    if (!edited)
        return;
    const bool copy = n.copyToLayers;
    // Every layer receives the same action.
    const std::shared_ptr<const TVKAction> action = edited->copyWithZone();
    undoableInsertAction(
        repeated(action, copy, m_constantServer ? m_constantServer->numLayers() : 0),
        m_selectedKeyset, m_selectedLayer, m_modelDataGroupIndex, m_modelDataControlIndex,
        tr("Edit Control Action"), copy);
}

void TVKController::handleDeleteAction(const note::DeleteAction& n)
{
    const bool copy = n.copyToLayers;
    const std::shared_ptr<const TVKAction> none = std::make_shared<TVKNULLAction>();
    undoableInsertAction(repeated(none, copy, kDeleteCopyCount), m_selectedKeyset, m_selectedLayer,
                         m_modelDataGroupIndex, m_modelDataControlIndex,
                         tr("Delete Control Action"), copy);
}

void TVKController::handleInsertEditedDisplayAction(const note::InsertEditedDisplayAction&)
{
    const TVKAction* edited = m_views.windows->inspectorEditedAction();
    if (!edited)
        return;
    undoableInsertDisplayAction(edited->copyWithZone(), m_selectedKeyset, m_selectedLayer,
                                m_selectedDisplayGroup, m_selectedDisplay,
                                tr("Edit Display Function"));
}

void TVKController::handleDeleteDisplayAction(const note::DeleteDisplayAction&)
{
    undoableInsertDisplayAction(nullptr, m_selectedKeyset, m_selectedLayer, m_selectedDisplayGroup,
                                m_selectedDisplay, tr("Delete Display Function"));
}

void TVKController::handleInspectorNeedsUpdate(const note::InspUpdate& n)
{
    notifyOfControlChange(n.controlIndex, n.groupID);
}

// --- Primitives without undo ---------------------------------------------------------------------

void TVKController::undoableSetUserName(const QString& name, qint64 keyset, qint64 layer,
                                        qint64 group, qint64 control, bool copyToAllLayers)
{
    const std::vector<TVKControl*> visited = forEachAffectedControl(
        keyset, layer, group, control, copyToAllLayers, [&](size_t, qint64, TVKControl* target) {
            if (target)
                target->setUserName(name);
        });
    if (m_messenger)
        m_messenger->updateProperty(Property::UserNameProperty, int(keyset), int(layer), int(group),
                                    int(control));
    notifyOfControlUserNameChange(visited.empty() ? nullptr : visited.back());
}

void TVKController::recordedSetUserNames(const std::vector<QString>& names, qint64 keyset,
                                         qint64 layer, qint64 group, qint64 control,
                                         bool copyToAllLayers)
{
    std::vector<QString> old;
    TVKControl* last = nullptr;
    forEachAffectedControl(keyset, layer, group, control, copyToAllLayers,
                           [&](size_t i, qint64, TVKControl* target) {
                               old.push_back(target ? target->userName() : QString());
                               if (!target || i >= names.size())
                                   return;
                               target->setUserName(names[i]);
                               last = target;
                           });
    m_undoManager.registerUndo(
        [this, old, keyset, layer, group, control, copyToAllLayers] {
            recordedSetUserNames(old, keyset, layer, group, control, copyToAllLayers);
        },
        tr("Change Name"));
    if (m_messenger)
        m_messenger->updateProperty(Property::UserNameProperty, int(keyset), int(layer), int(group),
                                    int(control));
    notifyOfControlUserNameChange(last);
    // The inspector shows the name again when the step is undone or redone.
    if (last)
        notifyOfControlPropertyChange(last);
}

void TVKController::undoableSetDisplayUserName(const QString& name, qint64 keyset, qint64 layer,
                                               qint64 group, qint64 display, bool copyToAllLayers)
{
    if (!m_modelData)
        return;
    for (const qint64 l : affectedLayers(layer, copyToAllLayers)) {
        if (TVKControl* target =
                m_modelData->displayForKeyset(int(keyset), int(l), int(group), int(display)))
            target->setUserName(name);
    }
}

void TVKController::undoableSetBrightness(const std::vector<qint64>& values, qint64 keyset,
                                          qint64 layer, qint64 group, qint64 control,
                                          bool copyToAllLayers)
{
    forEachAffectedControl(
        keyset, layer, group, control, copyToAllLayers,
        [&](size_t i, qint64 l, TVKControl* target) {
            // Only the control type that has brightness.
            auto* lit = dynamic_cast<TVK4WayControl*>(target);
            if (!lit || target->tvkControlType() != corvane::ControlType::FourWay ||
                i >= values.size())
                return;
            lit->setBrightness(int(values[i]));
            if (m_messenger)
                m_messenger->updateProperty(Property::BrightnessProperty, int(keyset), int(l),
                                            int(group), int(control));
        });
}

void TVKController::undoableSetJogSensitivity(const std::vector<qint64>& values, qint64 keyset,
                                              qint64 layer, qint64 group, qint64 control,
                                              bool copyToAllLayers)
{
    forEachAffectedControl(keyset, layer, group, control, copyToAllLayers,
                           [&](size_t i, qint64 l, TVKControl* target) {
                               auto* jog = dynamic_cast<TVKJogControl*>(target);
                               if (!jog || i >= values.size())
                                   return;
                               jog->setSensitivity(int(values[i]));
                               if (m_messenger)
                                   m_messenger->updateProperty(Property::JogSensitivityProperty,
                                                               int(keyset), int(l), int(group),
                                                               int(control));
                           });
}

void TVKController::undoableSetJoystickSensitivity(const std::vector<qint64>& values, qint64 keyset,
                                                   qint64 layer, qint64 group, qint64 control,
                                                   bool copyToAllLayers)
{
    // Copied to all layers it goes out as the jog's property (6), on one layer as its own (7).
    const int property =
        copyToAllLayers ? Property::JogSensitivityProperty : Property::JoystickSensitivityProperty;
    forEachAffectedControl(keyset, layer, group, control, copyToAllLayers,
                           [&](size_t i, qint64 l, TVKControl* target) {
                               auto* joystick = dynamic_cast<TVKJoystickControl*>(target);
                               if (!joystick || i >= values.size())
                                   return;
                               joystick->setJoystickSensitivity(int(values[i]));
                               if (m_messenger)
                                   m_messenger->updateProperty(property, int(keyset), int(l),
                                                               int(group), int(control));
                           });
}

// --- Undoable primitives -------------------------------------------------------------------------

void TVKController::undoableSetLatchStyle(const std::vector<bool>& latched, qint64 keyset,
                                          qint64 layer, qint64 group, qint64 control,
                                          bool copyToAllLayers)
{
    std::vector<bool> old;
    const std::vector<TVKControl*> visited = forEachAffectedControl(
        keyset, layer, group, control, copyToAllLayers, [&](size_t i, qint64, TVKControl* target) {
            if (!target || i >= latched.size())
                return;
            old.push_back(target->latched());
            target->setLatched(latched[i]);
        });
    m_undoManager.registerUndo(
        [this, old, keyset, layer, group, control, copyToAllLayers] {
            undoableSetLatchStyle(old, keyset, layer, group, control, copyToAllLayers);
        },
        tr("Change Latch Style"));
    finishControlEdit(visited, copyToAllLayers, keyset, layer, group, control);
    if (m_messenger) {
        for (const qint64 l : affectedLayers(layer, copyToAllLayers))
            m_messenger->updateProperty(Property::LatchProperty, int(keyset), int(l), int(group),
                                        int(control));
    }
    qint64 onscreenGroup = 0;
    qint64 onscreenControl = 0;
    toOnscreen(group, control, onscreenGroup, onscreenControl);
    setSelectedGroup(onscreenGroup);
    setSelectedControl(onscreenControl);
    notifyOfRemoteControlChange(onscreenControl, onscreenGroup, false);
}

namespace {

// The on or the off colour of a control that has it.
std::optional<qint64> colorOf(TVKControl* control, bool off)
{
    if (auto* button = dynamic_cast<TVKMultiColorButtonControl*>(control))
        return off ? button->offColor() : button->onColor();
    if (auto* trackball = dynamic_cast<TVK4WayControl*>(control); trackball && !off)
        return trackball->onColor();
    return std::nullopt;
}

void setColorOf(TVKControl* control, bool off, qint64 color)
{
    if (auto* button = dynamic_cast<TVKMultiColorButtonControl*>(control)) {
        if (off)
            button->setOffColor(int(color));
        else
            button->setOnColor(int(color));
    } else if (auto* trackball = dynamic_cast<TVK4WayControl*>(control); trackball && !off) {
        trackball->setOnColor(int(color));
    }
}

} // namespace

void TVKController::undoableSetOnColor(const std::vector<qint64>& colors, qint64 keyset,
                                       qint64 layer, qint64 group, qint64 control,
                                       bool copyToAllLayers)
{
    undoableSetColor(false, colors, keyset, layer, group, control, copyToAllLayers);
}

void TVKController::undoableSetOffColor(const std::vector<qint64>& colors, qint64 keyset,
                                        qint64 layer, qint64 group, qint64 control,
                                        bool copyToAllLayers)
{
    undoableSetColor(true, colors, keyset, layer, group, control, copyToAllLayers);
}

void TVKController::undoableSetColor(bool off, const std::vector<qint64>& colors, qint64 keyset,
                                     qint64 layer, qint64 group, qint64 control,
                                     bool copyToAllLayers)
{
    std::vector<qint64> old;
    qint64 shown = 0;
    const int property = off ? Property::OffColorProperty : Property::OnColorProperty;
    const std::vector<TVKControl*> visited =
        forEachAffectedControl(keyset, layer, group, control, copyToAllLayers,
                               [&](size_t i, qint64 l, TVKControl* target) {
                                   const std::optional<qint64> color = colorOf(target, off);
                                   if (!color || i >= colors.size())
                                       return;
                                   old.push_back(*color);
                                   setColorOf(target, off, colors[i]);
                                   if (!copyToAllLayers || l == m_selectedLayer)
                                       shown = colors[i];
                                   if (m_messenger)
                                       m_messenger->updateProperty(property, int(keyset), int(l),
                                                                   int(group), int(control));
                               });
    m_undoManager.registerUndo(
        [this, off, old, keyset, layer, group, control, copyToAllLayers] {
            undoableSetColor(off, old, keyset, layer, group, control, copyToAllLayers);
        },
        tr("Change Color"));
    qint64 onscreenGroup = 0;
    qint64 onscreenControl = 0;
    toOnscreen(group, control, onscreenGroup, onscreenControl);
    if (off)
        notifyOfControlOffColorChange(shown, onscreenGroup, onscreenControl);
    else
        notifyOfControlOnColorChange(shown, onscreenGroup, onscreenControl);
    finishControlEdit(visited, copyToAllLayers, keyset, layer, group, control);
    setSelectedGroup(onscreenGroup);
    setSelectedControl(onscreenControl);
}

void TVKController::undoableInsertAction(const ActionList& actions, qint64 keyset, qint64 layer,
                                         qint64 group, qint64 control, const QString& undoName,
                                         bool copyToAllLayers)
{
    ActionList old;
    bool storedNone = false;
    const std::vector<TVKControl*> visited = forEachAffectedControl(
        keyset, layer, group, control, copyToAllLayers, [&](size_t i, qint64, TVKControl* target) {
            if (!target || i >= actions.size())
                return;
            std::unique_ptr<TVKAction> previous = target->takeAction();
            if (!previous)
                previous = std::make_unique<TVKNULLAction>(target);
            old.push_back(std::move(previous));
            const TVKAction* next = actions[i].get();
            if (!next || next->actionType() == TVKNULLAction::kActionType) {
                target->setAction(nullptr);
                storedNone = true;
            } else {
                target->setAction(next);
            }
        });
    m_undoManager.registerUndo(
        [this, old, keyset, layer, group, control, undoName, copyToAllLayers] {
            undoableInsertAction(old, keyset, layer, group, control, undoName, copyToAllLayers);
        },
        undoName);
    TVKControl* edited = visited.empty() ? nullptr : visited.back();
    const bool isSelected = m_modelData && edited && m_modelData->selectedControl() == edited;
    const bool visibleEditorUpdate =
        !isSelected || m_undoManager.isUndoing() || m_undoManager.isRedoing() || storedNone;
    if (m_modelData && !isSelected)
        selectEditedControl(keyset, layer, group, control);
    if (m_messenger) {
        for (const qint64 l : affectedLayers(layer, copyToAllLayers))
            m_messenger->updateProperty(Property::ActionProperty, int(keyset), int(l), int(group),
                                        int(control));
    }
    qint64 onscreenGroup = 0;
    qint64 onscreenControl = 0;
    toOnscreen(group, control, onscreenGroup, onscreenControl);
    setSelectedGroup(onscreenGroup);
    setSelectedControl(onscreenControl);
    notifyKeysetSummaryNeedsUpdate();
    notifyOfRemoteControlChange(onscreenControl, onscreenGroup, visibleEditorUpdate);
}

void TVKController::undoableInsertDisplayAction(std::shared_ptr<const TVKAction> action,
                                                qint64 keyset, qint64 layer, qint64 group,
                                                qint64 display, const QString& undoName)
{
    TVKControl* target = m_modelData ? m_modelData->displayForKeyset(int(keyset), int(layer),
                                                                     int(group), int(display))
                                     : nullptr;
    std::shared_ptr<const TVKAction> old;
    if (target) {
        old = target->takeAction();
        target->setAction(action.get());
    }
    m_undoManager.registerUndo(
        [this, old, keyset, layer, group, display, undoName] {
            undoableInsertDisplayAction(old, keyset, layer, group, display, undoName);
        },
        undoName);
    const bool isSelected = m_modelData && target && m_modelData->selectedDisplay() == target;
    if (m_modelData && !isSelected) {
        m_modelData->setSelectedKeysetIndex(int(keyset));
        m_modelData->setSelectedLayerIndex(int(layer));
        setSelectedDisplay(display, group);
        setIconForKeyset(m_modelData->selectedKeyset());
    }
    if (m_messenger)
        m_messenger->updateDisplayAction(target ? target->action() : action.get(), int(keyset),
                                         int(layer), int(group), int(display));
    notifyOfRemoteDisplayChange(
        display, group, !isSelected || m_undoManager.isUndoing() || m_undoManager.isRedoing());
}
