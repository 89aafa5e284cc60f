#include "views/CorvaneViews.h"

#include "app/CorvaneController.h"
#include "app/TVKUninstallerController.h"
#include "core/StoredKeys.h"
#include "platform/TerminationSignals.h"
#include "platform/X11Accessibility.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvaneSurfaceView.h"
#include "views/InspectorController.h"
#include "views/KeysetSummaryController.h"
#include "views/TVKAboutBox.h"
#include "views/TVKHelpWindow.h"
#include "views/TVKInstallerWindows.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMenuBar.h"
#include "views/TVKQtDialogs.h"
#include "views/TVKSheetDialogs.h"
#include "views/WindowPlacement.h"

#include <QAction>
#include <QApplication>
#include <QIcon>
#include <QLineEdit>
#include <QScreen>
#include <QStyle>
#include <QWindow>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

// Where the windows were, by window, and which optional windows were open.

} // namespace

QIcon CorvaneViews::applicationIcon()
{
    QIcon builtIn;
    for (const int size : {32, 64, 256})
        builtIn.addFile(QStringLiteral(":/icons/%1x%1/apps/corvane.png").arg(size),
                        QSize(size, size));
    return QIcon::fromTheme(QStringLiteral("corvane"), builtIn);
}

CorvaneViews::CorvaneViews(CorvaneController& controller, TVKDialogs& dialogs)
    : m_controller(controller), m_dialogs(dialogs)
{
    m_dzAction = new QAction(tr("DZ Displays"), this);
    m_dzAction->setCheckable(true);
    connect(m_dzAction, &QAction::triggered, this, [this](bool on) { showDZ(on); });
    m_helpAction = new QAction(tr("Corvane Help"), this);
    QList<QKeySequence> helpKeys = QKeySequence::keyBindings(QKeySequence::HelpContents);
    if (helpKeys.isEmpty())
        helpKeys.append(QKeySequence(Qt::Key_F1));
    m_helpAction->setShortcuts(helpKeys);
    connect(m_helpAction, &QAction::triggered, this, [this] { showHelp(); });
    m_assignmentsAction = new QAction(tr("Show Assignments"), this);
    m_assignmentsAction->setCheckable(true);
    connect(m_assignmentsAction, &QAction::triggered, this,
            [this](bool on) { showAssignments(on); });
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &CorvaneViews::focusWindowChanged);
}

CorvaneViews::~CorvaneViews()
{
    // Windows go before the controller they observe; the inspector's panel, a child of the
    // main window, goes with its controller first.
    m_inspector.reset();
    for (QWidget* w :
         std::initializer_list<QWidget*>{m_help, m_preferences, m_appPort, m_aboutBox, m_tl, m_tlw,
                                         m_tlw2, m_nv, m_dz, m_summary, m_main})
        delete w;
}

bool CorvaneViews::startInstallForController(const TVKInstallationNames& names, bool needsSetup)
{
    TVKInstallerDialog window(TVKInstallerDialog::Kind::Install, m_controller.defaults(),
                              m_controller.corvaneModelData(), m_main);
    window.onProceed = [] {
        if (TVKInstallerController* installer = TVKInstallerController::current())
            installer->initiateInstall();
    };
    window.onCancel = [] {
        if (TVKInstallerController* installer = TVKInstallerController::current())
            installer->cancelInstall();
    };
    return TVKInstallerController::startInstallForController(
               window, TVKInstallEnvironment::system(),
               {names.controllerName, names.driverName, names.backgroundAppName,
                names.backgroundAppID, names.launcherAppName, names.launcherAppID,
                names.uninstallerName},
               needsSetup)
        .has_value();
}

void CorvaneViews::startUninstallForController(const TVKInstallationNames& names)
{
    TVKInstallerDialog window(TVKInstallerDialog::Kind::Uninstall, m_controller.defaults(),
                              m_controller.corvaneModelData(), m_main);
    window.onProceed = [] { TVKUninstallerController::current()->okayUninstall(); };
    window.onCancel = [] { TVKUninstallerController::current()->cancelUninstall(); };
    TVKUninstallerController::startUninstallForController(
        window, TVKInstallEnvironment::system(), names.applicationName,
        {names.controllerName, names.driverName, names.backgroundAppName, names.backgroundAppID,
         names.launcherAppName, names.launcherAppID, names.uninstallerName});
}

