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
using corvane::ControlProperty;
using corvane::PlistValue;

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
    // An undone edit may lie in another keyset or layer: the whole selection moves to it.
    selectKeysetAndLayer(keyset, layer);
    const TVKSelection before = selection();
    selectControl(int(group), int(control));
    setIconForKeyset(m_modelData->selectedKeyset());
    updateHardwareControlsPreviousGroup(before.group, before.control, group, control);
}

void TVKController::finishControlEdit(const std::vector<TVKControl*>& visited, bool copyToAllLayers,
                                      qint64 keyset, qint64 layer, qint64 group, qint64 control)
{
    if (!m_modelData)
        return;
    // Only a copy keeps the last control visited for the comparison with the selection, so a
    // single-layer edit always moves the selection.
    TVKControl* edited = copyToAllLayers && !visited.empty() ? visited.back() : nullptr;
    if (!isSelectedControl(edited))
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
    if (!m_modelData || !displaySelected())
        return;
    undoableSetDisplayUserName(n.userName, m_modelData->selectedKeysetIndex(),
                               m_modelData->selectedLayerIndex(), selection().displayGroup,
                               selection().display, n.copyToLayers);
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
        selectedKeyset(), selectedLayer(), modelDataGroupIndex(), modelDataControlIndex(),
        tr("Edit Control Action"), copy);
}

void TVKController::handleDeleteAction(const note::DeleteAction& n)
{
    const bool copy = n.copyToLayers;
    const std::shared_ptr<const TVKAction> none = std::make_shared<TVKNULLAction>();
    undoableInsertAction(repeated(none, copy, kDeleteCopyCount), selectedKeyset(), selectedLayer(),
                         modelDataGroupIndex(), modelDataControlIndex(),
                         tr("Delete Control Action"), copy);
}

void TVKController::handleInsertEditedDisplayAction(const note::InsertEditedDisplayAction&)
{
    const TVKAction* edited = m_views.windows->inspectorEditedAction();
    if (!edited)
        return;
    undoableInsertDisplayAction(edited->copyWithZone(), selectedKeyset(), selectedLayer(),
                                selection().displayGroup, selection().display,
                                tr("Edit Display Function"));
}

void TVKController::handleDeleteDisplayAction(const note::DeleteDisplayAction&)
{
    undoableInsertDisplayAction(nullptr, selectedKeyset(), selectedLayer(),
                                selection().displayGroup, selection().display,
                                tr("Delete Display Function"));
}

void TVKController::handleInspectorNeedsUpdate(const note::InspUpdate& n)
{
    notifyOfControlChange(n.controlIndex, n.groupID);
}

// --- Property edits ------------------------------------------------------------------------------

namespace {

template <typename T>
std::vector<PlistValue> plistValues(const std::vector<T>& values)
{
    std::vector<PlistValue> result;
    result.reserve(values.size());
    for (const T& value : values)
        result.emplace_back(value);
    return result;
}

// Whether storing `next` leaves a control holding `current` as it was: both none, or two actions
// that archive alike.
bool sameAction(const TVKAction* current, const TVKAction* next)
{
    if (!current || !next)
        return current == next;
    if (current->actionType() != next->actionType())
        return false;
    PlistValue currentDict = PlistValue::makeDict();
    PlistValue nextDict = PlistValue::makeDict();
    current->writeTo(currentDict);
    next->writeTo(nextDict);
    return currentDict == nextDict;
}

// A control action as the model stores it: the null action is stored as none.
const TVKAction* storedForm(const TVKAction* action)
{
    return action && action->actionType() != TVKNULLAction::kActionType ? action : nullptr;
}

} // namespace

TVKController::PropertyEdit TVKController::setControlProperty(ControlProperty property,
                                                              const std::vector<PlistValue>& values,
                                                              qint64 keyset, qint64 layer,
                                                              qint64 group, qint64 control,
                                                              bool copyToAllLayers)
{
    const corvane::ControlPropertyRow& row = corvane::controlProperty(property);
    PropertyEdit edit;
    edit.visited =
        forEachAffectedControl(keyset, layer, group, control, copyToAllLayers,
                               [&](size_t i, qint64 l, TVKControl* target) {
                                   std::optional<PlistValue> before = target && i < values.size()
                                                                          ? row.value(target)
                                                                          : std::nullopt;
                                   if (!before)
                                       return;
                                   row.setValue(*target, values[i]);
                                   edit.changed = edit.changed || row.value(target) != before;
                                   edit.taken.push_back({i, l, std::move(*before)});
                               });
    return edit;
}

bool TVKController::changesNothing(const PropertyEdit& edit) const
{
    return !m_undoManager.isUndoing() && !m_undoManager.isRedoing() && !edit.visited.empty() &&
           edit.taken.size() == edit.visited.size() && !edit.changed;
}

