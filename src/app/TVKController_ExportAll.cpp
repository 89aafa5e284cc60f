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

    // Every file in the way is asked about first, so that the writing then runs unattended
    // under its progress and Cancel leaves the folder as it was.
    std::vector<const corvane::KeysetFileName*> toWrite;
    bool replaceAll = false;
    for (const corvane::KeysetFileName& file : files) {
        const TVKKeyset* keyset = m_modelData->keysetAtIndex(file.keyset);
        if (!keyset)
            continue;
        if (!replaceAll && QFileInfo::exists(into.filePath(file.fileName))) {
            const int answer = m_views.dialogs->runAlert(
                {tr("“%1” Already Exists").arg(file.fileName),
                 tr("A file of that name is already in “%1”. Do you want to replace it with the "
                    "keyset “%2”?")
                     .arg(QDir::toNativeSeparators(into.absolutePath()), keyset->name()),
                 {tr("Skip"), tr("Cancel"), tr("Replace"), tr("Replace All")}});
            if (answer == Cancel)
                return;
            if (answer == ReplaceAll)
                replaceAll = true;
            else if (answer != Replace)
                continue;
        }
        toWrite.push_back(&file);
    }
    if (toWrite.empty())
        return;

    std::unique_ptr<TVKProgress> progress =
        m_views.dialogs->beginProgress(tr("Exporting keysets…"), int(toWrite.size()));
    for (size_t i = 0; i < toWrite.size(); ++i) {
        const TVKKeyset* keyset = toWrite[i]->keyset < m_modelData->numberOfKeysets()
                                      ? m_modelData->keysetAtIndex(toWrite[i]->keyset)
                                      : nullptr;
        if (!keyset)
            continue;
        if (progress) {
            // Showing the progress lets the dialog take the user's Cancel.
            progress->setProgress(int(i), tr("Exporting “%1”…").arg(keyset->name()));
            if (progress->wasCancelled())
                return;
        }
        const QString path = into.filePath(toWrite[i]->fileName);
        QString error;
        if (!corvane::writeKeysetFile(*keyset, path, &error)) {
            corvane::log(QStringLiteral("export of all keysets failed: %1").arg(error));
            // The alert is not to be hidden behind the progress.
            progress.reset();
            QString text =
                tr("\"%1\" could not be written: %2").arg(QDir::toNativeSeparators(path), error);
            if (i > 0)
                text += QStringLiteral("\n\n") + tr("The keysets before it were exported.");
            m_views.dialogs->runAlert({tr("The Keysets Could Not Be Exported"), text, {tr("OK")}});
            return;
        }
    }
    if (progress)
        progress->setProgress(int(toWrite.size()), QString());
}
