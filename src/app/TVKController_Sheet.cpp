// The keyset sheet from the File menu: printed through the desktop's print dialog, or written
// as a PDF file.
#include "app/TVKController.h"
#include "core/Log.h"
#include "model/TVKKeyset.h"
#include "sheet/KeysetSheet.h"

#include <QAction>
#include <QKeySequence>
#include <memory>

using Command = TVKMenuCommand;
using corvane::KeysetSheet;

void TVKController::makeSheetMenuItems()
{
    addMenuItem(Command::HandlePrintKeyset, tr("Print Keyset…"))->setShortcut(QKeySequence::Print);
    addMenuItem(Command::HandleExportKeysetSheet, tr("Export Keyset Sheet as PDF…"));
}

void TVKController::handlePrintKeyset()
{
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    // The sheet is the keyset as it is now; the preview may paint it many times.
    auto sheet = std::make_shared<const KeysetSheet>(*keyset);
    m_views.dialogs->runPrintPanel(
        {tr("%1 — Keyset Sheet").arg(keyset->name()),
         KeysetSheet::pageLayout(KeysetSheet::localPaper()),
         [sheet](QPagedPaintDevice& device) { return sheet->paint(device); }});
}

void TVKController::handleExportKeysetSheet()
{
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    const KeysetSheet sheet(*keyset);
    const QString path = m_views.dialogs->runDocumentSavePanel(
        {tr("Export Keyset Sheet"), QStringLiteral("pdf"), tr("PDF documents"),
         tr("%1 Keyset Sheet.pdf").arg(keyset->name())});
    if (path.isEmpty())
        return;
    QString error;
    if (!sheet.writePdf(path, KeysetSheet::localPaper(), &error)) {
        corvane::log(QStringLiteral("export of keyset sheet failed: %1").arg(error));
        m_views.dialogs->runAlert({tr("The Keyset Sheet Could Not Be Exported"),
                                   tr("\"%1\" could not be written: %2").arg(path, error),
                                   {tr("OK")}});
    }
}
