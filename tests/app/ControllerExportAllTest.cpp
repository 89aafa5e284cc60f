// File → Export All Keysets…: every keyset but keyset 0 as a keyset file in the folder the user
// picks, each file importing back as the very keyset, files in the way replaced only when the
// user says so.
#include "ControllerFixture.h"
#include "QtPrinters.h"
#include "TestConfig.h"
#include "core/FourCharCode.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/KeysetFiles.h"
#include "model/TVKKeyset.h"

#include <QAction>
#include <QDir>
#include <QFile>

using namespace corvane;
using namespace corvane::test;

namespace {

// Names a file system or a second keyset of the same name would trip over, and the files they
// are written to, in list order after the sample's keysets.
const std::vector<std::pair<QString, QString>> kAwkwardNames = {
    {QStringLiteral("Ardour"), QStringLiteral("Ardour 2.CvKs")}, // the sample has one
    {QStringLiteral("ardour"), QStringLiteral("ardour 3.CvKs")}, // the same on a stick
    {QStringLiteral("In/Out: Mix?"), QStringLiteral("In_Out_ Mix_.CvKs")},
    {QStringLiteral(".hidden"), QStringLiteral("_hidden.CvKs")},
    {QStringLiteral(".."), QStringLiteral("__.CvKs")},
    {QString(), QStringLiteral("Keyset.CvKs")},
    {QStringLiteral("  Tabbed\tname  "), QStringLiteral("Tabbed_name.CvKs")},
    {QStringLiteral("Résumé «Live»"), QStringLiteral("Résumé «Live».CvKs")},
    {QStringLiteral("Trailing dot."), QStringLiteral("Trailing dot.CvKs")},
};

class ExportAllTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        // The sample's keysets carry every kind of assignment; the awkward ones follow.
        const PlistReadResult sample = PlistCodec::readFile(
            QStringLiteral(CORVANE_SOURCE_DIR "/resources/samples/Studio.plist"));
        ASSERT_TRUE(sample.ok);
        CorvaneModelData model(sample.value);
        int signature = 0;
        for (const auto& [name, file] : kAwkwardNames)
            model.addKeysetWithName(name, fourCC("Aw00") + FourCharCode(++signature));
        storeConfiguration(model);
        ASSERT_TRUE(startService());
        startController();
        folder = home.path() + QStringLiteral("/Exported");
        ASSERT_TRUE(QDir().mkpath(folder));
    }

    TVKModelData& model() { return *controller->modelData(); }

    QString path(const QString& file) const { return folder + u'/' + file; }

    // The file names expected, in keyset order: the sample's by their names, then the awkward.
    QStringList expectedFiles()
    {
        QStringList files;
        const int sampleKeysets = model().numberOfKeysets() - int(kAwkwardNames.size());
        for (int k = 1; k < sampleKeysets; ++k)
            files << model().keysetAtIndex(k)->name() + QStringLiteral(".CvKs");
        for (const auto& [name, file] : kAwkwardNames)
            files << file;
        return files;
    }

    static QByteArray contents(const QString& file)
    {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    static void put(const QString& file, const QByteArray& bytes)
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

    QString folder;
};

} // namespace

