#include "KeysetTool.h"

#include "ConfigGenerator.h"
#include "TestConfig.h"
#include "actions/TVKSpecialAction.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace key = corvane::key;

namespace {

using corvane::KeysetTool;
using corvane::PlistCodec;
using corvane::PlistFormat;
using corvane::PlistValue;

struct ToolRun
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

ToolRun runTool(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(CORVANE_KEYSET_TOOL), arguments);
    EXPECT_TRUE(process.waitForFinished(120000)) << "the tool did not finish";
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

// The bytes of a literal without its terminating NUL (literals here hold NULs of their own).
template <size_t N>
QByteArray bytesOf(const char (&literal)[N])
{
    return QByteArray(literal, qsizetype(N - 1));
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

void writeTree(const QString& path, const PlistValue& tree, PlistFormat format = PlistFormat::Xml)
{
    QString error;
    ASSERT_TRUE(PlistCodec::writeFile(path, tree, format, &error)) << qPrintable(error);
}

QString sampleData(const char* name)
{
    return QStringLiteral(KEYSET_TOOL_TEST_DATA "/") + QLatin1String(name);
}

// The tree the model writes for a file, for comparing two files model by model.
PlistValue modelTree(const QString& path)
{
    corvane::KeysetReadResult read = KeysetTool::readDocument(path);
    EXPECT_TRUE(read.ok) << qPrintable(path) << ": " << qPrintable(read.error);
    return KeysetTool::archiveDocument(read.document);
}

class KeysetToolTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        TVKKeyset::resetTargetIDs();
    }

    QString path(const char* name) const { return dir.filePath(QLatin1String(name)); }

    // A keyset as the model writes it: every group complete, one special action.
    PlistValue cleanKeyset()
    {
        CorvaneModelData model;
        TVKKeyset* keyset = model.keysetAtIndex(0);
        keyset->setName(QStringLiteral("Clean"));
        TVKControl* control = keyset->controlForLayer(0, 0, 0);
        control->adoptAction(std::make_unique<TVKButtonSpecialAction>(control, 4));
        PlistValue dict = PlistValue::makeDict(6);
        keyset->writeTo(dict);
        return dict;
    }

    // A configuration of three keysets with names, an icon, NV groups and special actions.
    PlistValue configuration()
    {
        CorvaneModelData model;
        model.addKeysetWithName(QStringLiteral("Ardour"), corvane::kUnknownSignature,
                                QStringLiteral("org.ardour.Ardour8"),
                                bytesOf("\x89PNG\r\n\x1a\nnot really"));
        model.addKeysetWithName(QStringLiteral("Kdenlive"),
                                corvane::fourCharCodeFromString(QStringLiteral("Kdnl")),
                                QStringLiteral("org.kde.kdenlive"));
        for (int k = 0; k < model.numberOfKeysets(); ++k) {
            TVKKeyset* keyset = model.keysetAtIndex(k);
            for (int layer = 0; layer < 4; ++layer) {
                TVKControl* control = keyset->controlForLayer(layer, 13, k + layer);
                control->setUserName(QStringLiteral("Locate %1").arg(layer));
                control->adoptAction(std::make_unique<TVKButtonSpecialAction>(control, 4 + layer));
            }
        }
        model.setSelectedKeysetIndex(1);
        model.createCorvaneNVGroupNamed(QStringLiteral("Drums"));
        model.addButtonID(3, 0);
        model.addButtonID(4, 0);
        model.setStandaloneNV(true);
        PlistValue dict = PlistValue::makeDict();
        model.writeTo(dict);
        return dict;
    }

    Corvane_Constant_Server constants;
    QTemporaryDir dir;
};

TEST_F(KeysetToolTest, DescribeOfASmallKeysetFileMatchesTheGoldenFileWhole)
{
    const ToolRun run = runTool({QStringLiteral("describe"), sampleData("small.cvks")});
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    const QByteArray golden = readAll(sampleData("small.describe.txt"));
    ASSERT_FALSE(golden.isEmpty());
    EXPECT_EQ(run.out.size(), golden.size());
    EXPECT_TRUE(run.out == golden) << "describe output differs from small.describe.txt";
}

