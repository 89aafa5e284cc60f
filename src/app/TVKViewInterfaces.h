#pragma once

#include "platform/DesktopEntries.h"
#include "platform/TVKAXUtilities.h"

#include <QImage>
#include <QPageLayout>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QAction;
class QPagedPaintDevice;
class TVKAction;

// What the controller asks of the windows. The views implement these with the desktop's own
// dialogs and windows; the tests implement them with scripted answers, so that no test ever
// opens a modal dialog.

// An alert: a message, the informative text below it and its buttons, the first being the
// default.
struct TVKAlert
{
    QString message;
    QString informativeText;
    QStringList buttons;
};

// A file that is not a keyset: the panel's title, the file's type (its extension) and what the
// type is called, and the name proposed.
struct TVKDocumentPanel
{
    QString title;
    QString fileType;
    QString typeName;
    QString proposedName;
};

// Pages to print: painted on whatever paged device the print dialog or its preview hands over,
// in that device's page size and orientation.
struct TVKPrintJob
{
    QString title;
    QPageLayout pageLayout; // proposed; the user may choose another in the dialog
    std::function<int(QPagedPaintDevice&)> paint; // paints every page; the number painted
};

// The progress of a long command, shown while it runs; the user may cancel it.
class TVKProgress
{
public:
    virtual ~TVKProgress() = default;
    // `done` of the total steps are finished; `step` names the one that runs now.
    virtual void setProgress(int done, const QString& step) = 0;
    virtual bool wasCancelled() const = 0;
};

// The modal dialogs of the commands.
class TVKDialogs
{
public:
    virtual ~TVKDialogs() = default;

    // The chosen file, or an empty text when the panel was cancelled. Only files whose
    // extension is one of the file types can be chosen.
    virtual QString runOpenPanel(const QStringList& fileTypes) = 0;
    // The chosen location, or an empty text; proposes the name and keeps the file type.
    virtual QString runSavePanel(const QString& fileType, const QString& proposedName) = 0;
    // Which button ended the alert: 0 for the first.
    virtual int runAlert(const TVKAlert& alert) = 0;
    // The installed application chosen for a new keyset, or none when cancelled.
    virtual std::optional<corvane::DesktopApplication>
    chooseApplication(const std::vector<corvane::DesktopApplication>& applications) = 0;
    // The chosen location of a document of another type; without a panel of its own, the
    // keyset save panel's answer.
    virtual QString runDocumentSavePanel(const TVKDocumentPanel& panel)
    {
        return runSavePanel(panel.fileType, panel.proposedName);
    }
    // The desktop's print dialog with a preview of the pages; true when they went to a printer.
    // Without a way to print, nothing is printed.
    virtual bool runPrintPanel(const TVKPrintJob& /*job*/) { return false; }
    // A line of text (a name) asked for with a title, a prompt and a proposal; none when
    // cancelled. Without a way to ask, the answer is none.
    virtual std::optional<QString> runTextInput(const QString& /*title*/, const QString& /*label*/,
                                                const QString& /*text*/)
    {
        return std::nullopt;
    }
    // The chosen folder, or an empty text when cancelled or without a way to ask.
    virtual QString runFolderPanel(const QString& /*title*/) { return QString(); }
    // A progress indicator for a command of `total` steps; none where nothing is shown.
    virtual std::unique_ptr<TVKProgress> beginProgress(const QString& /*title*/, int /*total*/)
    {
        return nullptr;
    }
};

// The windows the controller shows, closes and asks about.
enum class TVKWindow
{
    Main,
    Inspector,
    Summary,
    AboutBox,
    TL,   // the TL expander
    TLW,  // the TLW expander
    TLW2, // the TLW2 expander
    NV    // the NV expander with its banks of LCD buttons
};