bool TVKController::changesNothing(const ActionList& actions, qint64 keyset, qint64 layer,
                                   qint64 group, qint64 control, bool copyToAllLayers) const
{
    if (m_undoManager.isUndoing() || m_undoManager.isRedoing())
        return false;
    const std::vector<qint64> layers = affectedLayers(layer, copyToAllLayers);
    if (layers.empty() || actions.size() < layers.size())
        return false;
    for (size_t i = 0; i < layers.size(); ++i) {
        const TVKControl* target = controlAt(keyset, layers[i], group, control);
        if (!target || !sameAction(target->action(), storedForm(actions[i].get())))
            return false;
    }
    return true;
}

// --- Primitives without undo ---------------------------------------------------------------------

void TVKController::undoableSetUserName(const QString& name, qint64 keyset, qint64 layer,
                                        qint64 group, qint64 control, bool copyToAllLayers)
{
    const PropertyEdit edit = setControlProperty(
        ControlProperty::UserName,
        std::vector<PlistValue>(affectedLayers(layer, copyToAllLayers).size(), PlistValue(name)),
        keyset, layer, group, control, copyToAllLayers);
    if (changesNothing(edit))
        return;
    if (m_messenger)
        m_messenger->updateProperty(ControlProperty::UserName, int(keyset), int(layer), int(group),
                                    int(control));
    notifyOfControlUserNameChange(edit.visited.empty() ? nullptr : edit.visited.back());
}

void TVKController::recordedSetUserNames(const std::vector<QString>& names, qint64 keyset,
                                         qint64 layer, qint64 group, qint64 control,
                                         bool copyToAllLayers)
{
    const PropertyEdit edit = setControlProperty(ControlProperty::UserName, plistValues(names),
                                                 keyset, layer, group, control, copyToAllLayers);
    if (changesNothing(edit))
        return;
    // Every layer visited gets its name back, a missing control none.
    std::vector<QString> old;
    for (const TVKControl* target : edit.visited)
        old.push_back(target ? target->userName() : QString());
    for (const PropertyEdit::Taken& taken : edit.taken)
        old[taken.index] = taken.old.toString();
    TVKControl* last = edit.taken.empty() ? nullptr : edit.visited[edit.taken.back().index];
    m_undoManager.registerUndo(
        [this, old, keyset, layer, group, control, copyToAllLayers] {
            recordedSetUserNames(old, keyset, layer, group, control, copyToAllLayers);
        },
        tr("Change Name"), keyset);
    if (m_messenger)
        m_messenger->updateProperty(ControlProperty::UserName, int(keyset), int(layer), int(group),
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

void TVKController::setPropertyWithoutUndo(ControlProperty property, ControlProperty sentAs,
                                           const std::vector<qint64>& values, qint64 keyset,
                                           qint64 layer, qint64 group, qint64 control,
                                           bool copyToAllLayers)
{
    const PropertyEdit edit = setControlProperty(property, plistValues(values), keyset, layer,
                                                 group, control, copyToAllLayers);
    if (changesNothing(edit) || !m_messenger)
        return;
    for (const PropertyEdit::Taken& taken : edit.taken)
        m_messenger->updateProperty(sentAs, int(keyset), int(taken.layer), int(group),
                                    int(control));
}

void TVKController::undoableSetBrightness(const std::vector<qint64>& values, qint64 keyset,
                                          qint64 layer, qint64 group, qint64 control,
                                          bool copyToAllLayers)
{
    setPropertyWithoutUndo(ControlProperty::Brightness, ControlProperty::Brightness, values, keyset,
                           layer, group, control, copyToAllLayers);
}

void TVKController::undoableSetJogSensitivity(const std::vector<qint64>& values, qint64 keyset,
                                              qint64 layer, qint64 group, qint64 control,
                                              bool copyToAllLayers)
{
    setPropertyWithoutUndo(ControlProperty::JogSensitivity, ControlProperty::JogSensitivity, values,
                           keyset, layer, group, control, copyToAllLayers);
}

void TVKController::undoableSetJoystickSensitivity(const std::vector<qint64>& values, qint64 keyset,
                                                   qint64 layer, qint64 group, qint64 control,
                                                   bool copyToAllLayers)
{
    // Copied to all layers it goes out as the jog's property, on one layer as its own.
    setPropertyWithoutUndo(ControlProperty::JoystickSensitivity,
                           copyToAllLayers ? ControlProperty::JogSensitivity
                                           : ControlProperty::JoystickSensitivity,
                           values, keyset, layer, group, control, copyToAllLayers);
}

// --- Undoable primitives -------------------------------------------------------------------------

void TVKController::undoableSetLatchStyle(const std::vector<bool>& latched, qint64 keyset,
                                          qint64 layer, qint64 group, qint64 control,
                                          bool copyToAllLayers)
{
    const PropertyEdit edit = setControlProperty(ControlProperty::Latch, plistValues(latched),
                                                 keyset, layer, group, control, copyToAllLayers);
    if (changesNothing(edit))
        return;
    std::vector<bool> old;
    for (const PropertyEdit::Taken& taken : edit.taken)
        old.push_back(taken.old.toBool());
    m_undoManager.registerUndo(
        [this, old, keyset, layer, group, control, copyToAllLayers] {
            undoableSetLatchStyle(old, keyset, layer, group, control, copyToAllLayers);
        },
        tr("Change Latch Style"), keyset);
    finishControlEdit(edit.visited, copyToAllLayers, keyset, layer, group, control);
    if (m_messenger) {
        for (const qint64 l : affectedLayers(layer, copyToAllLayers))
            m_messenger->updateProperty(ControlProperty::Latch, int(keyset), int(l), int(group),
                                        int(control));
    }
    notifyOfRemoteControlChange(selectedControl(), selectedGroup(), false);
}

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
    const ControlProperty property = off ? ControlProperty::OffColor : ControlProperty::OnColor;
    const PropertyEdit edit = setControlProperty(property, plistValues(colors), keyset, layer,
                                                 group, control, copyToAllLayers);
    if (changesNothing(edit))
        return;
    std::vector<qint64> old;
    qint64 shown = 0;
    for (const PropertyEdit::Taken& taken : edit.taken) {
        old.push_back(taken.old.toInteger());
        if (!copyToAllLayers || taken.layer == selectedLayer())
            shown = colors[taken.index];
        if (m_messenger)
            m_messenger->updateProperty(property, int(keyset), int(taken.layer), int(group),
                                        int(control));
    }
    m_undoManager.registerUndo(
        [this, off, old, keyset, layer, group, control, copyToAllLayers] {
            undoableSetColor(off, old, keyset, layer, group, control, copyToAllLayers);
        },
        tr("Change Color"), keyset);
    qint64 onscreenGroup = 0;
    qint64 onscreenControl = 0;
    toOnscreen(group, control, onscreenGroup, onscreenControl);
    if (off)
        notifyOfControlOffColorChange(shown, onscreenGroup, onscreenControl);
    else
        notifyOfControlOnColorChange(shown, onscreenGroup, onscreenControl);
    const TVKSelection before = selection();
    finishControlEdit(edit.visited, copyToAllLayers, keyset, layer, group, control);
    // Undone or redone on another control, the edit takes every view along to it.
    if (selection() != before)
        notifyOfRemoteControlChange(selectedControl(), selectedGroup(), true);
}

void TVKController::undoableInsertAction(const ActionList& actions, qint64 keyset, qint64 layer,
                                         qint64 group, qint64 control, const QString& undoName,
                                         bool copyToAllLayers)
{
    if (changesNothing(actions, keyset, layer, group, control, copyToAllLayers))
        return;
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
        undoName, keyset);
    TVKControl* edited = visited.empty() ? nullptr : visited.back();
    const bool isSelected = isSelectedControl(edited);
    const bool visibleEditorUpdate = !isSelected || m_undoManager.isUndoing() ||
                                     m_undoManager.isRedoing() || storedNone ||
                                     m_editFromMenuCommand;
    if (m_modelData && !isSelected)
        selectEditedControl(keyset, layer, group, control);
    if (m_messenger) {
        for (const qint64 l : affectedLayers(layer, copyToAllLayers))
            m_messenger->updateProperty(ControlProperty::Action, int(keyset), int(l), int(group),
                                        int(control));
    }
    notifyKeysetSummaryNeedsUpdate();
    notifyOfRemoteControlChange(selectedControl(), selectedGroup(), visibleEditorUpdate);
}

