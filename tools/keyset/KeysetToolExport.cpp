// export-all: every keyset of a store as a keyset file, written as the application's Export All
// Keysets writes them.
#include "KeysetTool.h"
#include "model/KeysetFiles.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>

namespace corvane {

int KeysetTool::exportAll(const TVKModelData& model, const QString& folder, bool force,
                          QTextStream& out, QTextStream& err)
{
    const QString program = QStringLiteral("corvane-keyset");
    const std::vector<KeysetFileName> files = exportFileNames(model);
    if (files.empty()) {
        err << program << ": no keyset to export: keyset 0 (\"Default\") is never exported\n";
        return ExitOk;
    }

    const QFileInfo info(folder);
    if (info.exists() && !info.isDir()) {
        err << program << ": " << folder << " is not a folder\n";
        return ExitWriteFailed;
    }
    if (!info.exists() && !QDir().mkpath(folder)) {
        err << program << ": cannot make the folder " << folder << '\n';
        return ExitWriteFailed;
    }
    const QDir into(folder);

    // Every file in the way is named before anything is written, so that a refused export
    // leaves the folder exactly as it was.
    if (!force) {
        bool inTheWay = false;
        for (const KeysetFileName& file : files) {
            const QString path = into.filePath(file.fileName);
            if (QFileInfo::exists(path) || QFileInfo(path).isSymLink()) {
                err << program << ": " << path << " exists\n";
                inTheWay = true;
            }
        }
        if (inTheWay) {
            err << program << ": nothing written; give --force to replace these files\n";
            return ExitFilesInTheWay;
        }
    }

    for (const KeysetFileName& file : files) {
        const TVKKeyset* keyset = model.keysetAtIndex(file.keyset);
        if (!keyset)
            continue;
        const QString path = into.filePath(file.fileName);
        QString error;
        if (!writeKeysetFile(*keyset, path, &error)) {
            // The codec's message names the file already.
            err << program << ": " << error << '\n';
            out.flush();
            return ExitWriteFailed;
        }
        out << path << '\n';
    }
    out.flush();
    return ExitOk;
}

} // namespace corvane