TEST_F(KeysetToolTest, DescribeListsEveryKeysetLayerAndControlInModelOrder)
{
    writeTree(path("config.plist"), configuration());
    const ToolRun run = runTool({QStringLiteral("describe"), path("config.plist")});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();

    const QList<QByteArray> lines = run.out.split('\n');
    ASSERT_TRUE(lines.last().isEmpty()); // every line ends in a newline
    const int perLayer = 821 + 257;
    ASSERT_EQ(lines.size() - 1, 3 * 4 * perLayer);
    const QByteArray keysets[] = {"Default", "Ardour", "Kdenlive"};
    for (int k = 0; k < 3; ++k) {
        for (int layer = 0; layer < 4; ++layer) {
            const QList<QByteArray> first = lines.at((k * 4 + layer) * perLayer).split('\t');
            ASSERT_EQ(first.size(), 6);
            EXPECT_EQ(first.at(0), keysets[k]);
            EXPECT_EQ(first.at(1), QByteArray::number(layer + 1));
            EXPECT_EQ(first.at(2), "0");
            EXPECT_EQ(first.at(3), "M1");
            const QList<QByteArray> last = lines.at((k * 4 + layer + 1) * perLayer - 1).split('\t');
            EXPECT_EQ(last.at(2), "D4");
            EXPECT_EQ(last.at(3), "CorvaneNV Button Display 24 Bank 10");
            EXPECT_EQ(last.at(5), "No Function Assigned");
        }
    }
    EXPECT_TRUE(run.out.contains("Ardour\t3\t13\t3\tLocate 2\tLayer 3 Selector\n"));
    EXPECT_TRUE(run.out.contains("Kdenlive\t1\t13\t2\tLocate 0\tLayer 1 Selector\n"));
}

// Every kind of action, display action, user names, icons and NV groups, as real keysets mix
// them: all of it must read back clean and survive both forms unchanged.
TEST_F(KeysetToolTest, RealisticConfigurationReadsCleanAndRoundTrips)
{
    corvane::ConfigGenerator generator(11);
    const std::unique_ptr<CorvaneModelData> model = generator.generateConfiguration(2);
    PlistValue tree = PlistValue::makeDict();
    model->writeTo(tree);
    writeTree(path("studio.plist"), tree);

    ToolRun run = runTool({QStringLiteral("check"), path("studio.plist")});
    EXPECT_EQ(run.exitCode, 0) << run.err.left(2000).constData();

    run = runTool({QStringLiteral("convert"), path("studio.plist"), path("studio.bplist"),
                   QStringLiteral("--binary")});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_TRUE(readAll(path("studio.bplist")).startsWith("bplist00"));
    run = runTool({QStringLiteral("convert"), path("studio.bplist"), path("back.plist")});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_TRUE(readAll(path("back.plist")).startsWith("<?xml"));

    EXPECT_EQ(tree.value(key::Keysets).size(), 2);
    EXPECT_TRUE(modelTree(path("studio.plist")) == tree);
    EXPECT_TRUE(modelTree(path("studio.bplist")) == tree);
    // What the model writes is what the file holds once it has been through the model.
    EXPECT_TRUE(PlistCodec::readFile(path("back.plist")).value == tree);
}

TEST_F(KeysetToolTest, ConvertKeepsAKeysetAKeysetAndWritesTheRepairs)
{
    ToolRun run = runTool({QStringLiteral("convert"), sampleData("small.cvks"), path("out.cvks"),
                           QStringLiteral("--binary")});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const PlistValue out = PlistCodec::readFile(path("out.cvks")).value;
    EXPECT_TRUE(out.contains(key::Layers));
    EXPECT_FALSE(out.contains(key::Keysets));
    EXPECT_EQ(out.value(key::Name).toString(), u"Mix\tDesk");
    EXPECT_EQ(out.value(key::Layers).size(), 4);

    // The missing groups and controls were filled in, so the result reads clean; groups 29 and
    // 30 are written with more controls than the surface counts, and reading them back is not
    // a repair.
    run = runTool({QStringLiteral("check"), path("out.cvks")});
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_TRUE(run.err.isEmpty());
}

