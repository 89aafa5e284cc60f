#include "views/CorvaneExpanderControllers.h"

#include "app/CorvaneController.h"
#include "app/TVKMenuCommand.h"
#include "core/Notifications.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "views/CorvaneNVLayout.h"
#include "views/CorvanePictures.h"
#include "views/CorvaneSurfaceView.h"
#include "views/SurfaceScrollArea.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMenuBar.h"
#include "views/TVKNextFrame.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QVBoxLayout>

namespace note = corvane::note;
namespace key = corvane::key;

namespace {

QString unitForNib(const QString& nibName)
{
    return nibName == QStringLiteral("ExpanderNib") ? QStringLiteral("Expander") : nibName;
}

} // namespace

CorvaneExpanderWindowController::CorvaneExpanderWindowController(CorvaneController& master,
                                                                 const QString& nibName,
                                                                 TVKMenuBar* menuBar)
    : m_master(master), m_menuBar(menuBar)
{
    setObjectName(nibName);
    setMenuBar(menuBar);
    auto* scroll = new SurfaceScrollArea(this);
    auto* central = new QWidget(scroll);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(10, 10, 10, 6);
    m_surface = new CorvaneSurfaceView(unitForNib(nibName), central);
    column->addWidget(m_surface, 0, Qt::AlignCenter);
    scroll->setWidget(central);
    setCentralWidget(scroll);
    m_status = new QLabel(this);
    statusBar()->addWidget(m_status, 1);
    statusBar()->setSizeGripEnabled(false);

    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    center.observeEach<note::SelectedLayerChange, note::RemoteLayerChange,
                       note::SelectedKeysetChange, note::KeysetCountChange>(
        m_observations, nullptr, [this] { updateStatus(); });
    updateStatus();
}

void CorvaneExpanderWindowController::showWindow()
{
    show();
    raise();
    activateWindow();
}

void CorvaneExpanderWindowController::closeEvent(QCloseEvent* event)
{
    QMainWindow::closeEvent(event);
    Q_EMIT windowClosed();
}

QString CorvaneExpanderWindowController::describeState() const
{
    const TVKModelData* model = m_master.modelData();
    const TVKKeyset* keyset =
        model ? model->keysetAtIndex(int(m_master.selectedKeyset())) : nullptr;
    return tr("%1 — Layer %2")
        .arg(keyset ? keyset->name() : QString())
        .arg(m_master.selectedLayer() + 1);
}

void CorvaneExpanderWindowController::updateStatus()
{
    m_status->setText(describeState());
}

CorvaneExpanderController::CorvaneExpanderController(CorvaneController& master, TVKMenuBar* menuBar)
    : CorvaneExpanderWindowController(master, QStringLiteral("ExpanderNib"), menuBar)
{
    setWindowTitle(tr("TL Expander"));
}

CorvaneTLWController::CorvaneTLWController(CorvaneController& master, TVKMenuBar* menuBar)
    : CorvaneExpanderWindowController(master, QStringLiteral("CorvaneTLW"), menuBar)
{
    setWindowTitle(tr("TLW Expander"));
}

CorvaneTLW2Controller::CorvaneTLW2Controller(CorvaneController& master, TVKMenuBar* menuBar)
    : CorvaneExpanderWindowController(master, QStringLiteral("CorvaneTLW2"), menuBar)
{
    setWindowTitle(tr("TLW2 Expander"));
}

CorvaneDZController::CorvaneDZController(CorvaneController& master, TVKMenuBar* menuBar)
    : CorvaneExpanderWindowController(master, QStringLiteral("CorvaneDZ"), menuBar)
{
    setWindowTitle(tr("DZ Displays"));
}

// --- The NV ------------------------------------------------------------------------------------

