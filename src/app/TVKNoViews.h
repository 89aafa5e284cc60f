#pragma once

#include "app/TVKViewInterfaces.h"

// The views as they are before any window exists, and for a controller run without windows
// (tools, benchmarks): every panel is cancelled, every alert ends on its first button, no window
// is there, and, until the installer exists, everything counts as installed and nothing lies
// under the pointer. Override what a run needs.
class TVKNoViews : public TVKDialogs, public TVKWindows, public TVKSheets, public TVKInstallation
{
public:
    QString runOpenPanel(const QStringList&) override { return {}; }
    QString runSavePanel(const QString&, const QString&) override { return {}; }
    int runAlert(const TVKAlert&) override { return 0; }
    std::optional<corvane::DesktopApplication>
    chooseApplication(const std::vector<corvane::DesktopApplication>&) override
    {
        return std::nullopt;
    }

    bool exists(TVKWindow) const override { return false; }
    bool isVisible(TVKWindow) const override { return false; }
    bool isKey(TVKWindow) const override { return false; }
    void show(TVKWindow) override {}
    void makeKeyAndOrderFront(TVKWindow) override {}
    void close(TVKWindow) override {}
    std::optional<QPointF> mainWindowOrigin() const override { return std::nullopt; }
    void showKeysetName(const QString&) override {}
    void showKeysetIcon(const QImage&) override {}
    void setLockButtonState(bool) override {}
    void showHardwareImage(const QString&) override {}
    void showCorvaneNVMenu(bool) override {}
    const TVKAction* inspectorEditedAction() const override { return nullptr; }
    CorvaneNVWindowCommands* corvaneNVWindow() const override { return nullptr; }

    void beginSheet(TVKSheet) override {}
    void endSheet(TVKSheet) override {}
    void refreshSheet(TVKSheet) override {}
    void selectFieldText(TVKSheetField) override {}

    bool startInstallForController(const TVKInstallationNames&, bool) override { return false; }
    void startUninstallForController(const TVKInstallationNames&) override {}
    bool getAXObjects(TVKAXObjectInfo&, QPointF) override { return false; }
};
