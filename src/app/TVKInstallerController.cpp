#include "app/TVKInstallerController.h"

#include "core/Log.h"
#include "platform/InstallPlatform.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QTimer>
#include <chrono>

namespace install = corvane::InstallPlatform;

namespace {

TVKInstallerController* s_installer = nullptr;

const QString kMIDIDrivers = QStringLiteral("~/Library/Audio/MIDI Drivers");
const QString kSupport = QStringLiteral("~/Library/Application Support/Tavrik");

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

TVKInstallEnvironment TVKInstallEnvironment::system()
{
    return {install::applicationBundlePath(), install::midiServerPath(), [] {
                return std::chrono::duration<double>(
                           std::chrono::steady_clock::now().time_since_epoch())
                    .count();
            }};
}

TVKInstallerController::TVKInstallerController(TVKInstallerWindow& window,
                                               TVKInstallEnvironment environment,
                                               TVKInstallParameters parameters, bool needsSetup)
    : m_window(window), m_environment(std::move(environment)), m_parameters(std::move(parameters)),
      m_needsSetup(needsSetup)
{
    m_face.cancel = {QStringLiteral("Cancel"), true, true};
    m_face.proceed = {QString(), false, true};
    m_face.restartLabelShown = false;
    m_face.progressShown = false;
}

TVKInstallerController::~TVKInstallerController()
{
    if (s_installer == this)
        s_installer = nullptr;
}

TVKInstallerController* TVKInstallerController::current()
{
    return s_installer;
}

std::optional<int> TVKInstallerController::startInstallForController(
    TVKInstallerWindow& window, const TVKInstallEnvironment& environment,
    const TVKInstallParameters& parameters, bool needsSetup)
{
    TVKInstallerController installer(window, environment, parameters, needsSetup);
    if (installer.validInstallation())
        return std::nullopt;
    // One installer at a time.
    TVKInstallerController* const previous = std::exchange(s_installer, &installer);
    installer.m_face.message = QStringLiteral(
        "Additional software components must be installed in order for the control surface to "
        "function. This installation only takes place the first time you run the software, "
        "after an update, or when you choose \"Install\" from the File Menu.");
    installer.m_face.proceed = {QStringLiteral("Install"), true, true};
    installer.m_face.quitMIDIWarningShown = true;
    installer.m_installStage = 0;
    installer.refresh();
    const int code = window.runModal();
    window.closeWindow();
    window.bringMainWindowToFront();
    if (code == Finished) {
        installer.relaunchBackgroundApps();
        installer.enableLoginItem();
    }
    s_installer = previous;
    return code;
}

void TVKInstallerController::enableLoginItem()
{
    const QString launcher = m_environment.bundlePath +
                             QStringLiteral("/Contents/Library/LoginItems/") +
                             m_parameters.launcherApp;
    const double registered = m_environment.now();
    // Registering the launcher is reading its bundle; enabling it writes its autostart entry and
    // starts it, as logging in would.
    const std::optional<install::BundleInfo> bundle = install::readBundle(launcher);
    if (!bundle)
        return;
    const bool enabled = install::setLoginItemEnabled(bundle->identifier, launcher, true);
    corvane::log(
        QStringLiteral("SMLoginItemSetEnabled<2>(%1, true) returned %2")
            .arg(bundle->identifier.isNull() ? QStringLiteral("(null)") : bundle->identifier,
                 enabled ? QStringLiteral("true") : QStringLiteral("false")));
    // The launcher needs a moment to bring the service up before the application asks for it.
    while (m_environment.now() - registered < 1.3)
        QThread::msleep(10);
}

void TVKInstallerController::refresh()
{
    m_window.refresh(m_face);
}

void TVKInstallerController::appendMessage(const QString& line)
{
    m_face.message = m_face.message + line;
}

void TVKInstallerController::appendError(const QString& error)
{
    m_face.message = QStringLiteral("%1\n    %2").arg(m_face.message, error);
}

bool TVKInstallerController::validInstallation()
{
    return testComponent(m_parameters.driver, kMIDIDrivers, false) &&
           testComponent(QStringLiteral("Tavrik"), QStringLiteral("~/Library/Application Support"),
                         true) &&
           testBackgroundApp();
}

bool TVKInstallerController::testComponent(const QString& name, const QString& folder,
                                           bool isDirectory)
{
    const QString path = install::expandUserPath(folder + u'/' + name);
    const QFileInfo info(path);
    if (!info.exists())
        return false;
    if (isDirectory)
        return true;
    const std::optional<install::BundleInfo> installed = install::readBundle(path);
    const std::optional<install::BundleInfo> own =
        install::readBundle(m_environment.bundlePath + QStringLiteral("/Contents/Helpers/") + name);
    if (!own)
        return false;
    const int order =
        compareVersionString(installed ? installed->version : QString(), own->version);
    return order == 0 || order == 1;
}

bool TVKInstallerController::scan(const QString& text, qint64& value)
{
    qint64 result = 0;
    for (const QChar c : text) {
        if (!isDigit(c))
            return false;
        // Larger numbers than any version carries stop growing rather than overflow.
        if (result < (qint64(1) << 58))
            result = result * 10 + (c.unicode() - u'0');
    }
    value = result;
    return true;
}

int TVKInstallerController::compareVersionString(const QString& a, const QString& b)
{
    if (a == b)
        return 0;
    const QStringList partsA = a.split(u'.');
    const QStringList partsB = b.split(u'.');
    const qsizetype common = std::min(partsA.size(), partsB.size());
    for (qsizetype i = 0; i < common; ++i) {
        const QString& pa = partsA[i];
        const QString& pb = partsB[i];
        if (pa == pb)
            continue;
        qint64 va = 0;
        qint64 vb = 0;
        const bool numericA = scan(pa, va);
        const bool numericB = scan(pb, vb);
        if (numericA && numericB) {
            if (va != vb)
                return va > vb ? 1 : -1;
            continue;
        }
        if (numericA)
            return 1;
        if (numericB)
            return -1;
        if (const int stage = compareVersionStage(pa, pb); stage != 0)
            return stage;
    }
    // A further number makes a release newer; a further stage ("b1") makes it a pre-release.
    qint64 ignored = 0;
    if (partsA.size() > common)
        return scan(partsA[common], ignored) ? 1 : -1;
    if (partsB.size() > common)
        return scan(partsB[common], ignored) ? -1 : 1;
    return 0;
}

int TVKInstallerController::compareVersionStage(const QString& a, const QString& b)
{
    // The ranks of the stage letters: c < d < a < b.
    static constexpr int kRank[4] = {2, 3, 0, 1};
    const qsizetype length = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < length; ++i) {
        const QChar ca = a[i];
        const QChar cb = b[i];
        if (ca == cb)
            continue;
        const bool digitA = isDigit(ca);
        const bool digitB = isDigit(cb);
        if (digitA && digitB)
            return ca < cb ? -1 : 1;
        if (digitA)
            return 1;
        if (digitB)
            return -1;
        const int indexA = ca.toLower().unicode() - u'a';
        const int indexB = cb.toLower().unicode() - u'a';
        if (indexA < 0 || indexA > 3)
            return -1;
        if (indexB < 0 || indexB > 3)
            return 1;
        return kRank[indexA] > kRank[indexB] ? 1 : -1;
    }
    return 0;
}

