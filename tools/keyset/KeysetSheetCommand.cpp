#include "KeysetSheetCommand.h"

#include "KeysetTool.h"
#include "core/TVKUserDefaults.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "sheet/KeysetSheet.h"

#include <QTextStream>
#include <optional>

namespace corvane {

namespace {

const QString kProgram = QStringLiteral("corvane-keyset");

int usageError(QTextStream& err, const QString& message)
{
    err << kProgram << ": " << message << '\n'
        << "Try \"" << kProgram << " --help\" for more information.\n";
    err.flush();
    return KeysetTool::ExitUsage;
}

QString keysetList(const TVKModelData& model)
{
    QStringList names;
    for (int k = 0; k < model.numberOfKeysets(); ++k) {
        if (const TVKKeyset* keyset = model.keysetAtIndex(k))
            names << QStringLiteral("  %1  %2").arg(k + 1).arg(keyset->name());
    }
    return names.join(u'\n');
}

// The keyset a --keyset value names: its exact name first, else its number in the list (from 1).
int findKeyset(const TVKModelData& model, const QString& wanted)
{
    for (int k = 0; k < model.numberOfKeysets(); ++k) {
        const TVKKeyset* keyset = model.keysetAtIndex(k);
        if (keyset && keyset->name() == wanted)
            return k;
    }
    bool number = false;
    const int index = wanted.toInt(&number);
    if (number && index >= 1 && index <= model.numberOfKeysets())
        return index - 1;
    return -1;
}

} // namespace

QString sheetUsage()
{
    return QStringLiteral(
        "  sheet FILE [--keyset NAME|INDEX] [--page a4|letter] -o OUT.pdf\n"
        "                            writes the printable sheet of one keyset as a PDF:\n"
        "                            for every layer the pictures of the units it uses with\n"
        "                            each assigned control's label, and a table of those\n"
        "                            controls with their actions. --keyset names the keyset\n"
        "                            by name or by number in the list (from 1); it is needed\n"
        "                            when the file holds more than one. --page: a4 (the\n"
        "                            default) or letter, landscape. OUT is replaced only\n"
        "                            when the whole sheet is written.\n");
}

int runSheetCommand(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    Q_UNUSED(out);
    QStringList files;
    std::optional<QString> keysetName;
    QString output;
    SheetPaper paper = SheetPaper::A4;
    // An option's value is the next argument, or follows "=".
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        QString argument = arguments.at(i);
        QString value;
        bool hasValue = false;
        const qsizetype equals = argument.indexOf(u'=');
        if (argument.startsWith(QStringLiteral("--")) && equals > 0) {
            value = argument.mid(equals + 1);
            argument.truncate(equals);
            hasValue = true;
        }
        const auto takeValue = [&]() -> std::optional<QString> {
            if (hasValue)
                return value;
            // The next argument, unless it is another option ("--keyset -o out.pdf").
            if (i + 1 < arguments.size() && !arguments.at(i + 1).startsWith(u'-'))
                return arguments.at(++i);
            return std::nullopt;
        };
        if (argument == u"--keyset" || argument == u"--page" || argument == u"-o" ||
            argument == u"--output") {
            const std::optional<QString> given = takeValue();
            if (!given)
                return usageError(err, QStringLiteral("%1 needs a value").arg(argument));
            if (argument == u"--keyset") {
                keysetName = *given;
            } else if (argument == u"--page") {
                if (given->compare(QStringLiteral("a4"), Qt::CaseInsensitive) == 0)
                    paper = SheetPaper::A4;
                else if (given->compare(QStringLiteral("letter"), Qt::CaseInsensitive) == 0)
                    paper = SheetPaper::Letter;
                else
                    return usageError(
                        err, QStringLiteral("unknown page size \"%1\": a4 or letter").arg(*given));
            } else {
                output = *given;
            }
        } else if (argument == u"--store" && !hasValue) {
            files << TVKUserDefaults::defaultPath();
        } else if (argument.startsWith(u'-') && argument.size() > 1) {
            return usageError(err, QStringLiteral("unknown option \"%1\"").arg(arguments.at(i)));
        } else {
            files << argument;
        }
    }
    const QString synopsis =
        QStringLiteral("usage: %1 sheet FILE [--keyset NAME|INDEX] [--page a4|letter] -o OUT.pdf")
            .arg(kProgram);
    if (files.size() != 1 || output.isEmpty())
        return usageError(err, synopsis);

    KeysetReadResult read;
    try {
        read = KeysetTool::readDocument(files.first());
    } catch (const std::bad_alloc&) {
        read = KeysetReadResult();
        read.error = QStringLiteral("not enough memory to read it into the model");
    }
    if (!read.ok) {
        err << kProgram << ": cannot read " << files.first() << ": " << read.error << '\n';
        err.flush();
        return KeysetTool::ExitUnreadable;
    }
    TVKModelData& model = *read.document.model;
    int index = 0;
    if (keysetName) {
        index = findKeyset(model, *keysetName);
        if (index < 0) {
            err << kProgram << ": " << files.first() << " holds no keyset \"" << *keysetName
                << "\"; its keysets are:\n"
                << keysetList(model) << '\n';
            err.flush();
            return KeysetTool::ExitNoSuchKeyset;
        }
    } else if (model.numberOfKeysets() > 1) {
        err << kProgram << ": " << files.first() << " holds " << model.numberOfKeysets()
            << " keysets; choose one with --keyset NAME or --keyset NUMBER:\n"
            << keysetList(model) << '\n';
        err.flush();
        return KeysetTool::ExitNoSuchKeyset;
    }
    // Descriptions may depend on the selected keyset, as in the application.
    model.setSelectedKeysetIndex(index);
    const TVKKeyset* keyset = model.keysetAtIndex(index);
    if (!keyset) {
        err << kProgram << ": " << files.first() << " holds no keyset\n";
        err.flush();
        return KeysetTool::ExitNoSuchKeyset;
    }
    QString error;
    if (!KeysetSheet(*keyset).writePdf(output, paper, &error)) {
        err << kProgram << ": cannot write " << output << ": " << error << '\n';
        err.flush();
        return KeysetTool::ExitWriteFailed;
    }
    return KeysetTool::ExitOk;
}

} // namespace corvane