TEST_F(ExportAllTest, EveryKeysetButTheFirstIsWrittenAndImportsBackAsItWas)
{
    const QStringList files = expectedFiles();
    ASSERT_EQ(files.size(), model().numberOfKeysets() - 1);
    EXPECT_TRUE(controller->menuItem(TVKMenuCommand::HandleExportAllKeysets) != nullptr);
    controller->validateMenuItems();
    EXPECT_TRUE(controller->menuItem(TVKMenuCommand::HandleExportAllKeysets)->isEnabled());

    views.folderAnswers.push_back(folder);
    controller->handleExportAllKeysets();
    EXPECT_TRUE(views.alerts.empty());
    QStringList written = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    QStringList wanted = files;
    written.sort();
    wanted.sort();
    EXPECT_EQ(written, wanted);

    // Each file, imported into a fresh configuration, is the keyset it was written from.
    for (int k = 1; k < model().numberOfKeysets(); ++k) {
        const QString file = path(files.at(k - 1));
        SCOPED_TRACE(file.toStdString());
        const PlistReadResult read = PlistCodec::readFile(file);
        ASSERT_TRUE(read.ok) << read.error.toString().toStdString();
        CorvaneModelData fresh;
        std::unique_ptr<TVKKeyset> imported = fresh.createKeysetFromArchive(read.value);
        ASSERT_NE(imported, nullptr);
        PlistValue back = PlistValue::makeDict(6);
        imported->writeTo(back);
        PlistValue original = PlistValue::makeDict(6);
        model().keysetAtIndex(k)->writeTo(original);
        EXPECT_TRUE(back == original);
        EXPECT_EQ(imported->name(), model().keysetAtIndex(k)->name());
    }

    // The progress went through every keyset, and ended full.
    const int total = int(files.size());
    ASSERT_EQ(views.progressReports.size(), size_t(total + 1));
    for (int i = 0; i <= total; ++i)
        EXPECT_EQ(views.progressReports[size_t(i)], std::make_pair(i, total));
}

TEST_F(ExportAllTest, AFileInTheWayIsReplacedOnlyWhenTheUserSaysSo)
{
    const QStringList files = expectedFiles();
    ASSERT_GE(files.size(), 6);
    const QByteArray mine("not a keyset, and not to be lost");
    // Skip, Cancel, Replace, Replace All are the alert's buttons, in that order.
    for (const int f : {0, 1, 2, 3, 4})
        put(path(files.at(f)), mine);

    // Skip the first, replace the second, then every other without asking.
    views.folderAnswers.push_back(folder);
    views.alertAnswers = {0, 2, 3};
    controller->handleExportAllKeysets();
    ASSERT_EQ(views.alerts.size(), 3u);
    const TVKAlert& clash = views.alerts.front();
    EXPECT_EQ(clash.message, QStringLiteral("“%1” Already Exists").arg(files.at(0)));
    EXPECT_TRUE(clash.informativeText.contains(model().keysetAtIndex(1)->name()));
    EXPECT_EQ(clash.buttons,
              (QStringList{QStringLiteral("Skip"), QStringLiteral("Cancel"),
                           QStringLiteral("Replace"), QStringLiteral("Replace All")}));
    EXPECT_EQ(contents(path(files.at(0))), mine);
    for (qsizetype f = 1; f < files.size(); ++f) {
        const PlistReadResult read = PlistCodec::readFile(path(files.at(f)));
        EXPECT_TRUE(read.ok && read.value.value(key::Name).toString() ==
                                   model().keysetAtIndex(int(f) + 1)->name())
            << files.at(f).toStdString();
    }

    // Every question comes before anything is written: Cancel leaves the folder as it was.
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    put(path(files.at(2)), mine);
    views.alerts.clear();
    views.progressReports.clear();
    views.folderAnswers.push_back(folder);
    views.alertAnswers = {1};
    controller->handleExportAllKeysets();
    EXPECT_EQ(views.alerts.size(), 1u);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList{files.at(2)});
    EXPECT_EQ(contents(path(files.at(2))), mine);
    EXPECT_TRUE(views.progressReports.empty()) << "the progress ran before the questions";

    // With no answer given the alert's default is taken: Skip. The progress counts only the
    // files written.
    views.alerts.clear();
    views.folderAnswers.push_back(folder);
    controller->handleExportAllKeysets();
    EXPECT_EQ(views.alerts.size(), 1u);
    ASSERT_FALSE(views.progressReports.empty());
    EXPECT_EQ(views.progressReports.back(),
              std::make_pair(int(files.size()) - 1, int(files.size()) - 1));
    EXPECT_EQ(contents(path(files.at(2))), mine);
    EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), files.size());
}

