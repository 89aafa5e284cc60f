#pragma once

#include "core/PlistCodec.h"
#include "core/PlistValue.h"
#include "model/ArchiveRepairLog.h"

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

class QTextStream;
class TVKModelData;

namespace corvane {

// What a file held at its top level.
enum class KeysetDocumentKind
{
    Keyset,          // one keyset dictionary (an exported keyset file)
    Configuration,   // a model-data dictionary with "TVKKeysets"
    PreferenceStore, // the preference store, whose "TVKModelData" entry is the configuration
};

// A file read into the model. A keyset file becomes the only keyset of a fresh model.
struct KeysetDocument
{
    KeysetDocumentKind kind = KeysetDocumentKind::Configuration;
    PlistFormat format = PlistFormat::Xml;
    std::unique_ptr<TVKModelData> model;
    // The whole preference store as read, so that its other entries survive a conversion.
    PlistValue preferenceStore;
    std::vector<ArchiveRepair> repairs;

    KeysetDocument();
    KeysetDocument(KeysetDocument&&) noexcept;
    KeysetDocument& operator=(KeysetDocument&&) noexcept;
    ~KeysetDocument();
};

struct KeysetReadResult
{
    bool ok = false;
    QString error; // why the file could not be read; empty when ok
    KeysetDocument document;
};

// The logic of the corvane-keyset command: describe, convert and check keyset files and stored
// configurations through the model classes.
class KeysetTool
{
public:
    enum ExitCode
    {
        ExitOk = 0,
        ExitRepaired = 1,      // check: the file reads, but the model had to put something right
        ExitUnreadable = 2,    // the input could not be read at all
        ExitWriteFailed = 3,   // convert, export-all: an output could not be written (it is left
                               // as it was)
        ExitNoSuchKeyset = 4,  // sheet: the file holds no such keyset, or several and none named
        ExitFilesInTheWay = 5, // export-all: files are there and --force was not given
        ExitUsage = 64,        // bad command line
    };

    static KeysetReadResult readDocument(const QString& path);
    // The document's tree as the model writes it back: a keyset stays a keyset, a configuration
    // a configuration, and a preference store keeps its other entries.
    static PlistValue archiveDocument(const KeysetDocument& document);

    // One line per control and display of every keyset, layer and group, in model order; the
    // human description of each action in place of its descriptor when readable.
    static void describe(TVKModelData& model, QTextStream& out, bool readable = false);
    // Every keyset but keyset 0 as a keyset file in the folder, which is made when missing. Files
    // in the way are replaced only when forced; otherwise nothing is written.
    static int exportAll(const TVKModelData& model, const QString& folder, bool force,
                         QTextStream& out, QTextStream& err);
    // A repair as one line naming keyset, layer, group and control.
    static QString describeRepair(const ArchiveRepair& repair);
    // Tabs and newlines as \t and \n, so that every description stays one line of six
    // tab-separated fields; every other character is written as it is.
    static QString escapeField(const QString& text);

    static QString usage();
    // Runs one command line (without the program name); returns the exit code.
    static int run(const QStringList& arguments, QTextStream& out, QTextStream& err);
};

} // namespace corvane