corvane::X11Accessibility& CorvaneViews::desktop()
{
    if (!m_desktop)
        m_desktop = std::make_unique<corvane::X11Accessibility>();
    return *m_desktop;
}

bool CorvaneViews::getAXObjects(TVKAXObjectInfo& info, QPointF point)
{
    return TVKAXUtilities::getAXObjects(desktop(), info, point);
}

std::optional<QPointF> CorvaneViews::pointerOnDesktop()
{
    return desktop().pointer();
}

std::optional<double> CorvaneViews::desktopHeight()
{
    const std::optional<QSizeF> size = desktop().screenSize();
    return size ? std::optional<double>(size->height()) : std::nullopt;
}

TVKMenuBar* CorvaneViews::makeMenuBar()
{
    auto* bar = new TVKMenuBar(m_controller, {m_assignmentsAction}, {m_dzAction}, {m_helpAction},
                               [this] { quit(); });
    m_menuBars.push_back(bar);
    if (m_nvMenuShown && m_nv)
        bar->showCorvaneNVMenu(m_nv->corvaneNVMenu(), true);
    return bar;
}

void CorvaneViews::start()
{
    m_controller.setViews({&m_dialogs, this, this, this});
    m_main = new TVKMainWindow(m_controller, makeMenuBar(), [this] { quit(); });
    if (auto* standard = dynamic_cast<TVKQtDialogs*>(&m_dialogs))
        standard->setParentWindow(m_main);
    m_controller.awakeFromNib();
    m_main->makeSurface();
    m_assignmentsAction->setChecked(
        m_controller.defaults().objectForKey(key::ShowAssignments).toBool());
    applyShowAssignments();
    placeWindow(m_main);
    m_main->show();
    corvane::keepOnScreen(m_main);
    m_controller.windowIsAwake();
    m_controller.applicationDidFinishLaunching();
    const PlistValue& open = m_controller.defaults().objectForKey(key::OpenWindows);
    for (qsizetype i = 0; i < open.size(); ++i) {
        if (open.at(i).toString() == QStringLiteral("DZ"))
            showDZ(true);
        else if (open.at(i).toString() == QStringLiteral("Summary"))
            m_controller.showSummary();
    }
    m_main->raise();
    m_main->activateWindow();
}

void CorvaneViews::showHelp(const QString& section)
{
    if (!m_help)
        m_help = new TVKHelpWindow;
    m_help->showSection(section);
    m_help->show();
    m_help->raise();
    m_help->activateWindow();
}

void CorvaneViews::quit()
{
    if (!m_ending)
        saveWindowState();
    m_ending = true;
    m_controller.handleTerminateMessage();
    // Every loop that runs now ends, an alert's as well as the main one, and a loop started
    // later (the rest of the start-up) returns at once; main() does not enter its loop when
    // the program ended before it. So every Quit and every signal is honoured, however often.
    if (m_endsProgram)
        QCoreApplication::exit(0);
}

void CorvaneViews::endProgramWith(corvane::TerminationSignals& signals)
{
    m_endsProgram = true;
    connect(&signals, &corvane::TerminationSignals::terminationRequested, this, [this] { quit(); });
}

QString CorvaneViews::windowName(const QWidget* window)
{
    return window->objectName();
}

std::vector<QWidget*> CorvaneViews::placedWindows() const
{
    return {m_main,   m_inspector ? m_inspector->panel() : nullptr, m_tl, m_tlw, m_tlw2, m_nv, m_dz,
            m_summary};
}

void CorvaneViews::saveWindowState()
{
    PlistValue frames = m_controller.defaults().objectForKey(key::WindowFrames);
    if (!frames.isDict())
        frames = PlistValue::makeDict();
    for (QWidget* w : placedWindows()) {
        if (w) {
            const QScreen* screen = w->screen();
            frames.insert(windowName(w),
                          corvane::storedFrame(w->geometry().topLeft(), w->size(),
                                               screen ? screen->devicePixelRatio() : 1.0));
        }
    }
    m_controller.defaults().setObject(key::WindowFrames, frames);
    PlistValue open = PlistValue::makeArray();
    if (m_dz && m_dz->isVisible())
        open.append(PlistValue(QStringLiteral("DZ")));
    if (m_summary && m_summary->isVisible())
        open.append(PlistValue(QStringLiteral("Summary")));
    m_controller.defaults().setObject(key::OpenWindows, open);
}