// What the NV expander's window does with the commands of its menus.
class CorvaneNVWindowCommands
{
public:
    virtual ~CorvaneNVWindowCommands() = default;
    virtual void addSelectionToGroup(int group) = 0;
    virtual void deleteGroup(int group) = 0;
    virtual void selectGroup(int group) = 0;
    virtual bool validateCorvaneNVMenuItem(QAction* item) = 0;
    virtual void handleCorvaneNVMenuItem(QAction* item) = 0;
};

class TVKWindows
{
public:
    virtual ~TVKWindows() = default;

    virtual bool exists(TVKWindow window) const = 0;
    virtual bool isVisible(TVKWindow window) const = 0;
    virtual bool isKey(TVKWindow window) const = 0;
    // Makes the window on first use and brings it to the front; the about box also plays.
    virtual void show(TVKWindow window) = 0;
    // Brings an existing window to the front and gives it the keyboard.
    virtual void makeKeyAndOrderFront(TVKWindow window) = 0;
    virtual void close(TVKWindow window) = 0;
    // The main window's frame origin in global coordinates; none without a main window.
    virtual std::optional<QPointF> mainWindowOrigin() const = 0;

    // The main window's keyset name, keyset icon, lock button and hardware picture.
    virtual void showKeysetName(const QString& name) = 0;
    virtual void showKeysetIcon(const QImage& icon) = 0;
    virtual void setLockButtonState(bool locked) = 0;
    virtual void showHardwareImage(const QString& imageName) = 0;
    // The NV expander's menu in the main menu bar.
    virtual void showCorvaneNVMenu(bool shown) = 0;

    // The action the inspector is editing, posted with "TVKInsertEditedAction" and
    // "TVKInsertEditedDisplayAction"; none without an inspector.
    virtual const TVKAction* inspectorEditedAction() const = 0;
    // Whether the inspector applies edits to all layers ("Apply edits to all layers").
    virtual bool inspectorCopiesToAllLayers() const { return false; }
    // The NV window's controller, when that window exists.
    virtual CorvaneNVWindowCommands* corvaneNVWindow() const = 0;
};

// The two sheets of the main window. The controller fills the fields before it begins a sheet;
// the sheet shows them, writes the user's entries back into them and calls the controller's OK
// and Cancel operations, which end the sheet.
enum class TVKSheet
{
    Preferences,
    ApplicationPort
};

enum class TVKSheetField
{
    IpAddress0,
    IpAddress1,
    IpAddress2,
    IpAddress3,
    EthernetPort,
    ApplicationPort
};

class TVKSheets
{
public:
    virtual ~TVKSheets() = default;
    virtual void beginSheet(TVKSheet sheet) = 0;
    virtual void endSheet(TVKSheet sheet) = 0;
    // The controller changed the fields of the open sheet (enabling, a port found).
    virtual void refreshSheet(TVKSheet sheet) = 0;
    // Selects the field's text: the field that keeps the sheet from closing.
    virtual void selectFieldText(TVKSheetField field) = 0;
};

// The eight names of the background components, in the order the controller hands them out.
struct TVKInstallationNames
{
    QString controllerName;
    QString applicationName;
    QString driverName;
    QString backgroundAppName;
    QString backgroundAppID;
    QString launcherAppName;
    QString launcherAppID;
    QString uninstallerName;
};

// The installer of the background components and the query of what lies under the pointer.
class TVKInstallation
{
public:
    virtual ~TVKInstallation() = default;
    // True when something had to be installed and the installer window was shown; false when
    // everything was in place and current.
    virtual bool startInstallForController(const TVKInstallationNames& names, bool needsSetup) = 0;
    virtual void startUninstallForController(const TVKInstallationNames& names) = 0;
    virtual bool getAXObjects(TVKAXObjectInfo& info, QPointF point) = 0;
    // The pointer where the desktop has it (top-left origin), and the height of the desktop in
    // the same units; none where the desktop cannot be asked.
    virtual std::optional<QPointF> pointerOnDesktop() { return std::nullopt; }
    virtual std::optional<double> desktopHeight() { return std::nullopt; }
};
