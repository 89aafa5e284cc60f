#include "app/TVKUninstallerController.h"

#include "platform/InstallPlatform.h"

#include <QDirIterator>
#include <QTimer>

namespace install = corvane::InstallPlatform;

namespace {

std::unique_ptr<TVKUninstallerController> s_uninstaller;

const QString kSupport = QStringLiteral("~/Library/Application Support/Tavrik");

} // namespace

TVKUninstallerController::TVKUninstallerController(TVKInstallerWindow& window,
                                                   TVKInstallEnvironment environment)
    : m_window(&window), m_environment(std::move(environment))
{}

TVKUninstallerController* TVKUninstallerController::current()
{
    return s_uninstaller.get();
}

int TVKUninstallerController::startUninstallForController(TVKInstallerWindow& window,
                                                          const TVKInstallEnvironment& environment,
                                                          const QString& applicationName,
                                                          const TVKInstallParameters& parameters)
{
    if (!s_uninstaller)
        s_uninstaller = std::make_unique<TVKUninstallerController>(window, environment);
    TVKUninstallerController& uninstaller = *s_uninstaller;
    uninstaller.m_window = &window;
    uninstaller.m_environment = environment;
    uninstaller.m_parameters = parameters;
    uninstaller.m_uninstallStage = 0;
    TVKInstallerFace& face = uninstaller.m_face;
    face = TVKInstallerFace{};
    face.message = QStringLiteral("Do you want to uninstall the %1 software components?")
                       .arg(applicationName.isNull() ? QStringLiteral("(null)") : applicationName);
    face.cancel = {QStringLiteral("Cancel"), true, true};
    face.proceed = {QStringLiteral("Uninstall"), true, true};
    face.quitMIDIWarningShown = true;
    uninstaller.refresh();
    window.runModal();
    window.closeWindow();
    return uninstaller.m_uninstallStage;
}

void TVKUninstallerController::refresh()
{
    m_window->refresh(m_face);
}

void TVKUninstallerController::cancelUninstall()
{
    m_uninstallStage = 2;
    m_window->stopModal(0);
}

void TVKUninstallerController::okayUninstall()
{
    if (m_uninstallStage != 0) {
        m_window->stopModal(0);
        return;
    }
    m_face.cancel.shown = false;
    m_face.proceed.enabled = false;
    refresh();
    const int count = terminateBackgroundApps();
    removeComponentAtPath(
        QStringLiteral("~/Library/Audio/MIDI Drivers/%1").arg(m_parameters.driver));
    // Only when this product's helper alone was running does the whole folder go; otherwise
    // other products may still need it.
    if (count == 1)
        removeComponentAtPath(kSupport);
    else
        removeComponentAtPath(
            QStringLiteral("~/Library/Application Support/Tavrik/%1").arg(m_parameters.bgApp));
    m_face.quitMIDIWarningShown = false;
    m_face.proceed.title = QStringLiteral("Finish");
    if (!isMIDIServerRunning()) {
        m_uninstallStage = 1;
        m_face.message = QStringLiteral("Uninstall Complete!");
        m_face.cancel.shown = false;
        m_face.proceed.enabled = true;
        refresh();
        return;
    }
    m_face.message = QStringLiteral("Waiting for MIDI Server…");
    m_face.progressShown = true;
    m_face.progressRunning = true;
    refresh();
    m_midiServerTimeout = m_environment.now() + 10.0;
    beginWaitingForMIDIServerToQuit();
}

int TVKUninstallerController::terminateBackgroundApps()
{
    install::setLoginItemEnabled(m_parameters.launcherAppID, QString(), false);
    int count = 0;
    QDirIterator it(install::expandUserPath(kSupport), {QStringLiteral("*.app")}, QDir::Dirs);
    while (it.hasNext()) {
        const std::optional<install::BundleInfo> bundle = install::readBundle(it.next());
        if (!bundle)
            continue;
        const std::vector<qint64> running = install::processesOfBundle(bundle->identifier);
        if (running.empty())
            continue;
        for (const qint64 pid : running)
            install::forceQuit(pid);
        ++count;
    }
    return count;
}

void TVKUninstallerController::removeComponentAtPath(const QString& path)
{
    install::removeItem(install::expandUserPath(path));
}

void TVKUninstallerController::relaunchBackgroundApps()
{
    TVKInstallerController::relaunchHelpersExcept(m_parameters.bgAppID);
}

std::optional<qint64> TVKUninstallerController::getBackgroundApp()
{
    return TVKInstallerController::runningApplication(m_parameters.bgAppID);
}

bool TVKUninstallerController::isMIDIServerRunning()
{
    m_midiServerRunning = install::isRunning(m_environment.midiServerPath);
    return m_midiServerRunning;
}

void TVKUninstallerController::beginWaitingForMIDIServerToQuit()
{
    QTimer::singleShot(100, m_timers.get(), [this] {
        QMetaObject::invokeMethod(
            m_timers.get(), [this] { checkIfMIDIServerHasQuit(); }, Qt::QueuedConnection);
    });
}

void TVKUninstallerController::checkIfMIDIServerHasQuit()
{
    if (!isMIDIServerRunning()) {
        m_uninstallStage = 1;
        m_face.progressRunning = false;
        const QString accounts =
            QStringLiteral("If there are multiple user accounts on this Mac, please don't delete "
                           "this application until the %1 software has been uninstalled from all "
                           "accounts.")
                .arg(m_parameters.controller);
        m_face.message = QStringLiteral("Uninstall Complete!\n\n%1").arg(accounts);
        m_face.proceed.title = QStringLiteral("Finished");
        m_face.proceed.enabled = true;
        refresh();
        relaunchBackgroundApps();
        return;
    }
    if (m_environment.now() >= m_midiServerTimeout) {
        m_face.message = QStringLiteral("Couldn't restart MIDI Server");
        m_face.progressRunning = false;
        m_face.proceed.enabled = true;
        m_uninstallStage = 1;
        refresh();
        return;
    }
    beginWaitingForMIDIServerToQuit();
}
