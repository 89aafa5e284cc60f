#include "actions/editors/EmulationActionEditor.h"

#include "actions/ActionText.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKEmulationAction.h"
#include "actions/editors/EditorActions.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

namespace corvane {

namespace {

// Size and named flag of the emulated button groups, by group index.
constexpr EmulationActionEditor::GroupInfo kButtonGroups[] = {
    {5, true},    {8, false},   {4, true},    {4, true},    {6, true},    {4, true},
    {1, false},   {1, false},   {1, false},   {9, true},    {1, false},   {4, true},
    {5, true},    {2, true},    {9, true},    {128, false}, {128, false}, {128, false},
    {128, false}, {128, false}, {128, false}, {2, true},
};
constexpr EmulationActionEditor::GroupInfo kEncoderGroups[] = {
    {128, false}, {128, false}, {1, false}};
constexpr EmulationActionEditor::GroupInfo kJogGroups[] = {{1, false}};

// The groups each emulation mode offers. Modes A and B drive the console's standard button set;
// the wheel-mode buttons and the display scroll encoder exist only in mode C.
constexpr int kButtonGroupsModeAB = 21;
constexpr int kButtonGroupsModeC = 22;
constexpr int kEncoderGroupsModeAB = 2;
constexpr int kEncoderGroupsModeC = 3;

} // namespace

EmulationActionEditor::EmulationActionEditor(TVKActionContainer& container, Kind kind)
    : m_container(container), m_kind(kind)
{
    // The jog editor's speed slider belongs to mode C: it shows the action again whenever the
    // emulation mode or the keyset's lock changes.
    if (m_kind == Jog) {
        NotificationCenter& center = NotificationCenter::defaultCenter();
        m_emulationChangeObservation = center.observe<corvane::note::EmulChg>(
            nullptr, [this](const corvane::note::EmulChg&) { updateForNewAction(); });
        m_lockObservation = center.observe<corvane::note::LockStateChange>(
            nullptr, [this](const corvane::note::LockStateChange&) { updateForNewAction(); });
    }
}

qint32 EmulationActionEditor::actionType() const
{
    switch (m_kind) {
    case Button:
        return TVKButtonEmulationAction::kActionType;
    case Encoder:
        return TVKEncoderEmulationAction::kActionType;
    case Fader:
        return TVKFaderEmulationAction::kActionType;
    case Jog:
        return TVKJogEmulationAction::kActionType;
    }
    return 0;
}

EmulationActionEditor::GroupInfo EmulationActionEditor::infoForGroup(int group) const
{
    auto lookup = [group](const auto& table) {
        const int count = int(sizeof(table) / sizeof(table[0]));
        return group >= 0 && group < count ? table[group] : GroupInfo{};
    };
    switch (m_kind) {
    case Button:
        return lookup(kButtonGroups);
    case Encoder:
    case Fader:
        return lookup(kEncoderGroups);
    case Jog:
        return lookup(kJogGroups);
    }
    log(QStringLiteral("Subclasses MUST override infoForGroup"));
    return GroupInfo{};
}

QList<EmulationActionEditor::MenuItem> EmulationActionEditor::groupMenu(GroupMenu menu) const
{
    const TVK_Constant_Server& constants = surfaceConstants();
    QList<MenuItem> items;
    switch (m_kind) {
    case Button: {
        const int count = menu == GroupMenu::ModeC ? kButtonGroupsModeC : kButtonGroupsModeAB;
        for (int group = 0; group < count; ++group)
            items.append({group, constants.buttonEmulationGroupName(group)});
        break;
    }
    case Encoder:
    case Fader: {
        const int count = menu == GroupMenu::ModeC ? kEncoderGroupsModeC : kEncoderGroupsModeAB;
        for (int group = 0; group < count; ++group)
            items.append({group, constants.encoderEmulationGroupName(group)});
        break;
    }
    case Jog:
        items.append({0, QStringLiteral("jog")});
        break;
    }
    return items;
}

QList<EmulationActionEditor::MenuItem> EmulationActionEditor::controlMenuForGroup(int group) const
{
    QList<MenuItem> items;
    if (m_kind != Button)
        return items;
    // The touch sensors share the pot switches' menu.
    const int menuGroup = group == 20 ? 19 : group;
    const int count = infoForGroup(menuGroup).numberOfControls;
    for (int control = 0; control < count; ++control) {
        const QString name = surfaceConstants().buttonEmulationControlName(menuGroup, control);
        if (name.isNull())
            break;
        items.append({control, name});
    }
    return items;
}

EmulationMode EmulationActionEditor::selectedKeysetEmulationMode()
{
    const TVKModelData* model = TVKModelData::defaultModelData();
    if (!model || model->numberOfKeysets() == 0)
        return EmulationMode::None;
    const TVKKeyset* keyset = model->selectedKeyset();
    return keyset ? keyset->emulationMode() : EmulationMode::None;
}

int EmulationActionEditor::numberLimit() const
{
    const int group = m_controls.selectedGroup;
    if ((m_kind == Button && group == 20) || (m_kind != Button && m_kind != Jog && group == 1))
        return 9;
    return 8;
}

void EmulationActionEditor::setUpForGroup(int group)
{
    Controls& c = m_controls;
    const GroupInfo info = infoForGroup(group);
    c.selectedGroup = group;
    if (info.named) {
        c.numberContainerVisible = false;
        c.controlMenuGroup = group;
        c.selectedControlTag = 0;
        c.nameContainerVisible = true;
        return;
    }
    c.nameContainerVisible = false;
    if (info.numberOfControls < 2) {
        c.numberField = c.numberStepper = 0;
        c.numberContainerVisible = false;
    } else {
        c.numberField = c.numberStepper = 1;
        c.numberContainerVisible = true;
    }
}

void EmulationActionEditor::makeNewAction()
{
    const Controls& c = m_controls;
    const GroupInfo info = infoForGroup(c.selectedGroup);
    int index = 0;
    if (info.named)
        index = c.selectedControlTag;
    else if (info.numberOfControls >= 2)
        index = c.numberStepper > 0 ? qMin(c.numberStepper, info.numberOfControls) - 1 : 0;
    std::unique_ptr<TVKEmulationAction> action = makeEmulationActionOfType(
        actionType(), c.selectedGroup, index, info.named, info.numberOfControls == 1);
    if (auto* jog = dynamic_cast<TVKJogEmulationAction*>(action.get()))
        jog->setJogSpeed(selectedKeysetEmulationMode() == EmulationMode::C
                             ? unsigned(qMax(c.speedSlider, 0))
                             : 1);
    m_container.setAction(std::move(action));
}

void EmulationActionEditor::controlChanged(int senderTag)
{
    const StateChange change(*this);
    Controls& c = m_controls;
    const int limit = numberLimit();
    switch (senderTag) {
    case EmulateBox:
        if (c.emulateChecked) {
            setUpForGroup(0);
            makeNewAction();
        } else {
            setUpForGroup(0);
            m_container.setAction(nullptr);
        }
        return;
    case GroupPopUp:
        c.emulateChecked = true;
        setUpForGroup(c.selectedGroup);
        makeNewAction();
        return;
    case ControlPopUp:
        makeNewAction();
        return;
    case NumberField:
        if (c.numberField > limit)
            c.numberField = limit;
        else if (c.numberField < 1)
            c.numberField = 1;
        c.numberStepper = c.numberField;
        makeNewAction();
        return;
    case NumberStepper:
        if (c.numberStepper > limit)
            c.numberStepper = limit;
        c.numberField = c.numberStepper;
        makeNewAction();
        return;
    case SpeedSlider:
        if (m_kind == Jog) {
            c.emulateChecked = true;
            makeNewAction();
        }
        return;
    default:
        return;
    }
}

void EmulationActionEditor::updateForNewAction()
{
    const StateChange change(*this);
    Controls& c = m_controls;
    const EmulationMode mode = selectedKeysetEmulationMode();
    if (mode == EmulationMode::C)
        c.groupMenu = GroupMenu::ModeC;
    else if (mode == EmulationMode::A || mode == EmulationMode::B)
        c.groupMenu = GroupMenu::ModeAB;
    if (m_kind == Jog)
        c.modeCContainerVisible = mode == EmulationMode::C;

    if (m_container.actionType() != actionType()) {
        c.emulateChecked = false;
        c.nameContainerVisible = false;
        c.numberContainerVisible = false;
        return;
    }
    const auto* action = static_cast<const TVKEmulationAction*>(m_container.action());
    c.emulateChecked = true;
    c.selectedGroup = action->emulatedGroup();
    if (action->displayControlAsName()) {
        c.controlMenuGroup = action->emulatedGroup();
        c.selectedControlTag = action->emulatedControl();
        c.nameContainerVisible = true;
        c.numberContainerVisible = false;
    } else {
        c.nameContainerVisible = false;
        if (infoForGroup(action->emulatedGroup()).numberOfControls >= 2) {
            c.numberField = c.numberStepper = action->emulatedControl() + 1;
            c.numberContainerVisible = true;
        } else {
            c.numberField = c.numberStepper = 0;
            c.numberContainerVisible = false;
        }
    }
    if (const auto* jog = dynamic_cast<const TVKJogEmulationAction*>(action);
        jog && mode == EmulationMode::C)
        c.speedSlider = int(jog->jogSpeed());
}

} // namespace corvane
