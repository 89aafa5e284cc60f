#pragma once

#include "app/TVKInstallerController.h"

#include <memory>

// The reverse of the installer: after a confirmation it disables the launcher's login item,
// force-quits the helper applications, removes the MIDI driver and the background application
// (or the whole support folder), waits for the MIDI server, then starts the helpers again.
// Stages: 0 waiting for confirmation, 1 done or failed, 2 cancelled.
class TVKUninstallerController
{
public:
    TVKUninstallerController(TVKInstallerWindow& window, TVKInstallEnvironment environment);
    TVKUninstallerController(const TVKUninstallerController&) = delete;
    TVKUninstallerController& operator=(const TVKUninstallerController&) = delete;

    // Made on first use and kept; answers the stage the window ended in.
    static int startUninstallForController(TVKInstallerWindow& window,
                                           const TVKInstallEnvironment& environment,
                                           const QString& applicationName,
                                           const TVKInstallParameters& parameters);
    static TVKUninstallerController* current();

    void okayUninstall();
    void cancelUninstall();
    int terminateBackgroundApps();
    void removeComponentAtPath(const QString& path);
    void relaunchBackgroundApps();
    std::optional<qint64> getBackgroundApp();
    bool isMIDIServerRunning();
    void beginWaitingForMIDIServerToQuit();
    void checkIfMIDIServerHasQuit();

    int uninstallStage() const { return m_uninstallStage; }
    const TVKInstallerFace& face() const { return m_face; }

private:
    void refresh();

    TVKInstallerWindow* m_window;
    TVKInstallEnvironment m_environment;
    TVKInstallParameters m_parameters;
    int m_uninstallStage = 0;
    double m_midiServerTimeout = 0;
    bool m_midiServerRunning = false;
    TVKInstallerFace m_face;
    std::unique_ptr<QObject> m_timers = std::make_unique<QObject>();
};
