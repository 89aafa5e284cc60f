#pragma once

#include "app/TVKInstallerController.h"
#include "app/TVKViewInterfaces.h"

#include <QDialog>
#include <cstdio>
#include <functional>
#include <memory>

class CorvaneModelData;
class QEventLoop;
class QLabel;
class QTextBrowser;
class QProgressBar;
class QPushButton;
class QVBoxLayout;
class TVKSetupViewController;
namespace corvane {
class TVKUserDefaults;
}

// The installer's and the uninstaller's window ("installWindow", "uninstallWindow"): the
// message, the warning to quit MIDI applications, the MIDI server's restart label with its busy
// bar, the setup page in place of the message when the installer shows it, and the two buttons,
// whose presses go to the controller running the window.
class TVKInstallerDialog : public QDialog, public TVKInstallerWindow
{
    Q_OBJECT
public:
    enum class Kind
    {
        Install,
        Uninstall
    };
    TVKInstallerDialog(Kind kind, corvane::TVKUserDefaults& defaults, CorvaneModelData* model,
                       QWidget* parent);
    ~TVKInstallerDialog() override;

    void refresh(const TVKInstallerFace& face) override;
    int runModal() override;
    void stopModal(int code) override;
    void closeWindow() override;
    void bringMainWindowToFront() override;
    void showSetupPage(const QString& controllerName) override;
    bool finishSetup() override;

    // What the buttons do; the views point them at the running controller.
    std::function<void()> onProceed;
    std::function<void()> onCancel;

    QTextBrowser* messageField() const { return m_messageField; }
    // The steps' messages as the window shows them: each step's heading after a ruled line.
    static QString messageHtml(const QString& message);
    QPushButton* cancelButton() const { return m_cancelButton; }
    QPushButton* continueButton() const { return m_continueButton; }
    QLabel* restartMIDILable() const { return m_restartMIDILable; }
    QLabel* quitMIDIWarningField() const { return m_quitMIDIWarningField; }
    QProgressBar* progress() const { return m_progress; }
    TVKSetupViewController* setupPage() const { return m_setupView.get(); }

protected:
    void reject() override;

private:
    Kind m_kind;
    corvane::TVKUserDefaults& m_defaults;
    CorvaneModelData* m_model;
    QVBoxLayout* m_containerView = nullptr;
    QWidget* m_messageView = nullptr;
    QTextBrowser* m_messageField = nullptr;
    QString m_shownMessage;
    QLabel* m_quitMIDIWarningField = nullptr;
    QLabel* m_restartMIDILable = nullptr;
    QProgressBar* m_progress = nullptr;
    QPushButton* m_cancelButton = nullptr;
    QPushButton* m_continueButton = nullptr;
    std::unique_ptr<TVKSetupViewController> m_setupView;
    QEventLoop* m_modalLoop = nullptr;
    QWidget* m_parentWind = nullptr;
};

// The installer run without windows (corvane --install, --uninstall): each step's message is
// printed as it grows, and the buttons are pressed as an administrator would: Install, then
// Finish, then "Setup Later" for the setup page, which needs a person.
class TVKConsoleInstaller : public TVKInstallerWindow
{
public:
    explicit TVKConsoleInstaller(std::FILE* out = stdout) : m_out(out) {}

    // Installs (or uninstalls) the background components without windows; 0 on success.
    static int run(bool uninstall, const TVKInstallationNames& names, bool needsSetup,
                   const TVKInstallEnvironment& environment, std::FILE* out = stdout);
    void refresh(const TVKInstallerFace& face) override;
    int runModal() override;
    void stopModal(int code) override;
    void closeWindow() override {}
    void showSetupPage(const QString&) override {}
    bool finishSetup() override { return false; }

    std::function<void()> onProceed;
    std::function<void()> onCancel;

private:
    void pressWhenReady();

    std::FILE* m_out;
    TVKInstallerFace m_face;
    QString m_printed;
    QEventLoop* m_loop = nullptr;
    int m_code = 0;
    bool m_pressScheduled = false;
};
