#pragma once

#include <QtGlobal>

class QAction;

// The menu commands the controller validates and performs, named after the operations they
// run. Each of the controller's menu items is a QAction carrying its command and a tag (a mode,
// a signature, a group).
enum class TVKMenuCommand
{
    None,
    ShowInspector,
    ShowSummary,
    ShowMainWindow,
    ShowAboutBox,
    ShowPreferencePanel,
    ShowAppPortPanel,
    HandleNewKeyset,
    HandleImportKeyset,
    HandleExportKeyset,
    HandlePrintKeyset,
    HandleExportKeysetSheet,
    HandleExportAllKeysets,
    HandleCopyKeyset,
    HandlePasteKeyset,
    HandleClearKeyset,
    HandleDeleteKeyset,
    HandleLockUnlockMenu,
    HandleOwnerMenu,
    HandleSetOneTouchRecord,
    HandleDefaultOneTouchRecord,
    HandleEmulationMenu,
    HandleSetAllMenuItems,
    HandleKeysetsMenu,
    HandleEndCapture,
    AttemptReconnect,
    HandleInstall,
    HandleUninstall,
    ConnectionIndicator,
    StartBackgroundService,
    // One control's action.
    HandleCopyAction,
    HandlePasteAction,
    HandleClearAction,
    // The surface family's own.
    ReverseRBButtons,
    ShowExpander,
    ShowTLW,
    ShowTLW2,
    ShowNV,
    HandleCorvaneNVMenuItems,
    HandleAddToGroupMenu,
    HandleDeleteGroupMenu,
    HandleSelectGroupMenu
};

namespace TVKMenuItems {

void setCommand(QAction* item, TVKMenuCommand command, qint64 tag = 0);
TVKMenuCommand command(const QAction* item);
qint64 tag(const QAction* item);
void setTag(QAction* item, qint64 tag);

} // namespace TVKMenuItems
