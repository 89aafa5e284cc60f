#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

// A push button of the installer and uninstaller windows.
struct TVKInstallerButton
{
    QString title;
    bool shown = true;
    bool enabled = true;
};

// What the installer and uninstaller windows show; their controllers change it and ask the
// window to show it again.
struct TVKInstallerFace
{
    QString message;
    TVKInstallerButton cancel;
    TVKInstallerButton proceed; // "Install"/"Finish"/"Apply", or the uninstaller's okay button
    bool quitMIDIWarningShown = false;
    bool restartLabelShown = false;
    QString restartLabel; // the window's own text until the controller sets one
    bool progressShown = false;
    bool progressRunning = false;
};

// The window an installer or uninstaller drives: a real one, or the console of --install.
class TVKInstallerWindow
{
public:
    virtual ~TVKInstallerWindow() = default;
    virtual void refresh(const TVKInstallerFace& face) = 0;
    // Runs the window modally until stopModal; answers the code it was stopped with.
    virtual int runModal() = 0;
    virtual void stopModal(int code) = 0;
    virtual void closeWindow() = 0;
    virtual void bringMainWindowToFront() {}
    // Places the setup page named after the controller name in the window.
    virtual void showSetupPage(const QString& controllerName) = 0;
    // Validates the page and, when valid, stores what it holds.
    virtual bool finishSetup() = 0;
};

// Where the installation lies and what the installer takes as now; tests move the clock.
struct TVKInstallEnvironment
{
    QString bundlePath;          // the application bundle, holding "Contents"
    QString midiServerPath;      // the MIDI server process; empty: there is none
    std::function<double()> now; // seconds, monotonic

    // The installed package's bundle, the configured MIDI server and the steady clock.
    static TVKInstallEnvironment system();
};

// The eight names of an installation.
struct TVKInstallParameters
{
    QString controller;
    QString driver;
    QString bgApp;
    QString bgAppID;
    QString launcherApp;
    QString launcherAppID;
    QString uninstallerName;
};

// Copies the background components out of the application bundle when they are missing or
// older than the application's: the MIDI driver, the support folder with the background
// service, then the launcher as login item. Stages: 0 waiting for "Install", 1 cancelled,
// 2 driver, 3 support folder, 4 background application, 5 (empty), 6 waiting for "Finish",
// 7 setup page, 8 finished.
class TVKInstallerController
{
public:
    enum : int
    {
        Cancelled = 1,
        Finished = 8
    };

    TVKInstallerController(TVKInstallerWindow& window, TVKInstallEnvironment environment,
                           TVKInstallParameters parameters, bool needsSetup);
    ~TVKInstallerController();
    TVKInstallerController(const TVKInstallerController&) = delete;
    TVKInstallerController& operator=(const TVKInstallerController&) = delete;

    // Checks the installation and, when something is missing, runs the window. Answers the
    // code the window ended with, or none when everything was in place.
    static std::optional<int> startInstallForController(TVKInstallerWindow& window,
                                                        const TVKInstallEnvironment& environment,
                                                        const TVKInstallParameters& parameters,
                                                        bool needsSetup);
    // The installer whose window is running, if any.
    static TVKInstallerController* current();

    bool validInstallation();
    bool testComponent(const QString& name, const QString& folder, bool isDirectory);
    static int compareVersionString(const QString& installed, const QString& application);
    static bool scan(const QString& text, qint64& value);
    static int compareVersionStage(const QString& a, const QString& b);
    bool testBackgroundApp();

    void initiateInstall();
    void cancelInstall();
    void continueInstall();
    bool installResource(const QString& name, const QString& destination,
                         const QString& sourceDirectory, QString& error);
    bool installTavrikSupport(QString& error);
    bool installUninstaller(QString& error);
    bool installBackgroundApp(QString& message, QString& error);
    // The autostart entry that starts the background application, if there is one.
    bool findBackgroundAppInLoginItems(const QString& name, QString& foundEntry);
    std::optional<qint64> getBackgroundApp();
    bool launchBackgroundApp(const QString& name, QString& message);
    void terminateBackgroundApps();
    void relaunchBackgroundApps();
    bool isMIDIServerRunning();
    void beginWaitingForMIDIServerToQuit();
    void checkIfMIDIServerHasQuit();
    void runSetup();

    // Shared with the uninstaller: the support folder's helpers other than the service start
    // again; the running application of an identifier.
    static void relaunchHelpersExcept(const QString& backgroundAppID);
    static std::optional<qint64> runningApplication(const QString& identifier);

    int installStage() const { return m_installStage; }
    const TVKInstallerFace& face() const { return m_face; }
    const TVKInstallParameters& parameters() const { return m_parameters; }
    bool needsSetup() const { return m_needsSetup; }

private:
    void refresh();
    void appendMessage(const QString& line);
    void appendError(const QString& error);
    void startMIDIServerWait();
    // After a finished run: the helpers, then the launcher as login item.
    void enableLoginItem();

    TVKInstallerWindow& m_window;
    TVKInstallEnvironment m_environment;
    TVKInstallParameters m_parameters;
    bool m_needsSetup = false;
    int m_installStage = 0;
    double m_midiServerTimeout = 0;
    bool m_midiServerRunning = false;
    TVKInstallerFace m_face;
    QObject m_timers; // the MIDI server checks die with the installer
};