TEST_F(KeysetToolTest, ConvertKeepsTheOtherEntriesOfAPreferenceStore)
{
    PlistValue store = PlistValue::makeDict();
    store.insert(key::ModelData, configuration());
    store.insert(key::StandaloneTLW, PlistValue(1));
    store.insert(QStringLiteral("NSWindow Frame TVKKeySumPos"),
                 PlistValue(QStringLiteral("100 100 800 600 0 0 1920 1080 ")));
    writeTree(path("prefs.plist"), store);

    const ToolRun run =
        runTool({QStringLiteral("convert"), path("prefs.plist"), path("out.plist")});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const PlistValue out = PlistCodec::readFile(path("out.plist")).value;
    EXPECT_EQ(out.value(key::StandaloneTLW).toInteger(), 1);
    EXPECT_EQ(out.value(u"NSWindow Frame TVKKeySumPos").toString(),
              u"100 100 800 600 0 0 1920 1080 ");
    EXPECT_TRUE(out.value(key::ModelData) == modelTree(path("prefs.plist")).value(key::ModelData));
    EXPECT_EQ(out.value(key::ModelData).value(key::Keysets).size(), 3);
}

TEST_F(KeysetToolTest, ConvertNeverTouchesTheOutputWhenTheInputCannotBeRead)
{
    writeBytes(path("precious.plist"), "keep me");
    writeBytes(path("broken.plist"), "<?xml version=\"1.0\"?><plist><dict><key>TVK");
    const ToolRun run =
        runTool({QStringLiteral("convert"), path("broken.plist"), path("precious.plist")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(readAll(path("precious.plist")), "keep me");
    EXPECT_TRUE(run.err.contains("cannot read"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2); // no stray temporary file
}

TEST_F(KeysetToolTest, ConvertReportsAnOutputItCannotWrite)
{
    const ToolRun run = runTool(
        {QStringLiteral("convert"), sampleData("small.cvks"), path("no/such/folder/out.plist")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(run.err.contains("cannot write")) << run.err.constData();
}

// Each kind of repair is reported as one line naming keyset, layer, group and control.
TEST_F(KeysetToolTest, CheckReportsEveryKindOfRepair)
{
    const auto controlIn = [](PlistValue& keyset, int layer, int group, int index) {
        return keyset.find(key::Layers)
            ->findAt(layer)
            ->find(key::Groups)
            ->findAt(group)
            ->findAt(index);
    };
    const auto truncated = [](const PlistValue& list, int count) {
        PlistValue shorter = PlistValue::makeArray(count);
        for (int i = 0; i < count; ++i)
            shorter.append(list.at(i));
        return shorter;
    };

    struct Case
    {
        const char* name;
        std::function<void(PlistValue&)> damage;
        QByteArray expected;
    };
    const std::vector<Case> cases = {
        {"unknown action type",
         [&](PlistValue& k) {
             controlIn(k, 0, 0, 0)->find(key::Action)->insert(key::ActnType, PlistValue(999));
         },
         "keyset \"Clean\", layer 1, group 0, control 0: "},
        {"display action that is never restored",
         [&](PlistValue& k) {
             PlistValue action = PlistValue::makeDict();
             action.insert(key::ActnType, PlistValue(0x100401));
             k.find(key::Layers)
                 ->findAt(0)
                 ->find(key::Displays)
                 ->findAt(0)
                 ->findAt(2)
                 ->insert(key::Action, action);
         },
         "keyset \"Clean\", layer 1, group D0, display 2: "},
        {"unknown control type",
         [&](PlistValue& k) { controlIn(k, 2, 5, 3)->insert(key::Type, PlistValue(42)); },
         "keyset \"Clean\", layer 3, group 5, control 3: "},
        {"fewer controls than the surface has",
         [&](PlistValue& k) {
             PlistValue* groups = k.find(key::Layers)->findAt(1)->find(key::Groups);
             groups->set(13, truncated(groups->at(13), 12));
         },
         "keyset \"Clean\", layer 2, group 13, control 12: "},
        {"fewer groups than the surface has",
         [&](PlistValue& k) {
             PlistValue* layer = k.find(key::Layers)->findAt(3);
             layer->insert(key::Groups, truncated(layer->value(key::Groups), 20));
         },
         "keyset \"Clean\", layer 4, group 20: "},
        {"fewer display groups than the surface has",
         [&](PlistValue& k) {
             PlistValue* layer = k.find(key::Layers)->findAt(0);
             layer->insert(key::Displays, truncated(layer->value(key::Displays), 3));
         },
         "keyset \"Clean\", layer 1, group D3: "},
    };

    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PlistValue keyset = cleanKeyset();
        c.damage(keyset);
        writeTree(path("damaged.cvks"), keyset);
        const ToolRun run = runTool({QStringLiteral("check"), path("damaged.cvks")});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.out.isEmpty());
        const QList<QByteArray> lines = run.err.trimmed().split('\n');
        ASSERT_FALSE(lines.isEmpty());
        const QByteArray prefix = path("damaged.cvks").toUtf8() + ": " + c.expected;
        EXPECT_TRUE(lines.first().startsWith(prefix)) << lines.first().constData();
        for (const QByteArray& line : lines)
            EXPECT_TRUE(line.startsWith(path("damaged.cvks").toUtf8() + ": keyset \"Clean\""))
                << line.constData();
    }
}

TEST_F(KeysetToolTest, UnreadableFilesExitWithTwoAndSayWhy)
{
    writeBytes(path("garbage.plist"), bytesOf("\x00\x01\x02 not a property list"));
    writeBytes(path("truncated.bplist"), bytesOf("bplist00\xd1\x01\x02"));
    writeTree(path("array.plist"), PlistValue::makeArray());
    PlistValue unrelated = PlistValue::makeDict();
    unrelated.insert(QStringLiteral("CFBundleName"), PlistValue(QStringLiteral("Something")));
    writeTree(path("unrelated.plist"), unrelated);
    PlistValue oddStore = PlistValue::makeDict();
    oddStore.insert(key::ModelData, PlistValue(QStringLiteral("not a dict")));
    writeTree(path("oddstore.plist"), oddStore);
    QDir(dir.path()).mkdir(QStringLiteral("folder"));
    // A FIFO with no writer would block a plain open for ever; a link loop is no missing file.
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("fifo.plist")).constData(), 0600), 0);
    QFile::link(path("loop-a"), path("loop-b"));
    QFile::link(path("loop-b"), path("loop-a"));

    for (const char* name :
         {"missing.plist", "folder", "garbage.plist", "truncated.bplist", "array.plist",
          "unrelated.plist", "oddstore.plist", "fifo.plist", "loop-a"}) {
        SCOPED_TRACE(name);
        for (const QString& command : {QStringLiteral("describe"), QStringLiteral("check")}) {
            const ToolRun run = runTool({command, path(name)});
            EXPECT_EQ(run.exitCode, 2);
            EXPECT_TRUE(run.out.isEmpty());
            EXPECT_TRUE(
                run.err.startsWith("corvane-keyset: cannot read " + path(name).toUtf8() + ": "))
                << run.err.constData();
            EXPECT_EQ(run.err.count('\n'), 1);
        }
    }
    const auto reason = [&](const QString& file) {
        return runTool({QStringLiteral("check"), file}).err;
    };
    EXPECT_TRUE(reason(path("missing.plist")).endsWith(": No such file or directory\n"));
    EXPECT_TRUE(reason(path("folder")).endsWith(": is a folder, not a file\n"));
    EXPECT_TRUE(reason(path("fifo.plist")).endsWith(": not a regular file\n"));
    EXPECT_TRUE(reason(path("loop-a")).endsWith(": Too many levels of symbolic links\n"));
    // A file whose size the system reports as 0 is still read for what it holds.
    EXPECT_FALSE(reason(QStringLiteral("/proc/self/status")).contains("empty document"));

    // Nothing but a regular file is ever written over: the FIFO stays a FIFO.
    const ToolRun onto =
        runTool({QStringLiteral("convert"), sampleData("small.cvks"), path("fifo.plist")});
    EXPECT_EQ(onto.exitCode, 3);
    EXPECT_EQ(onto.err, "corvane-keyset: cannot write " + path("fifo.plist").toUtf8() +
                            ": not a regular file\n");
    EXPECT_FALSE(QFileInfo(path("fifo.plist")).isFile());
}

