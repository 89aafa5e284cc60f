#include "app/CorvaneController.h"

#include "app/TVKRecoveryJournal.h"
#include "core/EthernetSettings.h"
#include "core/Notifications.h"
#include "core/PlistValue.h"
#include "core/StoredKeys.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneModelData.h"
#include "model/KeysetFiles.h"
#include "service/CorvaneMessenger.h"
#include "surface/Corvane_Constant_Server.h"

#include <QAction>

namespace note = corvane::note;
namespace key = corvane::key;
using Command = TVKMenuCommand;
using corvane::PlistValue;

namespace {

// Group 40 is the NV expander's first group on screen.
constexpr qint64 kFirstNVGroup = 40;

} // namespace

CorvaneController::CorvaneController()
{
    m_constantServer = std::make_unique<Corvane_Constant_Server>();
    addMenuItem(Command::ReverseRBButtons, tr("Reverse R and B Buttons"))->setCheckable(true);
    for (const auto& [command, title] : {std::pair{Command::ShowExpander, tr("TL Expander")},
                                         std::pair{Command::ShowTLW, tr("TLW Expander")},
                                         std::pair{Command::ShowTLW2, tr("TLW2 Expander")},
                                         std::pair{Command::ShowNV, tr("NV Expander")}})
        addMenuItem(command, title)->setCheckable(true);
}

CorvaneController::~CorvaneController() = default;

CorvaneModelData* CorvaneController::corvaneModelData() const
{
    return dynamic_cast<CorvaneModelData*>(m_modelData.get());
}

CorvaneMessenger* CorvaneController::corvaneMessenger() const
{
    return dynamic_cast<CorvaneMessenger*>(m_messenger.get());
}

std::unique_ptr<TVK_PrivateMessenger> CorvaneController::makeMessenger()
{
    return std::make_unique<CorvaneMessenger>(this);
}

std::unique_ptr<TVKModelData> CorvaneController::makeModelData()
{
    return std::make_unique<CorvaneModelData>();
}

std::unique_ptr<TVKModelData> CorvaneController::makeModelDataWithArchive(const PlistValue& archive)
{
    return std::make_unique<CorvaneModelData>(archive);
}

TVKInstallationNames CorvaneController::controllerName()
{
    return {QStringLiteral("corvaneEthernet"),
            QStringLiteral("Corvane Ethernet"),
            QStringLiteral("CorvaneEthernetMIDIDriver.plugin"),
            QStringLiteral("com.tavrik.CorvaneRS.background.app"),
            QStringLiteral("com.tavrik.CorvaneRS.background"),
            QStringLiteral("Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher.app"),
            QStringLiteral("Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher"),
            QStringLiteral("Corvane uninstaller.app")};
}

std::unique_ptr<TVKKeyset> CorvaneController::makeKeysetFromArchive(const PlistValue& archive)
{
    return std::make_unique<CorvaneKeyset>(archive, m_modelData.get());
}

QString CorvaneController::keysetFileType() const
{
    return corvane::keysetFileType();
}

QString CorvaneController::inspectorNibName() const
{
    return QStringLiteral("ExpandersInspector");
}

void CorvaneController::awakeFromNib()
{
    TVKController::awakeFromNib();
    // Each picture with its @2x drawing, taken where the screen needs it.
    const auto picture = [](const QString& name) {
        QIcon icon;
        icon.addFile(QStringLiteral(":/images/%1.png").arg(name));
        icon.addFile(QStringLiteral(":/images/%1@2x.png").arg(name));
        return icon;
    };
    m_notConnectedImage = picture(QStringLiteral("corvane_connect_icon_off"));
    m_connectedImage = picture(QStringLiteral("corvane_connect_icon_on"));
    m_noServiceImage = picture(QStringLiteral("corvane_connect_icon_none"));
    m_hardwareImages = {QStringLiteral("CorvaneRS_Midnight.png"), QStringLiteral("CorvaneRS.png")};
    checkConnection();
    if (CorvaneModelData* model = corvaneModelData())
        setHardwareGraphics(model->hardwareStyle());
}