void TVKController::undoableInsertDisplayAction(std::shared_ptr<const TVKAction> action,
                                                qint64 keyset, qint64 layer, qint64 group,
                                                qint64 display, const QString& undoName)
{
    TVKControl* target = m_modelData ? m_modelData->displayForKeyset(int(keyset), int(layer),
                                                                     int(group), int(display))
                                     : nullptr;
    if (target && sameAction(target->action(), action.get()) && !m_undoManager.isUndoing() &&
        !m_undoManager.isRedoing())
        return;
    std::shared_ptr<const TVKAction> old;
    if (target) {
        old = target->takeAction();
        target->setAction(action.get());
    }
    m_undoManager.registerUndo(
        [this, old, keyset, layer, group, display, undoName] {
            undoableInsertDisplayAction(old, keyset, layer, group, display, undoName);
        },
        undoName, keyset);
    const bool isSelected =
        m_modelData && target && displaySelected() && m_modelData->selectedDisplay() == target;
    if (m_modelData && !isSelected) {
        selectKeysetAndLayer(keyset, layer);
        setSelectedDisplay(display, group);
        setIconForKeyset(m_modelData->selectedKeyset());
    }
    if (m_messenger)
        m_messenger->updateDisplayAction(target ? target->action() : action.get(), int(keyset),
                                         int(layer), int(group), int(display));
    notifyOfRemoteDisplayChange(display, group,
                                !isSelected || m_undoManager.isUndoing() ||
                                    m_undoManager.isRedoing() || m_editFromMenuCommand);
}