QMargins CorvaneViews::frameMargins(const QWidget* window) const
{
    // Known once the desktop has framed the window; until then the main window's tell, and
    // before anything is framed, a title bar's height.
    for (const QWidget* framed : {window, static_cast<const QWidget*>(m_main)}) {
        if (framed && framed->isVisible()) {
            const QRect outer = framed->frameGeometry();
            const QRect inner = framed->geometry();
            const QMargins margins(inner.left() - outer.left(), inner.top() - outer.top(),
                                   outer.right() - inner.right(), outer.bottom() - inner.bottom());
            if (!margins.isNull())
                return margins;
        }
    }
    return QMargins(0, QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight), 0, 0);
}

void CorvaneViews::placeWindow(QWidget* window)
{
    if (!window)
        return;
    QScreen* screen = m_main && m_main != window ? m_main->screen() : window->screen();
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect available = screen ? screen->availableGeometry() : QRect();
    const qreal ratio = screen ? screen->devicePixelRatio() : 1.0;
    const QMargins margins = frameMargins(window);

    const PlistValue& stored =
        m_controller.defaults().objectForKey(key::WindowFrames).value(windowName(window));
    std::optional<QRect> remembered = corvane::frameFromStore(stored, ratio);
    if (remembered)
        *remembered = remembered->marginsAdded(margins);
    // Frames stored by earlier versions: the toolkit's own record, brought on screen like any.
    if (!remembered && stored.isData() && window->restoreGeometry(stored.toData()))
        remembered = window->geometry().marginsAdded(margins);

    std::vector<QRect> open;
    for (QWidget* other : placedWindows()) {
        if (other && other != window && other->isVisible())
            open.push_back(other->frameGeometry());
    }
    // A window not sized yet opens at the size its contents ask for.
    const QSize size = (window->testAttribute(Qt::WA_Resized) ? window->size() : window->sizeHint())
                           .expandedTo(window->minimumSizeHint());
    const QSize frameSize = size.grownBy(margins);
    QRect frame = corvane::placeWindow(frameSize, available, open, remembered);

    // At the first start the main window makes room for the inspector beside it, rather than
    // have it cover the keyset's name, layers or connection.
    if (!remembered && m_main && m_main != window && m_firstPlaced.contains(m_main) &&
        window == this->window(TVKWindow::Inspector) && frame.intersects(m_main->frameGeometry())) {
        const QRect mainFrame = m_main->frameGeometry();
        const int room = available.right() + 1 - frameSize.width() - mainFrame.left();
        const int narrowest = std::max(m_main->minimumSizeHint().width(), mainFrame.width() / 2);
        if (room >= narrowest && room < mainFrame.width()) {
            m_main->resize(room - margins.left() - margins.right(), m_main->height());
            open.clear();
            for (QWidget* other : placedWindows()) {
                if (other && other != window && other->isVisible())
                    open.push_back(other->frameGeometry());
            }
            frame = corvane::placeWindow(frameSize, available, open);
        }
    }
    if (!remembered)
        m_firstPlaced.insert(window);
    // Placed by its contents: the desktop's frame then lies around them, where it was reckoned.
    window->setGeometry(frame.marginsRemoved(margins));
}

QWidget* CorvaneViews::window(TVKWindow window) const
{
    switch (window) {
    case TVKWindow::Main:
        return m_main;
    case TVKWindow::AboutBox:
        return m_aboutBox;
    case TVKWindow::TL:
        return m_tl;
    case TVKWindow::TLW:
        return m_tlw;
    case TVKWindow::TLW2:
        return m_tlw2;
    case TVKWindow::NV:
        return m_nv;
    case TVKWindow::Summary:
        return m_summary;
    case TVKWindow::Inspector:
        return m_inspector ? m_inspector->panel() : nullptr;
    }
    return nullptr;
}