TEST_F(KeysetToolTest, CommandLine)
{
    struct Case
    {
        QStringList arguments;
        int exitCode;
    };
    const QString file = sampleData("small.cvks");
    const std::vector<Case> cases = {
        {{}, 64},
        {{QStringLiteral("frobnicate"), file}, 64},
        {{QStringLiteral("describe")}, 64},
        {{QStringLiteral("describe"), file, file}, 64},
        {{QStringLiteral("describe"), QStringLiteral("--bogus"), file}, 64},
        {{QStringLiteral("check"), QStringLiteral("--binary"), file}, 64},
        {{QStringLiteral("convert"), file}, 64},
        {{QStringLiteral("convert"), file, path("x"), QStringLiteral("--xml"),
          QStringLiteral("--binary")},
         64},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(qPrintable(c.arguments.join(u' ')));
        const ToolRun run = runTool(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(run.err.contains("--help")) << run.err.constData();
    }
    EXPECT_FALSE(QFile::exists(path("x")));

    // After "--" nothing is an option.
    ToolRun run = runTool({QStringLiteral("describe"), QStringLiteral("--"), file});
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    run = runTool({QStringLiteral("check"), QStringLiteral("--"), QStringLiteral("--help")});
    EXPECT_EQ(run.exitCode, 2);

    run = runTool({QStringLiteral("--help")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.out.contains("Exit status"));
    EXPECT_TRUE(run.out.contains("64"));
    run = runTool({QStringLiteral("--version")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.out.startsWith("corvane-keyset "));
}

TEST(KeysetToolEscaping, FieldsStayOnOneLine)
{
    // Only tabs and newlines are escaped: a backslash or a carriage return is the text's own.
    EXPECT_EQ(KeysetTool::escapeField(QStringLiteral("a\tb\nc\\d\re")),
              QStringLiteral("a\\tb\\nc\\d\re"));
    EXPECT_EQ(KeysetTool::escapeField(QStringLiteral("Fader 1")), QStringLiteral("Fader 1"));
    EXPECT_TRUE(KeysetTool::escapeField(QString()).isEmpty());
}

// Every configuration we ship reads clean and describes.
TEST(ShippedSamples, ReadCleanThroughTheModel)
{
    const QDir samples(QStringLiteral(CORVANE_SOURCE_DIR "/resources/samples"));
    const QStringList files = samples.entryList({QStringLiteral("*.plist")}, QDir::Files);
    ASSERT_FALSE(files.isEmpty());
    for (const QString& name : files) {
        SCOPED_TRACE(qPrintable(name));
        const QString file = samples.filePath(name);
        ToolRun run = runTool({QStringLiteral("check"), file});
        EXPECT_EQ(run.exitCode, 0) << run.err.constData();
        run = runTool({QStringLiteral("describe"), file});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_GT(run.out.count('\n'), 4 * (821 + 257));
    }
}

} // namespace