CorvaneNVController::CorvaneNVController(CorvaneController& master, TVKMenuBar* menuBar,
                                         TVKDialogs& dialogs)
    : CorvaneExpanderWindowController(master, QStringLiteral("CorvaneNV"), menuBar),
      m_dialogs(dialogs)
{
    setWindowTitle(tr("NV Expander"));
    m_menu = new QMenu(tr("&NV"), this);
    const auto command = [this, &master](const QString& title, NVCommand tag,
                                         const QKeySequence& shortcut = {}) {
        auto* item = new QAction(title, this);
        TVKMenuItems::setCommand(item, TVKMenuCommand::HandleCorvaneNVMenuItems, tag);
        item->setShortcut(shortcut);
        connect(item, &QAction::triggered, &master, [&master, item] { master.perform(item); });
        m_menu->addAction(item);
        return item;
    };
    command(tr("New Group…"), NewGroup, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G));
    m_addMenu = m_menu->addMenu(tr("Add Selection to Group"));
    command(tr("Remove Selection from Group"), RemoveFromGroup);
    m_selectMenu = m_menu->addMenu(tr("Select Group"));
    m_deleteMenu = m_menu->addMenu(tr("Delete Group"));
    m_menu->addSeparator();
    command(tr("Previous Bank"), PreviousBank, QKeySequence(Qt::CTRL | Qt::Key_BracketLeft));
    command(tr("Next Bank"), NextBank, QKeySequence(Qt::CTRL | Qt::Key_BracketRight));
    connect(m_menu, &QMenu::aboutToShow, this, [this] {
        rebuildGroupMenus();
        for (QAction* item : m_menu->actions()) {
            if (TVKMenuItems::command(item) == TVKMenuCommand::HandleCorvaneNVMenuItems)
                item->setEnabled(m_master.validateMenuItem(item));
        }
    });

    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    // A bank change redraws the LCD buttons: on the next frame, after the touch is answered.
    m_followNextFrame = new TVKNextFrame(this, [this] { followSelection(); });
    center.observeEach<note::SelectionChange, note::RemoteSelectionChange>(
        m_observations, nullptr, [this] { m_followNextFrame->request(); });
    applyBanks();
}

int CorvaneNVController::selectedButton() const
{
    if (m_master.displaySelected() || m_master.selectedGroup() != corvane::nv::kOnscreenLCDButtons)
        return -1;
    return int(m_master.modelDataControlIndex());
}

void CorvaneNVController::followSelection()
{
    if (!m_master.displaySelected() &&
        m_banks.follow(m_master.selectedGroup(), m_master.selectedControl()))
        applyBanks();
}

void CorvaneNVController::setBank(int bank)
{
    if (bank < 0 || bank >= corvane::nv::kBanks || bank == m_banks.bank)
        return;
    m_banks.bank = bank;
    applyBanks();
}

void CorvaneNVController::setFunctionKey(int function)
{
    if (function < 0 || function >= corvane::nv::kFunctionKeys || function == m_banks.function)
        return;
    m_banks.function = function;
    applyBanks();
}

void CorvaneNVController::setParameter(int parameter)
{
    if (parameter < 0 || parameter >= corvane::nv::kParametersPerFunction ||
        parameter == m_banks.parameter)
        return;
    m_banks.parameter = parameter;
    applyBanks();
}

void CorvaneNVController::applyBanks()
{
    m_banks.apply(*m_surface);
    updateStatus();
}

QString CorvaneNVController::describeState() const
{
    return tr("%1  ·  Bank %2  ·  F%3  ·  Parameter %4")
        .arg(CorvaneExpanderWindowController::describeState())
        .arg(m_banks.bank + 1)
        .arg(m_banks.function + 1)
        .arg(m_banks.parameter + 1);
}

void CorvaneNVController::rebuildGroupMenus()
{
    m_master.updateCorvaneNVGroupMenus();
    const std::pair<QMenu*, const std::vector<QAction*>*> menus[] = {
        {m_addMenu, &m_master.addToGroupMenu()},
        {m_deleteMenu, &m_master.deleteGroupMenu()},
        {m_selectMenu, &m_master.selectGroupMenu()}};
    for (const auto& [menu, items] : menus) {
        menu->clear();
        for (QAction* item : *items)
            menu->addAction(item);
        menu->setEnabled(!items->empty());
    }
}