TEST_F(ExportAllTest, CancellingOrFailingLeavesWhatWasWrittenWhole)
{
    const QStringList files = expectedFiles();

    // No folder chosen: nothing happens.
    controller->handleExportAllKeysets();
    EXPECT_EQ(views.folderTitles.size(), 1u);
    EXPECT_TRUE(QDir(folder).isEmpty());
    EXPECT_TRUE(views.progressReports.empty());

    // Cancelled in the progress after two keysets: two whole files.
    views.cancelProgressAt = 2;
    views.folderAnswers.push_back(folder);
    controller->handleExportAllKeysets();
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), (QStringList{files.at(0), files.at(1)}));
    for (const QString& file : QDir(folder).entryList(QDir::Files))
        EXPECT_TRUE(PlistCodec::readFile(path(file)).ok);
    views.cancelProgressAt = -1;

    // A folder that cannot take files: one alert naming the file and why, then it stops.
    const QString notAFolder = home.path() + QStringLiteral("/plain-file");
    put(notAFolder, "x");
    views.folderAnswers.push_back(notAFolder);
    controller->handleExportAllKeysets();
    ASSERT_EQ(views.alerts.size(), 1u);
    EXPECT_EQ(views.alerts[0].message, QStringLiteral("The Keysets Could Not Be Exported"));
    EXPECT_TRUE(views.alerts[0].informativeText.contains(files.at(0)));
    EXPECT_EQ(contents(notAFolder), QByteArray("x"));
}

TEST_F(ExportAllTest, WithTheFirstKeysetAloneThereIsNothingToExport)
{
    for (int tries = 0; tries < 100 && model().numberOfKeysets() > 1; ++tries) {
        controller->setSelectedKeyset(model().numberOfKeysets() - 1);
        controller->setKeysetLockState(false);
        views.alertAnswers = {0};
        controller->handleDeleteKeyset();
    }
    ASSERT_EQ(model().numberOfKeysets(), 1);
    controller->validateMenuItems();
    EXPECT_FALSE(controller->menuItem(TVKMenuCommand::HandleExportAllKeysets)->isEnabled());
    views.folderAnswers.push_back(folder);
    controller->handleExportAllKeysets();
    EXPECT_TRUE(views.folderTitles.empty()) << "a folder was asked for with nothing to export";
    EXPECT_TRUE(QDir(folder).isEmpty());
}

// File names stay within what file systems take, whatever the keyset's name.
TEST(KeysetFileNames, NamesAreMadeSafeForTheFileSystem)
{
    EXPECT_EQ(safeFileName(QStringLiteral("Ardour")), QStringLiteral("Ardour"));
    EXPECT_EQ(safeFileName(QStringLiteral("a\\b|c*d<e>f\"g")), QStringLiteral("a_b_c_d_e_f_g"));
    EXPECT_EQ(safeFileName(QStringLiteral("...")), QStringLiteral("___"));
    EXPECT_EQ(safeFileName(QStringLiteral("   ")), QStringLiteral("Keyset"));
    EXPECT_EQ(safeFileName(QStringLiteral("Line\nbreak")), QStringLiteral("Line_break"));
    // Long names are cut at a whole character, leaving room for a counter and the extension.
    const QString longName = QString(300, QChar(0x00E9)); // two bytes each
    const QString cut = safeFileName(longName);
    EXPECT_LE(cut.toUtf8().size(), 200);
    EXPECT_GE(cut.toUtf8().size(), 199);
    EXPECT_EQ(cut, QString(cut.size(), QChar(0x00E9)));
    const QString emoji = QString(150, QChar(0xD83C)).replace(QChar(0xD83C), QStringLiteral("🎹"));
    const QString cutEmoji = safeFileName(emoji);
    EXPECT_FALSE(cutEmoji.back().isHighSurrogate());
    EXPECT_LE(cutEmoji.toUtf8().size(), 200);
}