void CorvaneController::getGlobalDefaults()
{
    CorvaneModelData* model = corvaneModelData();
    if (!model || !m_defaults)
        return;
    // The configuration's own pair is in the model already; only the global pair overrides it.
    const corvane::EthernetSettings ethernet = corvane::storedEthernetSettings(*m_defaults);
    if (ethernet.source == corvane::EthernetSettings::Source::Globals) {
        model->setIpAddress(ethernet.ipAddress);
        model->setEthernetPort(ethernet.port);
    }
    // Only the TL switch is read back here; the others travel in the configuration itself.
    const PlistValue& standaloneTL = m_defaults->objectForKey(key::StandaloneTL);
    if (!standaloneTL.isNull())
        model->setStandaloneTL(standaloneTL.toInteger() != 0);
    const PlistValue& style = m_defaults->objectForKey(key::HardwareStyle);
    if (!style.isNull())
        model->setHardwareStyle(int(style.toInteger()));
}

void CorvaneController::saveGlobalDefaults()
{
    CorvaneModelData* model = corvaneModelData();
    if (!model || !m_defaults)
        return;
    m_defaults->setObject(key::IPAdr, PlistValue(model->ipAddress()));
    m_defaults->setObject(key::EnetPrt, PlistValue(qint64(model->ethernetPort())));
    m_defaults->setObject(key::StandaloneTL, PlistValue(qint64(model->standaloneTL() ? 1 : 0)));
    m_defaults->setObject(key::StandaloneTLW, PlistValue(qint64(model->standaloneTLW() ? 1 : 0)));
    m_defaults->setObject(key::StandaloneTLW2, PlistValue(qint64(model->standaloneTLW2() ? 1 : 0)));
    m_defaults->setObject(key::HardwareStyle, PlistValue(qint64(model->hardwareStyle())));
    m_defaults->synchronize();
}

void CorvaneController::setHardwareGraphics(qint64 style)
{
    if (style >= 0 && style < m_hardwareImages.size())
        m_views.windows->showHardwareImage(m_hardwareImages.at(style));
    notifyWithMessage(note::HdwStyChg{});
}

void CorvaneController::windowDidBecomeKey(TVKWindow window)
{
    TVKController::windowDidBecomeKey(window);
    if (window != TVKWindow::Main || m_windowAlreadyBecameKey)
        return;
    m_windowAlreadyBecameKey = true;
    CorvaneModelData* model = corvaneModelData();
    if (!model)
        return;
    if (CorvaneMessenger* messenger = corvaneMessenger())
        tellServiceUnjournaled([&] { messenger->sendStandaloneTLState(model->standaloneTL()); });
    if (model->standaloneTLW()) {
        showTLW();
    } else if (model->standaloneTLW2()) {
        showTLW2();
    } else if (model->standaloneTL()) {
        showExpander();
    } else if (model->standaloneNV()) {
        showNV();
        setSelectedGroup(kFirstNVGroup);
        setSelectedControl(0);
        notifyOfControlChange(selectedControl(), selectedGroup());
    }
}

void CorvaneController::handleMainWindowChange(TVKWindow window)
{
    if (window == TVKWindow::NV && !m_corvaneNVMenuActive) {
        m_views.windows->showCorvaneNVMenu(true);
        m_corvaneNVMenuActive = true;
    } else if (window != TVKWindow::NV && m_corvaneNVMenuActive) {
        m_views.windows->showCorvaneNVMenu(false);
        m_corvaneNVMenuActive = false;
    }
}

void CorvaneController::reverseRBButtons()
{
    auto* keyset = dynamic_cast<CorvaneKeyset*>(keysetAt(selectedKeyset()));
    if (!keyset)
        return;
    keyset->setReverseRBButtons(!keyset->reverseRBButtons());
    if (m_messenger)
        m_messenger->updateProperty(TVK_PrivateMessenger::ReverseButtonsProperty,
                                    keyset->reverseRBButtons() ? 1 : 0, int(selectedKeyset()));
}

void CorvaneController::showExpander()
{
    m_views.windows->show(TVKWindow::TL);
}

void CorvaneController::showTLW()
{
    m_views.windows->show(TVKWindow::TLW);
    notifyWithMessage(note::SelectedLayerChange{});
}