bool TVKInstallerController::testBackgroundApp()
{
    // The pipeline's own grep lists the name too, so this holds whenever the process list
    // can be read.
    const QStringList lines = install::shellOutputLines(
        QStringLiteral("/bin/ps -x | /usr/bin/grep %1").arg(m_parameters.bgApp), 1034);
    for (const QString& line : lines) {
        if (line.contains(m_parameters.bgApp))
            return true;
    }
    return false;
}

void TVKInstallerController::initiateInstall()
{
    if (m_installStage == 6) {
        if (!m_needsSetup) {
            m_installStage = Finished;
            if (!isMIDIServerRunning()) {
                m_window.stopModal(Finished);
                return;
            }
            corvane::log(QStringLiteral("initiateInstall- MIDI Server is rtunning"));
            startMIDIServerWait();
            return;
        }
        m_installStage = 7;
        m_face.cancel.title = QStringLiteral("Setup Later");
        m_face.cancel.shown = true;
        m_face.proceed.title = QStringLiteral("Apply");
        refresh();
        runSetup();
        return;
    }
    if (m_installStage == 7) {
        m_installStage = Finished;
        m_window.finishSetup();
        m_window.stopModal(Finished);
        return;
    }
    m_face.quitMIDIWarningShown = false;
    refresh();
    terminateBackgroundApps();
    m_installStage = 2;
    for (;;) {
        continueInstall();
        if (m_installStage > 5)
            break;
        ++m_installStage;
    }
}