void CorvaneNVController::addSelectionToGroup(int group)
{
    auto* model = m_master.corvaneModelData();
    const int button = selectedButton();
    if (!model || button < 0)
        return;
    m_master.changeCorvaneNVGroups(
        [&](CorvaneModelData& groups) { groups.addButtonID(button, group); });
    m_surface->update();
    corvane::NotificationCenter::defaultCenter().post(note::CorvaneNVSelectGroup{}, this);
}

void CorvaneNVController::deleteGroup(int group)
{
    if (m_master.corvaneModelData()) {
        m_master.changeCorvaneNVGroups(
            [&](CorvaneModelData& groups) { groups.deleteCorvaneNVGroup(group); });
        m_master.updateCorvaneNVGroupMenus();
        corvane::NotificationCenter::defaultCenter().post(note::CorvaneNVSelectGroup{}, this);
    }
}

void CorvaneNVController::selectGroup(int group)
{
    const auto* model = m_master.corvaneModelData();
    const corvane::PlistValue* found = model ? model->corvaneNVGroupWithID(group) : nullptr;
    if (!found)
        return;
    const corvane::PlistValue& members = found->value(key::GrpMem);
    if (members.size() == 0)
        return;
    // The group's first button, in its bank.
    const int button = members.at(0).toString().toInt();
    setBank(button / corvane::nv::kButtonsPerBank);
    m_master.handleTVKControl(button, corvane::nv::kOnscreenLCDButtons);
}

bool CorvaneNVController::validateCorvaneNVMenuItem(QAction* item)
{
    const auto* model = m_master.corvaneModelData();
    const TVKKeyset* keyset =
        model ? model->keysetAtIndex(int(m_master.selectedKeyset())) : nullptr;
    const bool editable = keyset && !keyset->locked();
    switch (TVKMenuItems::tag(item)) {
    case NewGroup:
        return editable && model->numCorvaneNVGroups() < 8;
    case RemoveFromGroup:
        return editable && selectedButton() >= 0 &&
               model->corvaneNVGroupForButtonWithID(selectedButton()) >= 0;
    case PreviousBank:
        return m_banks.bank > 0;
    case NextBank:
        return m_banks.bank < corvane::nv::kBanks - 1;
    default:
        return false;
    }
}

void CorvaneNVController::handleCorvaneNVMenuItem(QAction* item)
{
    auto* model = m_master.corvaneModelData();
    if (!model)
        return;
    switch (TVKMenuItems::tag(item)) {
    case NewGroup: {
        const std::optional<QString> name =
            m_dialogs.runTextInput(tr("New Group"), tr("Name of the new button group:"),
                                   tr("Group %1").arg(model->numCorvaneNVGroups() + 1));
        if (!name || name->trimmed().isEmpty())
            return;
        m_master.changeCorvaneNVGroups(
            [&](CorvaneModelData& groups) { groups.createCorvaneNVGroupNamed(name->trimmed()); });
        m_master.updateCorvaneNVGroupMenus();
        // The selected button joins the group it was made for.
        if (selectedButton() >= 0)
            addSelectionToGroup(model->numCorvaneNVGroups() - 1);
        break;
    }
    case RemoveFromGroup: {
        const int button = selectedButton();
        const int group = button >= 0 ? model->corvaneNVGroupForButtonWithID(button) : -1;
        if (group >= 0) {
            m_master.changeCorvaneNVGroups(
                [&](CorvaneModelData& groups) { groups.deleteButtonID(button, group); });
            m_master.updateCorvaneNVGroupMenus();
            m_surface->update();
            corvane::NotificationCenter::defaultCenter().post(note::CorvaneNVSelectGroup{}, this);
        }
        break;
    }
    case PreviousBank:
        setBank(m_banks.bank - 1);
        break;
    case NextBank:
        setBank(m_banks.bank + 1);
        break;
    default:
        break;
    }
}