void CorvaneController::showTLW2()
{
    m_views.windows->show(TVKWindow::TLW2);
    notifyWithMessage(note::SelectedLayerChange{});
}

void CorvaneController::showNV()
{
    m_views.windows->show(TVKWindow::NV);
    m_views.windows->makeKeyAndOrderFront(TVKWindow::NV);
    notifyWithMessage(note::SelectedLayerChange{});
}

void CorvaneController::radioController(qint64 value)
{
    const qint64 control = value & 0xff;
    const qint64 group = qint32(value) >> 8;
    handleTVKControl(control, group);
}

void CorvaneController::handleTVKDisplay(qint64 group, qint64 display)
{
    int dataGroup = 0;
    int dataDisplay = 0;
    m_constantServer->onscreenDisplayGroup(int(group), int(display), dataGroup, dataDisplay);
    setSelectedDisplay(dataDisplay, dataGroup);
    notifyOfDisplaySelection(dataDisplay, dataGroup);
}

void CorvaneController::handleCorvaneNVMenuItems(QAction* item)
{
    if (CorvaneNVWindowCommands* window = m_views.windows->corvaneNVWindow())
        window->handleCorvaneNVMenuItem(item);
}

void CorvaneController::changeCorvaneNVGroups(const std::function<void(CorvaneModelData&)>& change)
{
    CorvaneModelData* model = corvaneModelData();
    const qint64 index = selectedKeyset();
    const auto* keyset = dynamic_cast<const CorvaneKeyset*>(keysetAt(index));
    if (!model || !keyset || keyset->locked())
        return;
    change(*model);
    if (CorvaneMessenger* messenger = corvaneMessenger()) {
        PlistValue groups = PlistValue::makeArray();
        if (const std::vector<PlistValue>* list = keyset->corvaneNVGroups()) {
            for (const PlistValue& group : *list)
                groups.append(group);
        }
        // The groups message names no layer, so the journal keeps the whole keyset instead.
        tellServiceUnjournaled(
            [&] { messenger->sendUpdateCorvaneNVGroupsMessage(groups, int(index)); });
        messenger->sendUpdateKeysetMessage(int(index), keyset);
    }
}

void CorvaneController::updateCorvaneNVGroupMenus()
{
    const CorvaneModelData* model = corvaneModelData();
    const qsizetype groups = model ? model->numCorvaneNVGroups() : 0;
    const qsizetype items = qsizetype(m_addToGroupMenu.size());
    const std::pair<std::vector<QAction*>*, Command> menus[] = {
        {&m_addToGroupMenu, Command::HandleAddToGroupMenu},
        {&m_deleteGroupMenu, Command::HandleDeleteGroupMenu},
        {&m_selectGroupMenu, Command::HandleSelectGroupMenu}};
    for (qsizetype i = 0; i < std::max(groups, items); ++i) {
        if (i < groups) {
            const PlistValue* group = model->corvaneNVGroupWithID(int(i));
            const QString title = group ? group->value(key::Name).toString() : QString();
            for (const auto& [menu, command] : menus) {
                QAction* item = nullptr;
                if (i < items) {
                    item = (*menu)[size_t(i)];
                } else {
                    item = new QAction(this);
                    QObject::connect(item, &QAction::triggered, this,
                                     [this, item] { perform(item); });
                    menu->push_back(item);
                }
                item->setText(title);
                TVKMenuItems::setCommand(item, command, i);
            }
        } else {
            for (const auto& [menu, command] : menus) {
                if (qsizetype(menu->size()) > groups) {
                    delete (*menu)[size_t(groups)];
                    menu->erase(menu->begin() + groups);
                }
            }
        }
    }
}

void CorvaneController::handleAddToGroupMenu(QAction* item)
{
    if (CorvaneNVWindowCommands* window = m_views.windows->corvaneNVWindow())
        window->addSelectionToGroup(int(TVKMenuItems::tag(item)));
}

void CorvaneController::handleDeleteGroupMenu(QAction* item)
{
    if (CorvaneNVWindowCommands* window = m_views.windows->corvaneNVWindow())
        window->deleteGroup(int(TVKMenuItems::tag(item)));
}