CorvaneExpanderWindowController* CorvaneViews::expander(TVKWindow window) const
{
    return dynamic_cast<CorvaneExpanderWindowController*>(this->window(window));
}

QWidget* CorvaneViews::make(TVKWindow window)
{
    if (QWidget* existing = this->window(window))
        return existing;
    QWidget* made = nullptr;
    switch (window) {
    case TVKWindow::AboutBox:
        made = m_aboutBox = new TVKAboutBox(m_main);
        break;
    case TVKWindow::TL:
        made = m_tl = new CorvaneExpanderController(m_controller, makeMenuBar());
        break;
    case TVKWindow::TLW:
        made = m_tlw = new CorvaneTLWController(m_controller, makeMenuBar());
        break;
    case TVKWindow::TLW2:
        made = m_tlw2 = new CorvaneTLW2Controller(m_controller, makeMenuBar());
        break;
    case TVKWindow::NV:
        made = m_nv = new CorvaneNVController(m_controller, makeMenuBar(), m_dialogs);
        break;
    case TVKWindow::Summary:
        if (!m_controller.modelData())
            return nullptr;
        made = m_summary =
            new CorvaneKeysetSummaryController(*m_controller.modelData(), m_controller);
        m_summary->setMenuBar(makeMenuBar());
        break;
    case TVKWindow::Inspector:
        m_inspector = std::make_unique<InspectorController>(m_controller, *this, m_main);
        made = m_inspector->panel();
        break;
    case TVKWindow::Main:
        return nullptr;
    }
    if (window != TVKWindow::AboutBox)
        placeWindow(made);
    applyShowAssignments();
    return made;
}

const TVKAction* CorvaneViews::inspectorEditedAction() const
{
    return m_inspector ? m_inspector->editedAction().action() : nullptr;
}

bool CorvaneViews::inspectorCopiesToAllLayers() const
{
    return m_inspector && m_inspector->copyToAllLayers();
}

void CorvaneViews::showDZ(bool shown)
{
    if (shown && !m_dz) {
        m_dz = new CorvaneDZController(m_controller, makeMenuBar());
        placeWindow(m_dz);
        connect(m_dz, &CorvaneExpanderWindowController::windowClosed, m_dzAction,
                [this] { m_dzAction->setChecked(false); });
        applyShowAssignments();
    }
    if (m_dz) {
        if (shown) {
            m_dz->showWindow();
            corvane::keepOnScreen(m_dz);
        } else
            m_dz->hide();
    }
    m_dzAction->setChecked(shown);
}

void CorvaneViews::showAssignments(bool shown)
{
    m_assignmentsAction->setChecked(shown);
    m_controller.defaults().setObject(key::ShowAssignments, PlistValue(shown));
    applyShowAssignments();
}

void CorvaneViews::applyShowAssignments()
{
    const bool shown = m_assignmentsAction->isChecked();
    if (m_main && m_main->surface())
        m_main->surface()->setShowsAssignments(shown);
    for (CorvaneExpanderWindowController* unit :
         {m_tl, m_tlw, m_tlw2, static_cast<CorvaneExpanderWindowController*>(m_nv),
          static_cast<CorvaneExpanderWindowController*>(m_dz)}) {
        if (unit)
            unit->surface()->setShowsAssignments(shown);
    }
}

bool CorvaneViews::exists(TVKWindow window) const
{
    return this->window(window) != nullptr;
}

bool CorvaneViews::isVisible(TVKWindow window) const
{
    const QWidget* w = this->window(window);
    return w && w->isVisible();
}

bool CorvaneViews::isKey(TVKWindow window) const
{
    const QWidget* w = this->window(window);
    return w && w->isVisible() && w->isActiveWindow();
}

void CorvaneViews::show(TVKWindow window)
{
    QWidget* w = make(window);
    if (!w)
        return;
    const bool wasVisible = w->isVisible();
    w->show();
    if (!wasVisible)
        corvane::keepOnScreen(w);
    w->raise();
    // The inspector floats beside the surface without taking the keyboard from it.
    if (window != TVKWindow::Inspector)
        w->activateWindow();
    if (window == TVKWindow::AboutBox)
        m_aboutBox->play();
}

