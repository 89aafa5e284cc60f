// The keyset tool's readable descriptions and its export of every keyset, run as the program.
#include "TestConfig.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/editors/KeyEventTranslator.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "surface/Corvane_Constant_Server.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

struct ToolOutput
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

ToolOutput tool(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(CORVANE_KEYSET_TOOL), arguments);
    EXPECT_TRUE(process.waitForFinished(120000)) << "the tool did not finish";
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class KeysetToolExportTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        TVKKeyset::resetTargetIDs();
        TVKModelData::setDefaultModelData(nullptr);
    }

    QString path(const QString& name) const { return dir.filePath(name); }

    // Three keysets besides the first: a button typing Ctrl+Shift+S in one, a button sending a
    // note in another, two of them of the same name.
    PlistValue configuration()
    {
        CorvaneModelData model;
        model.addKeysetWithName(QStringLiteral("Ardour"), fourCC("Ardr"));
        model.addKeysetWithName(QStringLiteral("Ardour"), fourCC("Ard2"));
        model.addKeysetWithName(QStringLiteral("Mix/Master"), fourCC("MxMs"));
        TVKControl* button = model.keysetAtIndex(1)->controlForLayer(0, 1, 2);
        auto keys = std::make_unique<TVKButtonKeySequenceAction>(button, 50, false);
        keys->sequence().push_back(TVKKeystrokeElement(
            QStringLiteral("s"), 31, KeyEventTranslator::kControl | KeyEventTranslator::kShift));
        button->adoptAction(std::move(keys));
        button->setUserName(QStringLiteral("Save As"));
        buttonName = button->name();
        TVKControl* noteButton = model.keysetAtIndex(2)->controlForLayer(1, 13, 0);
        const quint8 note[] = {0x90, 60, 100};
        noteButton->adoptAction(
            std::make_unique<TVKButtonMIDIAction>(TVKMIDIAction::Custom, note, 3u, noteButton));
        noteButtonName = noteButton->name();
        PlistValue dict = PlistValue::makeDict();
        model.writeTo(dict);
        return dict;
    }

    void writeConfiguration(const QString& file)
    {
        QString error;
        ASSERT_TRUE(PlistCodec::writeFile(file, configuration(), PlistFormat::Xml, &error))
            << error.toStdString();
    }

    // The keyset of a configuration as a keyset file holds it.
    static PlistValue keysetOf(const PlistValue& configuration, int index)
    {
        CorvaneModelData model(configuration);
        PlistValue dict = PlistValue::makeDict(6);
        model.keysetAtIndex(index)->writeTo(dict);
        return dict;
    }

    Corvane_Constant_Server constants;
    QTemporaryDir dir;
    QString buttonName;
    QString noteButtonName;
};

} // namespace

TEST_F(KeysetToolExportTest, DescribeReadableWritesWhatEachActionDoesAndNothingElseChanges)
{
    writeConfiguration(path(QStringLiteral("config.plist")));
    const ToolOutput plain =
        tool({QStringLiteral("describe"), path(QStringLiteral("config.plist"))});
    const ToolOutput readable =
        tool({QStringLiteral("describe"), path(QStringLiteral("config.plist")),
              QStringLiteral("--readable")});
    ASSERT_EQ(plain.exitCode, 0) << plain.err.constData();
    ASSERT_EQ(readable.exitCode, 0) << readable.err.constData();

    // The same lines, field for field, but the description.
    const QList<QByteArray> plainLines = plain.out.split('\n');
    const QList<QByteArray> readableLines = readable.out.split('\n');
    ASSERT_EQ(plainLines.size(), readableLines.size());
    int changed = 0;
    for (qsizetype i = 0; i + 1 < plainLines.size(); ++i) {
        const QList<QByteArray> a = plainLines.at(i).split('\t');
        const QList<QByteArray> b = readableLines.at(i).split('\t');
        ASSERT_EQ(a.size(), 6);
        ASSERT_EQ(b.size(), 6);
        EXPECT_EQ(a.mid(0, 5), b.mid(0, 5));
        // Controls without an action read the same either way.
        if (a.at(5) == "No Action Assigned" || a.at(5) == "No Function Assigned") {
            EXPECT_EQ(b.at(5), a.at(5));
        }
        changed += a.at(5) != b.at(5);
    }
    EXPECT_EQ(changed, 2) << "only the two assigned controls read otherwise";

    const QByteArray saveAs = "Ardour\t1\t1\t" + buttonName.toUtf8() + "\tSave As\t";
    EXPECT_TRUE(plain.out.contains(saveAs + "Key Sequence"))
        << "the system's descriptor is kept without --readable";
    EXPECT_FALSE(plain.out.contains("Ctrl+Shift+S"));
    EXPECT_TRUE(readable.out.contains(saveAs + "Ctrl+Shift+S\n")) << readable.out.left(300).data();
    EXPECT_TRUE(readable.out.contains("Ardour\t2\t13\t" + noteButtonName.toUtf8() +
                                      "\t\tNote On C4 (60) vel 100 · ch 1\n"));

    // --readable belongs to describe.
    const ToolOutput wrong = tool({QStringLiteral("check"), path(QStringLiteral("config.plist")),
                                   QStringLiteral("--readable")});
    EXPECT_EQ(wrong.exitCode, 64);
    EXPECT_TRUE(wrong.err.contains("--readable belongs to describe"));
}