void TVKInstallerController::cancelInstall()
{
    // "Setup Later" still counts as finished.
    m_installStage = m_installStage == 7 ? int(Finished) : int(Cancelled);
    m_window.stopModal(m_installStage);
}

void TVKInstallerController::startMIDIServerWait()
{
    m_face.progressShown = true;
    m_face.progressRunning = true;
    m_face.cancel.enabled = false;
    m_face.proceed.enabled = false;
    m_face.restartLabelShown = true;
    refresh();
    m_midiServerTimeout = m_environment.now() + 7.0;
    beginWaitingForMIDIServerToQuit();
}

void TVKInstallerController::continueInstall()
{
    QString error;
    switch (m_installStage) {
    case 2:
        m_face.message = QStringLiteral("installing midi driver");
        m_face.cancel.shown = false;
        m_face.proceed.shown = false;
        QDir().mkpath(install::expandUserPath(kMIDIDrivers + u'/'));
        if (!installResource(
                m_parameters.driver,
                QStringLiteral("~/Library/Audio/MIDI Drivers/%1").arg(m_parameters.driver),
                QStringLiteral("Contents"), error))
            appendError(error);
        break;
    case 3:
        appendMessage(QStringLiteral("\n________\ninstalling application support"));
        if (!installTavrikSupport(error))
            appendError(error);
        break;
    case 4: {
        appendMessage(QStringLiteral("\n________\ninstalling background application"));
        QString report;
        installBackgroundApp(report, error);
        appendError(error.isEmpty() ? report : error);
        break;
    }
    case 5:
        break;
    case 6:
        appendMessage(QStringLiteral("\n________\n*** Click Finish to continue ***"));
        m_face.proceed = {QStringLiteral("Finish"), true, true};
        break;
    default:
        return;
    }
    refresh();
}

bool TVKInstallerController::installResource(const QString& name, const QString& destination,
                                             const QString& sourceDirectory, QString& error)
{
    const QString source =
        QStringLiteral("%1/%2/Helpers/%3").arg(m_environment.bundlePath, sourceDirectory, name);
    const QString target = install::expandUserPath(destination);
    const QFileInfo existing(target);
    if ((existing.exists() || existing.isSymLink()) && !install::removeItem(target, &error))
        return false;
    return install::copyItem(source, target, &error);
}

bool TVKInstallerController::installTavrikSupport(QString& error)
{
    if (!QFileInfo::exists(install::expandUserPath(kSupport)))
        return installResource(QStringLiteral("Tavrik"), kSupport,
                               QStringLiteral("Contents/Resources"), error);
    // Item by item, so that what the user added to the folder stays.
    const QDir items(m_environment.bundlePath +
                     QStringLiteral("/Contents/Resources/Helpers/Tavrik/"));
    bool ok = true;
    for (const QString& item :
         items.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System)) {
        QString itemError;
        if (!installResource(QStringLiteral("Tavrik/%1").arg(item),
                             QStringLiteral("~/Library/Application Support/Tavrik/%1").arg(item),
                             QStringLiteral("Contents/Resources"), itemError)) {
            ok = false;
            error = error.isEmpty() ? itemError : error + QStringLiteral("\n    ") + itemError;
        }
    }
    return ok;
}

bool TVKInstallerController::installUninstaller(QString& error)
{
    QDir().mkpath(install::expandUserPath(QStringLiteral("/Applications")));
    return installResource(m_parameters.uninstallerName,
                           QStringLiteral("/Applications/%1").arg(m_parameters.uninstallerName),
                           QStringLiteral("Contents"), error);
}