void CorvaneViews::makeKeyAndOrderFront(TVKWindow window)
{
    if (QWidget* w = this->window(window)) {
        w->show();
        w->raise();
        w->activateWindow();
    }
}

void CorvaneViews::close(TVKWindow window)
{
    if (QWidget* w = this->window(window))
        w->hide();
}

std::optional<QPointF> CorvaneViews::mainWindowOrigin() const
{
    if (!m_main)
        return std::nullopt;
    return QPointF(m_main->frameGeometry().topLeft());
}

void CorvaneViews::showKeysetName(const QString& name)
{
    if (m_main)
        m_main->showKeysetName(name);
}

void CorvaneViews::showKeysetIcon(const QImage& icon)
{
    if (m_main)
        m_main->showKeysetIcon(icon);
}

void CorvaneViews::setLockButtonState(bool locked)
{
    if (m_main)
        m_main->setLockButtonState(locked);
}

void CorvaneViews::showHardwareImage(const QString& imageName)
{
    if (m_main)
        m_main->showHardwareImage(imageName);
}

void CorvaneViews::showCorvaneNVMenu(bool shown)
{
    m_nvMenuShown = shown;
    if (!m_nv)
        return;
    for (TVKMenuBar* bar : m_menuBars)
        bar->showCorvaneNVMenu(m_nv->corvaneNVMenu(), shown);
}

CorvaneNVWindowCommands* CorvaneViews::corvaneNVWindow() const
{
    return m_nv;
}

void CorvaneViews::focusWindowChanged(QWindow* focused)
{
    if (!focused)
        return;
    // Every window of the application counts for the NV menu; the surface windows are also
    // the ones whose activation the controller watches for its first-run work.
    for (const TVKWindow which :
         {TVKWindow::Main, TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV,
          TVKWindow::Inspector, TVKWindow::Summary, TVKWindow::AboutBox}) {
        const QWidget* w = window(which);
        if (w && w->windowHandle() == focused) {
            if (which != TVKWindow::Inspector && which != TVKWindow::Summary &&
                which != TVKWindow::AboutBox)
                m_controller.windowDidBecomeKey(which);
            m_controller.handleMainWindowChange(which);
            return;
        }
    }
    // The DZ shows the main unit's displays; for the menus it counts as the main unit.
    if (m_dz && m_dz->windowHandle() == focused)
        m_controller.handleMainWindowChange(TVKWindow::Main);
}

void CorvaneViews::beginSheet(TVKSheet sheet)
{
    if (sheet == TVKSheet::Preferences) {
        if (!m_preferences)
            m_preferences = new TVKPreferencesSheet(m_controller, m_main);
        m_preferences->refresh();
        m_preferences->open();
    } else {
        if (!m_appPort)
            m_appPort = new TVKAppPortSheet(m_controller, m_main);
        m_appPort->refresh();
        m_appPort->open();
    }
}

void CorvaneViews::endSheet(TVKSheet sheet)
{
    QDialog* dialog = sheet == TVKSheet::Preferences ? static_cast<QDialog*>(m_preferences)
                                                     : static_cast<QDialog*>(m_appPort);
    if (dialog)
        dialog->hide();
}

void CorvaneViews::refreshSheet(TVKSheet sheet)
{
    if (sheet == TVKSheet::Preferences && m_preferences)
        m_preferences->refresh();
    else if (sheet == TVKSheet::ApplicationPort && m_appPort)
        m_appPort->refresh();
}

void CorvaneViews::selectFieldText(TVKSheetField field)
{
    QLineEdit* edit = nullptr;
    switch (field) {
    case TVKSheetField::IpAddress0:
    case TVKSheetField::IpAddress1:
    case TVKSheetField::IpAddress2:
    case TVKSheetField::IpAddress3:
        if (m_preferences)
            edit = m_preferences->addressField(int(field) - int(TVKSheetField::IpAddress0));
        break;
    case TVKSheetField::EthernetPort:
        if (m_preferences)
            edit = m_preferences->portField();
        break;
    case TVKSheetField::ApplicationPort:
        if (m_appPort)
            edit = m_appPort->portField();
        break;
    }
    if (edit) {
        edit->setFocus();
        edit->selectAll();
    }
}
