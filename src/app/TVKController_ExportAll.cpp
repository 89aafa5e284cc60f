// File → Export All Keysets…: every keyset as its own keyset file in one folder.
#include "app/TVKController.h"
#include "core/Log.h"
#include "model/KeysetFiles.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <QDir>
#include <QFileInfo>

namespace {

// The answers to a file that is in the way, in the order of the alert's buttons: the safe one
// first (the default), then the way out (Escape).
enum ClashAnswer
{
    Skip,
    Cancel,
    Replace,
    ReplaceAll
};

} // namespace

void TVKController::handleExportAllKeysets()
{
    if (!m_modelData)
        return;
    const std::vector<corvane::KeysetFileName> files = corvane::exportFileNames(*m_modelData);
    if (files.empty())
        return;
    const QString folder = m_views.dialogs->runFolderPanel(tr("Export All Keysets"));
    if (folder.isEmpty())
        return;
    const QDir into(folder);

    std::unique_ptr<TVKProgress> progress =
        m_views.dialogs->beginProgress(tr("Exporting keysets…"), int(files.size()));
    bool replaceAll = false;
    int written = 0;
    for (size_t i = 0; i < files.size(); ++i) {
        const TVKKeyset* keyset = m_modelData->keysetAtIndex(files[i].keyset);
        if (!keyset)
            continue;
        if (progress) {
            // Showing the progress lets the dialog take the user's Cancel.
            progress->setProgress(int(i), tr("Exporting “%1”…").arg(keyset->name()));
            if (progress->wasCancelled())
                break;
        }
        const QString path = into.filePath(files[i].fileName);
        if (!replaceAll && QFileInfo::exists(path)) {
            const int answer = m_views.dialogs->runAlert(
                {tr("“%1” Already Exists").arg(files[i].fileName),
                 tr("A file of that name is already in “%1”. Do you want to replace it with the "
                    "keyset “%2”?")
                     .arg(QDir::toNativeSeparators(into.absolutePath()), keyset->name()),
                 {tr("Skip"), tr("Cancel"), tr("Replace"), tr("Replace All")}});
            if (answer == Cancel)
                break;
            if (answer == ReplaceAll)
                replaceAll = true;
            else if (answer != Replace)
                continue;
        }
        QString error;
        if (!corvane::writeKeysetFile(*keyset, path, &error)) {
            corvane::log(QStringLiteral("export of all keysets failed: %1").arg(error));
            QString text =
                tr("\"%1\" could not be written: %2").arg(QDir::toNativeSeparators(path), error);
            if (written > 0)
                text += QStringLiteral("\n\n") + tr("The keysets before it were exported.");
            m_views.dialogs->runAlert({tr("The Keysets Could Not Be Exported"), text, {tr("OK")}});
            break;
        }
        ++written;
    }
    if (progress)
        progress->setProgress(int(files.size()), QString());
}