bool TVKInstallerController::installBackgroundApp(QString& message, QString&)
{
    // The service comes with the support folder and is started by the launcher.
    message = QStringLiteral("background application installed");
    return true;
}

bool TVKInstallerController::findBackgroundAppInLoginItems(const QString& name, QString& foundEntry)
{
    const QString folder = QFileInfo(install::autostartEntryPath(QStringLiteral("x"))).path();
    for (const QFileInfo& entry :
         QDir(folder).entryInfoList({QStringLiteral("*.desktop")}, QDir::Files)) {
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray& line : file.read(1 << 16).split('\n')) {
            if (line.startsWith("Exec=") && QString::fromUtf8(line).contains(name)) {
                foundEntry = entry.filePath();
                return true;
            }
        }
    }
    return false;
}

std::optional<qint64> TVKInstallerController::getBackgroundApp()
{
    return runningApplication(m_parameters.bgAppID);
}

std::optional<qint64> TVKInstallerController::runningApplication(const QString& identifier)
{
    const std::vector<qint64> running = install::processesOfBundle(identifier);
    if (running.empty())
        return std::nullopt;
    return running.front();
}

bool TVKInstallerController::launchBackgroundApp(const QString& name, QString& message)
{
    QString error;
    if (!install::launchBundle(install::expandUserPath(kSupport + u'/' + name), &error)) {
        message = error;
        return false;
    }
    message = QStringLiteral("background application launched");
    return true;
}

void TVKInstallerController::terminateBackgroundApps()
{
    QDirIterator it(install::expandUserPath(kSupport), {QStringLiteral("*.app")}, QDir::Dirs);
    while (it.hasNext()) {
        const std::optional<install::BundleInfo> bundle = install::readBundle(it.next());
        if (!bundle)
            continue;
        for (const qint64 pid : install::processesOfBundle(bundle->identifier))
            install::forceQuit(pid);
    }
}

void TVKInstallerController::relaunchBackgroundApps()
{
    relaunchHelpersExcept(m_parameters.bgAppID);
}

void TVKInstallerController::relaunchHelpersExcept(const QString& backgroundAppID)
{
    QDirIterator it(install::expandUserPath(kSupport), {QStringLiteral("*.app")}, QDir::Dirs);
    while (it.hasNext()) {
        const QString path = it.next();
        const std::optional<install::BundleInfo> bundle = install::readBundle(path);
        // The service itself is started by the launcher.
        if (bundle && bundle->identifier != backgroundAppID &&
            bundle->identifier.startsWith(QStringLiteral("com.tavrik")))
            install::launchBundle(path);
    }
}

bool TVKInstallerController::isMIDIServerRunning()
{
    m_midiServerRunning = install::isRunning(m_environment.midiServerPath);
    return m_midiServerRunning;
}

void TVKInstallerController::beginWaitingForMIDIServerToQuit()
{
    QTimer::singleShot(100, &m_timers, [this] {
        QMetaObject::invokeMethod(
            &m_timers, [this] { checkIfMIDIServerHasQuit(); }, Qt::QueuedConnection);
    });
}

void TVKInstallerController::checkIfMIDIServerHasQuit()
{
    if (isMIDIServerRunning()) {
        if (m_environment.now() < m_midiServerTimeout) {
            beginWaitingForMIDIServerToQuit();
            return;
        }
        m_face.progressRunning = false;
        if (!m_needsSetup) {
            refresh();
            m_window.stopModal(Finished);
            return;
        }
        m_face.restartLabel = QStringLiteral("Couldn't restart MIDI Server");
        m_face.cancel.enabled = true;
        refresh();
        return;
    }
    m_face.progressRunning = false;
    m_face.restartLabelShown = false;
    if (!m_needsSetup) {
        refresh();
        m_window.stopModal(Finished);
        return;
    }
    m_face.proceed.enabled = true;
    m_face.cancel.enabled = m_installStage != Finished;
    refresh();
}

void TVKInstallerController::runSetup()
{
    m_window.showSetupPage(m_parameters.controller);
    if (isMIDIServerRunning())
        startMIDIServerWait();
}
