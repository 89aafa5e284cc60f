#include "KeysetTool.h"

#include "KeysetSheetCommand.h"
#include "actions/ActionDescription.h"
#include "actions/TVKAction.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <QTextStream>
#include <optional>

#ifndef CORVANE_VERSION
#define CORVANE_VERSION "0.0.0"
#endif

namespace corvane {

namespace {

const QString kProgram = QStringLiteral("corvane-keyset");

bool looksLikeKeyset(const PlistValue& root)
{
    return root.contains(key::Layers) || root.contains(key::Name) || root.contains(key::Sig) ||
           root.contains(key::AppTID);
}

bool looksLikeConfiguration(const PlistValue& root)
{
    return root.contains(key::Keysets) || root.contains(key::IPAdr) ||
           root.contains(key::HasOwnerKS) || root.contains(key::OneTchDflt);
}

void describeGroups(QTextStream& out, const QString& keysetField, int layerNumber,
                    const std::vector<TVKControlGroup>& groups, bool displays, bool readable)
{
    const QString noAction =
        displays ? QStringLiteral("No Function Assigned") : QStringLiteral("No Action Assigned");
    for (size_t g = 0; g < groups.size(); ++g) {
        const QString groupField =
            displays ? QStringLiteral("D%1").arg(g) : QString::number(qulonglong(g));
        for (const auto& control : groups[g]) {
            if (!control)
                continue;
            const TVKAction* action = control->action();
            QString description = action ? action->actionDescriptor() : noAction;
            if (readable)
                description = isAssigned(action) ? describeAction(*action, Detail::Full) : noAction;
            out << keysetField << '\t' << layerNumber << '\t' << groupField << '\t'
                << KeysetTool::escapeField(control->name()) << '\t'
                << KeysetTool::escapeField(control->userName()) << '\t'
                << KeysetTool::escapeField(description) << '\n';
        }
    }
}

struct CommandLine
{
    QString command;
    QStringList files;
    PlistFormat format = PlistFormat::Xml;
    bool formatGiven = false;
    bool readable = false; // describe: the human description in place of the descriptor
    bool force = false;    // export-all: replace files that are there
    bool help = false;
    bool version = false;
    QString error;
};

CommandLine parseCommandLine(const QStringList& arguments)
{
    CommandLine line;
    bool optionsEnded = false;
    for (const QString& argument : arguments) {
        if (optionsEnded) {
            if (line.command.isEmpty())
                line.command = argument;
            else
                line.files.append(argument);
        } else if (argument == u"--") {
            // Everything after "--" is a command or a file, even when it starts with a dash.
            optionsEnded = true;
        } else if (argument == u"--help" || argument == u"-h") {
            line.help = true;
        } else if (argument == u"--version") {
            line.version = true;
        } else if (argument == u"--xml" || argument == u"--binary") {
            const PlistFormat format =
                argument == u"--xml" ? PlistFormat::Xml : PlistFormat::Binary;
            if (line.formatGiven && format != line.format) {
                line.error = QStringLiteral("--xml and --binary exclude each other");
                return line;
            }
            line.format = format;
            line.formatGiven = true;
        } else if (argument == u"--readable") {
            line.readable = true;
        } else if (argument == u"--force") {
            line.force = true;
        } else if (argument == u"--store") {
            // The user's own preference store, wherever the desktop keeps it.
            if (line.command.isEmpty()) {
                line.error = QStringLiteral("--store stands for a FILE: give the command first");
                return line;
            }
            line.files.append(TVKUserDefaults::defaultPath());
        } else if (argument.startsWith(u'-') && argument.size() > 1) {
            line.error = QStringLiteral("unknown option \"%1\"").arg(argument);
            return line;
        } else if (line.command.isEmpty()) {
            line.command = argument;
        } else {
            line.files.append(argument);
        }
    }
    return line;
}

int usageError(QTextStream& err, const QString& message)
{
    err << kProgram << ": " << message << '\n'
        << "Try \"" << kProgram << " --help\" for more information.\n";
    return KeysetTool::ExitUsage;
}

} // namespace

KeysetDocument::KeysetDocument() = default;
KeysetDocument::KeysetDocument(KeysetDocument&&) noexcept = default;
KeysetDocument& KeysetDocument::operator=(KeysetDocument&&) noexcept = default;
KeysetDocument::~KeysetDocument() = default;

KeysetReadResult KeysetTool::readDocument(const QString& path)
{
    KeysetReadResult result;
    PlistReadResult read = PlistCodec::readFile(path);
    if (!read.ok) {
        result.error = read.error.toString();
        return result;
    }
    const PlistValue& root = read.value;
    if (!root.isDict()) {
        result.error = QStringLiteral("not a keyset or configuration: the top level is not a "
                                      "dictionary");
        return result;
    }

    KeysetDocument& document = result.document;
    document.format = read.format;
    const PlistValue& stored = root.value(key::ModelData);
    if (stored.isDict()) {
        document.kind = KeysetDocumentKind::PreferenceStore;
    } else if (root.contains(key::Keysets)) {
        document.kind = KeysetDocumentKind::Configuration;
    } else if (looksLikeKeyset(root)) {
        document.kind = KeysetDocumentKind::Keyset;
    } else if (looksLikeConfiguration(root)) {
        document.kind = KeysetDocumentKind::Configuration;
    } else if (root.contains(key::ModelData)) {
        result.error = QStringLiteral("the stored \"TVKModelData\" entry is not a dictionary");
        return result;
    } else {
        result.error = QStringLiteral("holds neither a keyset nor a configuration");
        return result;
    }

    const QString limit = TVKModelData::archiveLimitExceeded(
        document.kind == KeysetDocumentKind::PreferenceStore ? stored : root);
    if (!limit.isNull()) {
        result.error = limit;
        return result;
    }

    ArchiveRepairLog repairs;
    switch (document.kind) {
    case KeysetDocumentKind::PreferenceStore:
        document.model = std::make_unique<CorvaneModelData>(stored);
        document.preferenceStore = root;
        break;
    case KeysetDocumentKind::Configuration:
        document.model = std::make_unique<CorvaneModelData>(root);
        break;
    case KeysetDocumentKind::Keyset: {
        // An exported keyset is read the way an import reads it, as the one keyset of a fresh
        // model (standing in for the "Default" keyset).
        document.model = std::make_unique<CorvaneModelData>();
        std::unique_ptr<TVKKeyset> keyset = document.model->createKeysetFromArchive(root);
        if (!keyset) {
            result.error = QStringLiteral("the keyset could not be made");
            return result;
        }
        document.model->replaceKeysetAtIndex(0, std::move(keyset));
        break;
    }
    }
    document.repairs = repairs.repairs();
    result.ok = true;
    return result;
}

PlistValue KeysetTool::archiveDocument(const KeysetDocument& document)
{
    if (!document.model)
        return PlistValue();
    switch (document.kind) {
    case KeysetDocumentKind::Keyset: {
        PlistValue dict = PlistValue::makeDict(6);
        if (const TVKKeyset* keyset = document.model->keysetAtIndex(0))
            keyset->writeTo(dict);
        return dict;
    }
    case KeysetDocumentKind::Configuration: {
        PlistValue dict = PlistValue::makeDict();
        document.model->writeTo(dict);
        return dict;
    }
    case KeysetDocumentKind::PreferenceStore: {
        PlistValue dict = PlistValue::makeDict();
        document.model->writeTo(dict);
        PlistValue store = document.preferenceStore;
        store.insert(key::ModelData, std::move(dict));
        return store;
    }
    }
    return PlistValue();
}

void KeysetTool::describe(TVKModelData& model, QTextStream& out, bool readable)
{
    const int previousSelection = model.selectedKeysetIndex();
    for (int k = 0; k < model.numberOfKeysets(); ++k) {
        // Descriptors may depend on the selected keyset, as they do in the summary window.
        model.setSelectedKeysetIndex(k);
        const TVKKeyset* keyset = model.keysetAtIndex(k);
        if (!keyset)
            continue;
        const QString keysetField = escapeField(keyset->name());
        for (const auto& layer : keyset->layers()) {
            if (!layer)
                continue;
            describeGroups(out, keysetField, layer->index() + 1, layer->groups(), false, readable);
            describeGroups(out, keysetField, layer->index() + 1, layer->displayGroups(), true,
                           readable);
        }
    }
    model.setSelectedKeysetIndex(previousSelection);
    out.flush();
}

QString KeysetTool::describeRepair(const ArchiveRepair& repair)
{
    QString line = QStringLiteral("keyset \"%1\"").arg(escapeField(repair.keyset));
    if (repair.layer >= 0)
        line += QStringLiteral(", layer %1").arg(repair.layer + 1);
    if (repair.group >= 0) {
        line += repair.display ? QStringLiteral(", group D%1").arg(repair.group)
                               : QStringLiteral(", group %1").arg(repair.group);
    }
    if (repair.control >= 0) {
        line += repair.display ? QStringLiteral(", display %1").arg(repair.control)
                               : QStringLiteral(", control %1").arg(repair.control);
    }
    line += QStringLiteral(": ") + escapeField(repair.what);
    return line;
}

QString KeysetTool::escapeField(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (QChar c : text) {
        switch (c.unicode()) {
        case u'\t':
            escaped += QStringLiteral("\\t");
            break;
        case u'\n':
            escaped += QStringLiteral("\\n");
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

QString KeysetTool::usage()
{
    return QStringLiteral(
               "Usage: corvane-keyset COMMAND ARGUMENTS\n"
               "\n"
               "Reads keyset files and stored configurations through the configuration model.\n"
               "FILE may be an exported keyset, a stored configuration (a dictionary with\n"
               "\"TVKKeysets\") or a preference store whose \"TVKModelData\" entry holds one;\n"
               "XML and binary property lists are both read. --store in place of a FILE names\n"
               "the user's preference store ($XDG_CONFIG_HOME/Tavrik/com.tavrik.CorvaneRS.plist).\n"
               "\n"
               "Commands:\n"
               "  describe FILE [--readable]\n"
               "                            one line per control and display of every keyset:\n"
               "                            KEYSET, LAYER (1-4), GROUP (model-data group, or D "
               "and\n"
               "                            the display group), CONTROL, USERNAME and "
               "DESCRIPTION,\n"
               "                            separated by tabs. Tabs and newlines inside a field "
               "are\n"
               "                            written as \\t and \\n. With --readable, DESCRIPTION "
               "is\n"
               "                            what the action does in full (\"Ctrl+Shift+S\",\n"
               "                            \"Note On C4 (60) vel 100 · ch 1\") in place of its\n"
               "                            descriptor.\n"
               "  convert IN OUT [--xml|--binary]\n"
               "                            reads IN into the model and writes the model back to\n"
               "                            OUT (XML unless --binary), replacing OUT atomically.\n"
               "                            A keyset stays a keyset, a configuration a\n"
               "                            configuration. OUT is left alone when IN cannot be "
               "read.\n") +
           sheetUsage() +
           QStringLiteral(
               "  check FILE                reports, one line each on standard error, what the "
               "model\n"
               "                            had to put right while reading: actions that could "
               "not\n"
               "                            be restored, controls of unknown type and the "
               "controls\n"
               "                            after them, missing groups and controls.\n"
               "  export-all STORE DIR [--force]\n"
               "                            writes every keyset of STORE but keyset 0 as a keyset\n"
               "                            file (NAME.CvKs, made safe and unique) into DIR, "
               "making\n"
               "                            DIR when it is missing, and prints each file written.\n"
               "                            Files that are there already are replaced only with\n"
               "                            --force; without it nothing is written.\n"
               "\n"
               "Options:\n"
               "  --help                    show this help and exit\n"
               "  --version                 show the version and exit\n"
               "\n"
               "Exit status:\n"
               "  0   success (check: the file reads with nothing put right)\n"
               "  1   check: the file reads, but something was put right\n"
               "  2   the input file could not be read\n"
               "  3   convert, sheet, export-all: an output file could not be written (it is\n"
               "      left as it was)\n"
               "  4   sheet: the file holds no such keyset, or several and none was named\n"
               "  5   export-all: files are in the way and --force was not given; nothing was\n"
               "      written\n"
               "  64  the command line is not valid\n");
}

int KeysetTool::run(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    // Descriptors and counts come from the surface constants; a caller that made its own keeps
    // them.
    std::optional<Corvane_Constant_Server> constants;
    if (!TVK_Constant_Server::defaultConstantServer())
        constants.emplace();

    if (!arguments.isEmpty() && arguments.first() == u"sheet")
        return runSheetCommand(arguments.mid(1), out, err);

    const CommandLine line = parseCommandLine(arguments);
    if (line.help) {
        out << usage();
        out.flush();
        return ExitOk;
    }
    if (line.version) {
        out << kProgram << ' ' << QStringLiteral(CORVANE_VERSION) << '\n';
        out.flush();
        return ExitOk;
    }
    if (!line.error.isEmpty())
        return usageError(err, line.error);
    if (line.command.isEmpty())
        return usageError(err, QStringLiteral("no command given"));

    const auto expectFiles = [&](qsizetype count, const QString& synopsis) {
        if (line.files.size() == count)
            return true;
        usageError(err, QStringLiteral("usage: %1 %2").arg(kProgram, synopsis));
        return false;
    };
    const auto readOrReport = [&](const QString& path) {
        KeysetReadResult read;
        try {
            read = readDocument(path);
        } catch (const std::bad_alloc&) {
            read = KeysetReadResult();
            read.error = QStringLiteral("not enough memory to read it into the model");
        }
        if (!read.ok)
            err << kProgram << ": cannot read " << path << ": " << read.error << '\n';
        return read;
    };

    if (line.readable && line.command != u"describe")
        return usageError(err, QStringLiteral("--readable belongs to describe"));
    if (line.force && line.command != u"export-all")
        return usageError(err, QStringLiteral("--force belongs to export-all"));

    if (line.command == u"describe") {
        if (line.formatGiven)
            return usageError(err, QStringLiteral("--xml and --binary belong to convert"));
        if (!expectFiles(1, QStringLiteral("describe FILE [--readable]")))
            return ExitUsage;
        KeysetReadResult read = readOrReport(line.files.first());
        if (!read.ok)
            return ExitUnreadable;
        describe(*read.document.model, out, line.readable);
        return ExitOk;
    }

    if (line.command == u"export-all") {
        if (line.formatGiven)
            return usageError(err, QStringLiteral("--xml and --binary belong to convert"));
        if (!expectFiles(2, QStringLiteral("export-all STORE DIR [--force]")))
            return ExitUsage;
        KeysetReadResult read = readOrReport(line.files.at(0));
        if (!read.ok)
            return ExitUnreadable;
        if (read.document.kind == KeysetDocumentKind::Keyset) {
            err << kProgram << ": " << line.files.at(0)
                << " is a keyset file, not a store of keysets\n";
            return ExitUnreadable;
        }
        return exportAll(*read.document.model, line.files.at(1), line.force, out, err);
    }

    if (line.command == u"convert") {
        if (!expectFiles(2, QStringLiteral("convert IN OUT [--xml|--binary]")))
            return ExitUsage;
        KeysetReadResult read = readOrReport(line.files.at(0));
        if (!read.ok)
            return ExitUnreadable;
        const PlistValue tree = archiveDocument(read.document);
        QString writeError;
        if (!PlistCodec::writeFile(line.files.at(1), tree, line.format, &writeError)) {
            // The codec's message names the file already.
            err << kProgram << ": " << writeError << '\n';
            return ExitWriteFailed;
        }
        return ExitOk;
    }

    if (line.command == u"check") {
        if (line.formatGiven)
            return usageError(err, QStringLiteral("--xml and --binary belong to convert"));
        if (!expectFiles(1, QStringLiteral("check FILE")))
            return ExitUsage;
        KeysetReadResult read = readOrReport(line.files.first());
        if (!read.ok)
            return ExitUnreadable;
        for (const ArchiveRepair& repair : read.document.repairs)
            err << line.files.first() << ": " << describeRepair(repair) << '\n';
        err.flush();
        return read.document.repairs.empty() ? ExitOk : ExitRepaired;
    }

    return usageError(err, QStringLiteral("unknown command \"%1\"").arg(line.command));
}

} // namespace corvane