void CorvaneController::handleSelectGroupMenu(QAction* item)
{
    if (CorvaneNVWindowCommands* window = m_views.windows->corvaneNVWindow())
        window->selectGroup(int(TVKMenuItems::tag(item)));
}

QString CorvaneController::preferencesMenuPath()
{
    return tr("Surface \u203a Preferences\u2026");
}

QString CorvaneController::standaloneWindowReason(const QString& unit)
{
    return tr("The %1 window opens when the %1 is used without the RS: choose it in %2 under "
              "\u201cExpander used without the RS\u201d.")
        .arg(unit, preferencesMenuPath());
}

bool CorvaneController::explainExpanderItem(QAction* item, bool enabled, const QString& reason)
{
    // A greyed item says why, in its tool tip and in the status line.
    // (An empty tool tip shows the item's text.)
    const QString tip = enabled ? QString() : reason;
    item->setToolTip(tip);
    item->setStatusTip(tip);
    return enabled;
}

bool CorvaneController::validateMenuItem(QAction* item)
{
    const CorvaneModelData* model = corvaneModelData();
    const auto* keyset = dynamic_cast<const CorvaneKeyset*>(keysetAt(selectedKeyset()));
    const TVKWindows& windows = *m_views.windows;
    const auto existsAndKey = [&](TVKWindow window) {
        return windows.exists(window) && windows.isKey(window);
    };
    switch (TVKMenuItems::command(item)) {
    case Command::ReverseRBButtons:
        item->setChecked(keyset && keyset->reverseRBButtons());
        return !(keyset && keyset->locked());
    case Command::ShowExpander: {
        item->setChecked(existsAndKey(TVKWindow::TL));
        const QString other = !model                    ? QString()
                              : model->standaloneTLW()  ? QStringLiteral("TLW")
                              : model->standaloneTLW2() ? QStringLiteral("TLW2")
                              : model->standaloneNV()   ? QStringLiteral("NV")
                                                        : QString();
        return explainExpanderItem(
            item, other.isEmpty(),
            tr("The TL window cannot be opened while the %1 is used without the RS. Choose in %2 "
               "which expander is used without the RS.")
                .arg(other, preferencesMenuPath()));
    }
    case Command::ShowTLW:
        item->setChecked(existsAndKey(TVKWindow::TLW));
        return explainExpanderItem(item, model && model->standaloneTLW(),
                                   standaloneWindowReason(QStringLiteral("TLW")));
    case Command::ShowTLW2:
        // Looks at the TLW window's controller, not the TLW2's.
        item->setChecked(windows.exists(TVKWindow::TLW) && windows.isKey(TVKWindow::TLW2));
        return explainExpanderItem(item, model && model->standaloneTLW2(),
                                   standaloneWindowReason(QStringLiteral("TLW2")));
    case Command::ShowNV:
        item->setChecked(existsAndKey(TVKWindow::NV));
        return explainExpanderItem(item, model && model->standaloneNV(),
                                   standaloneWindowReason(QStringLiteral("NV")));
    case Command::HandleCorvaneNVMenuItems: {
        CorvaneNVWindowCommands* window = windows.corvaneNVWindow();
        return window && window->validateCorvaneNVMenuItem(item);
    }
    default:
        return TVKController::validateMenuItem(item);
    }
}

void CorvaneController::perform(QAction* item)
{
    switch (TVKMenuItems::command(item)) {
    case Command::ReverseRBButtons:
        reverseRBButtons();
        break;
    case Command::ShowExpander:
        showExpander();
        break;
    case Command::ShowTLW:
        showTLW();
        break;
    case Command::ShowTLW2:
        showTLW2();
        break;
    case Command::ShowNV:
        showNV();
        break;
    case Command::HandleCorvaneNVMenuItems:
        handleCorvaneNVMenuItems(item);
        break;
    case Command::HandleAddToGroupMenu:
        handleAddToGroupMenu(item);
        break;
    case Command::HandleDeleteGroupMenu:
        handleDeleteGroupMenu(item);
        break;
    case Command::HandleSelectGroupMenu:
        handleSelectGroupMenu(item);
        break;
    default:
        TVKController::perform(item);
        return;
    }
    validateMenuItems();
}

