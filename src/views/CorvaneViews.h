#pragma once

#include "app/TVKViewInterfaces.h"

#include <QMargins>
#include <QObject>
#include <QSet>
#include <functional>
#include <memory>
#include <vector>

class CorvaneController;
class CorvaneDZController;
class CorvaneExpanderWindowController;
class CorvaneNVController;
class InspectorController;
class KeysetSummaryController;
class QAction;
class QIcon;
class QWidget;
class QWindow;
class TVKAboutBox;
class TVKAppPortSheet;
class TVKHelpWindow;
class TVKMainWindow;
class TVKMenuBar;
class TVKPreferencesSheet;
namespace corvane {
class TerminationSignals;
class X11Accessibility;
} // namespace corvane

// The windows of the application as the controller sees them: the main window, the expander
// windows, the about box and the two sheets, made when first needed. It tells the controller
// which window became key, keeps the NV menu in the menus while the NV window is main, and
// remembers where each window was and which were open.
class CorvaneViews : public QObject, public TVKWindows, public TVKSheets, public TVKInstallation
{
    Q_OBJECT
public:
    CorvaneViews(CorvaneController& controller, TVKDialogs& dialogs);
    ~CorvaneViews() override;

    // The application's icon: the desktop theme's, else the one built in.
    static QIcon applicationIcon();

    // Hands the controller its views, wakes it and shows the main window.
    void start();
    // Remembers the windows and has the controller write everything; then, once
    // endProgramWith() was called, ends the program. Called again, it ends it again.
    void quit();
    // The program ends on Quit, on closing the main window and on every termination signal,
    // whatever loop runs then.
    void endProgramWith(corvane::TerminationSignals& signals);
    // Whether the program is ending: code that runs after a loop ends goes no further.
    bool isEnding() const { return m_ending; }

    TVKMainWindow* mainWindow() const { return m_main; }
    QWidget* window(TVKWindow window) const;
    CorvaneExpanderWindowController* expander(TVKWindow window) const;
    CorvaneNVController* nvController() const { return m_nv; }
    CorvaneDZController* dzWindow() const { return m_dz; }
    KeysetSummaryController* summary() const { return m_summary; }
    InspectorController* inspector() const { return m_inspector.get(); }
    QAction* dzAction() const { return m_dzAction; }
    QAction* helpAction() const { return m_helpAction; }
    // View → Show Assignments: every picture writes what its controls do; remembered.
    QAction* showAssignmentsAction() const { return m_assignmentsAction; }
    void showAssignments(bool shown);
    // The manual, from its beginning or at a section.
    void showHelp(const QString& section = QString());
    TVKHelpWindow* helpWindow() const { return m_help; }
    void showDZ(bool shown);
    TVKAboutBox* aboutBox() const { return m_aboutBox; }
    TVKPreferencesSheet* preferencesSheet() const { return m_preferences; }
    TVKAppPortSheet* appPortSheet() const { return m_appPort; }
    // Records every window's place and the open optional windows in the preference store.
    void saveWindowState();

    // TVKWindows
    bool exists(TVKWindow window) const override;
    bool isVisible(TVKWindow window) const override;
    bool isKey(TVKWindow window) const override;
    void show(TVKWindow window) override;
    void makeKeyAndOrderFront(TVKWindow window) override;
    void close(TVKWindow window) override;
    std::optional<QPointF> mainWindowOrigin() const override;
    void showKeysetName(const QString& name) override;
    void showKeysetIcon(const QImage& icon) override;
    void setLockButtonState(bool locked) override;
    void showHardwareImage(const QString& imageName) override;
    void showCorvaneNVMenu(bool shown) override;
    const TVKAction* inspectorEditedAction() const override;
    bool inspectorCopiesToAllLayers() const override;
    CorvaneNVWindowCommands* corvaneNVWindow() const override;

    // TVKSheets
    void beginSheet(TVKSheet sheet) override;
    void endSheet(TVKSheet sheet) override;
    void refreshSheet(TVKSheet sheet) override;
    void selectFieldText(TVKSheetField field) override;

    // TVKInstallation
    bool startInstallForController(const TVKInstallationNames& names, bool needsSetup) override;
    void startUninstallForController(const TVKInstallationNames& names) override;
    bool getAXObjects(TVKAXObjectInfo& info, QPointF point) override;
    std::optional<QPointF> pointerOnDesktop() override;
    std::optional<double> desktopHeight() override;

private:
    TVKMenuBar* makeMenuBar();
    corvane::X11Accessibility& desktop();
    QWidget* make(TVKWindow window);
    void focusWindowChanged(QWindow* window);
    // Every window is placed here, remembered or for the first time (see WindowPlacement.h).
    void placeWindow(QWidget* window);
    // Every picture made so far shows the labels or not, as View → Show Assignments says.
    void applyShowAssignments();
    QMargins frameMargins(const QWidget* window) const;
    std::vector<QWidget*> placedWindows() const;
    static QString windowName(const QWidget* window);

    CorvaneController& m_controller;
    TVKDialogs& m_dialogs;
    TVKMainWindow* m_main = nullptr;
    CorvaneExpanderWindowController* m_tl = nullptr;
    CorvaneExpanderWindowController* m_tlw = nullptr;
    CorvaneExpanderWindowController* m_tlw2 = nullptr;
    CorvaneNVController* m_nv = nullptr;
    CorvaneDZController* m_dz = nullptr;
    KeysetSummaryController* m_summary = nullptr;
    std::unique_ptr<InspectorController> m_inspector;
    TVKAboutBox* m_aboutBox = nullptr;
    TVKPreferencesSheet* m_preferences = nullptr;
    TVKAppPortSheet* m_appPort = nullptr;
    QAction* m_dzAction = nullptr;
    QAction* m_helpAction = nullptr;
    QAction* m_assignmentsAction = nullptr;
    TVKHelpWindow* m_help = nullptr;
    std::vector<TVKMenuBar*> m_menuBars;
    std::unique_ptr<corvane::X11Accessibility> m_desktop;
    bool m_nvMenuShown = false;
    // Windows placed this run without a remembered frame.
    QSet<const QWidget*> m_firstPlaced;
    bool m_ending = false;
    bool m_endsProgram = false;
};