TEST_F(KeysetToolExportTest, ExportAllWritesEveryKeysetButTheFirstAndRefusesToOverwrite)
{
    const QString store = path(QStringLiteral("config.plist"));
    writeConfiguration(store);
    const QString into = path(QStringLiteral("made/on/the way"));
    const QStringList names = {QStringLiteral("Ardour.CvKs"), QStringLiteral("Ardour 2.CvKs"),
                               QStringLiteral("Mix_Master.CvKs")};

    ToolOutput run = tool({QStringLiteral("export-all"), store, into});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    QStringList listed;
    for (const QByteArray& line : run.out.trimmed().split('\n'))
        listed << QString::fromUtf8(line);
    EXPECT_EQ(listed, (QStringList{QDir(into).filePath(names[0]), QDir(into).filePath(names[1]),
                                   QDir(into).filePath(names[2])}));
    QStringList found = QDir(into).entryList(QDir::Files | QDir::Hidden);
    found.sort();
    QStringList sorted = names;
    sorted.sort();
    EXPECT_EQ(found, sorted);
    // Each file is its keyset, as the application's own export writes it.
    const PlistValue config = configuration();
    for (int k = 1; k <= 3; ++k) {
        const PlistReadResult read = PlistCodec::readFile(QDir(into).filePath(names[k - 1]));
        ASSERT_TRUE(read.ok);
        EXPECT_TRUE(read.value == keysetOf(config, k)) << names[k - 1].toStdString();
    }

    // Again: every file in the way is named, and nothing at all is written.
    const QString first = QDir(into).filePath(names[0]);
    QFile::remove(QDir(into).filePath(names[2]));
    ASSERT_TRUE(QFile::resize(first, 10));
    run = tool({QStringLiteral("export-all"), store, into});
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_TRUE(run.err.contains(QDir(into).filePath(names[0]).toUtf8()));
    EXPECT_TRUE(run.err.contains(QDir(into).filePath(names[1]).toUtf8()));
    EXPECT_TRUE(run.err.contains("--force"));
    EXPECT_EQ(contents(first).size(), 10);
    EXPECT_FALSE(QFile::exists(QDir(into).filePath(names[2])));

    // With --force they are replaced.
    run = tool({QStringLiteral("export-all"), QStringLiteral("--force"), store, into});
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_TRUE(PlistCodec::readFile(first).value == keysetOf(config, 1));
    EXPECT_TRUE(QFile::exists(QDir(into).filePath(names[2])));

    // A preference store is a store too.
    PlistValue preferences = PlistValue::makeDict();
    preferences.insert(key::ModelData, config);
    ASSERT_TRUE(PlistCodec::writeFile(path(QStringLiteral("prefs.plist")), preferences));
    run = tool({QStringLiteral("export-all"), path(QStringLiteral("prefs.plist")),
                path(QStringLiteral("fromPrefs"))});
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_EQ(QDir(path(QStringLiteral("fromPrefs"))).entryList(QDir::Files).size(), 3);
}

TEST_F(KeysetToolExportTest, ExportAllSaysWhyItCannot)
{
    const QString store = path(QStringLiteral("config.plist"));
    writeConfiguration(store);
    QFile plain(path(QStringLiteral("plain")));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    plain.write("x");
    plain.close();

    struct Case
    {
        QStringList arguments;
        int exitCode;
        const char* says;
    };
    const std::vector<Case> cases = {
        {{QStringLiteral("export-all"), store}, 64, "export-all STORE DIR"},
        {{QStringLiteral("export-all"), store, path(QStringLiteral("d")), QStringLiteral("x")},
         64,
         "export-all STORE DIR"},
        {{QStringLiteral("describe"), store, QStringLiteral("--force")},
         64,
         "--force belongs to export-all"},
        {{QStringLiteral("export-all"), store, path(QStringLiteral("d")), QStringLiteral("--xml")},
         64,
         "belong to convert"},
        {{QStringLiteral("export-all"), path(QStringLiteral("missing.plist")),
          path(QStringLiteral("d"))},
         2,
         "cannot read"},
        {{QStringLiteral("export-all"),
          QStringLiteral(CORVANE_SOURCE_DIR "/tests/tools/data/small.cvks"),
          path(QStringLiteral("d"))},
         2,
         "is a keyset file, not a store of keysets"},
        {{QStringLiteral("export-all"), store, path(QStringLiteral("plain"))}, 3, "not a folder"},
        {{QStringLiteral("export-all"), store, path(QStringLiteral("plain/below"))},
         3,
         "cannot make the folder"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const ToolOutput run = tool(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(run.err.contains(c.says)) << run.err.constData();
    }
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("d"))));
    EXPECT_EQ(contents(path(QStringLiteral("plain"))), QByteArray("x"));

    // Only the first keyset: nothing to write, and it says so.
    PlistValue alone = PlistValue::makeDict();
    CorvaneModelData().writeTo(alone);
    ASSERT_TRUE(PlistCodec::writeFile(path(QStringLiteral("alone.plist")), alone));
    const ToolOutput run = tool({QStringLiteral("export-all"), path(QStringLiteral("alone.plist")),
                                 path(QStringLiteral("empty"))});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.err.contains("no keyset to export"));
    EXPECT_TRUE(QDir(path(QStringLiteral("empty"))).isEmpty());
}