// --- Preferences ---------------------------------------------------------------------------------

void CorvaneController::setupPreferencePanel()
{
    setupEthernetPreferences();
    if (const CorvaneModelData* model = corvaneModelData()) {
        m_preferenceFields.standaloneTL = model->standaloneTL();
        m_preferenceFields.standaloneTLW = model->standaloneTLW();
        m_preferenceFields.standaloneTLW2 = model->standaloneTLW2();
        m_preferenceFields.standaloneNV = model->standaloneNV();
        m_preferenceFields.hardwareStyle = model->hardwareStyle();
    }
    reapplyStandaloneEnabling();
}

void CorvaneController::handleStandaloneCheckBoxEnablingForTL(bool tl, bool tlw, bool tlw2, bool nv)
{
    m_preferenceFields.standaloneTLEnabled = !tlw && !tlw2 && !nv;
    m_preferenceFields.standaloneTLWEnabled = !tl && !tlw2 && !nv;
    m_preferenceFields.standaloneTLW2Enabled = !tl && !tlw && !nv;
    m_preferenceFields.standaloneNVEnabled = !tl && !tlw && !tlw2;
    m_views.sheets->refreshSheet(TVKSheet::Preferences);
}

void CorvaneController::reapplyStandaloneEnabling()
{
    const TVKPreferenceFields& f = m_preferenceFields;
    handleStandaloneCheckBoxEnablingForTL(f.standaloneTL, f.standaloneTLW, f.standaloneTLW2,
                                          f.standaloneNV);
}

void CorvaneController::handleStandaloneTLCheckBox(bool on)
{
    m_preferenceFields.standaloneTL = on;
    reapplyStandaloneEnabling();
}

void CorvaneController::handleStandaloneTLWCheckBox(bool on)
{
    m_preferenceFields.standaloneTLW = on;
    reapplyStandaloneEnabling();
}

void CorvaneController::handleStandaloneTLW2CheckBox(bool on)
{
    m_preferenceFields.standaloneTLW2 = on;
    reapplyStandaloneEnabling();
}

void CorvaneController::handleStandaloneNVCheckBox(bool on)
{
    m_preferenceFields.standaloneNV = on;
    reapplyStandaloneEnabling();
}

bool CorvaneController::validatePreferences()
{
    return validateEthernetPreferences();
}

void CorvaneController::collectPreferences()
{
    collectEthernetPreferences();
    CorvaneModelData* model = corvaneModelData();
    if (!model)
        return;
    CorvaneMessenger* messenger = corvaneMessenger();
    const TVKPreferenceFields& f = m_preferenceFields;
    model->setStandaloneTL(f.standaloneTL);
    if (messenger)
        messenger->sendStandaloneTLState(f.standaloneTL);
    model->setStandaloneTLW(f.standaloneTLW);
    if (messenger)
        messenger->sendStandaloneTLWState(f.standaloneTLW);
    model->setStandaloneTLW2(f.standaloneTLW2);
    if (messenger)
        messenger->sendStandaloneTLW2State(f.standaloneTLW2);
    model->setStandaloneNV(f.standaloneNV);
    if (messenger)
        messenger->sendStandaloneNVState(f.standaloneNV);
    if (model->hardwareStyle() != f.hardwareStyle) {
        model->setHardwareStyle(f.hardwareStyle);
        journalChange(TVKRecoveryJournal::HardwareStyle, selectedKeyset(),
                      quint32(f.hardwareStyle));
    }
    setHardwareGraphics(f.hardwareStyle);

    TVKWindows& windows = *m_views.windows;
    if (f.standaloneTL)
        showExpander();
    else if (windows.isVisible(TVKWindow::TL))
        windows.close(TVKWindow::TL);
    if (f.standaloneTLW)
        showTLW();
    // The TLW window closes whenever TLW2 is off, and the TLW2 window is never closed here.
    if (f.standaloneTLW2)
        showTLW2();
    else if (windows.isVisible(TVKWindow::TLW))
        windows.close(TVKWindow::TLW);
    if (f.standaloneNV)
        showNV();
    else if (windows.isVisible(TVKWindow::NV))
        windows.close(TVKWindow::NV);
    validateMenuItems();
}
