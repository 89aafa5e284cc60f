#include "ConfigGenerator.h"
#include "QtPrinters.h"
#include "SheetTestSupport.h"
#include "core/PlistCodec.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "surface/Corvane_Constant_Server.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using corvane::PlistValue;

struct ToolRun
{
    int exitCode = -1;
    QString err;
};

class SheetCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        TVKKeyset::resetTargetIDs();
        // A configuration of three generated keysets, and one of them alone as a keyset file.
        corvane::ConfigGenerator generator;
        auto model = generator.generateConfiguration(3);
        model->keysetAtIndex(1)->setName(QStringLiteral("2"));
        PlistValue configuration = PlistValue::makeDict();
        model->writeTo(configuration);
        ASSERT_TRUE(corvane::PlistCodec::writeFile(path(u"studio.plist"_s), configuration));
        PlistValue keyset = PlistValue::makeDict(6);
        model->keysetAtIndex(2)->writeTo(keyset);
        ASSERT_TRUE(corvane::PlistCodec::writeFile(path(u"one.CvKs"_s), keyset));
        for (int k = 0; k < model->numberOfKeysets(); ++k)
            names << model->keysetAtIndex(k)->name();
    }

    QString path(const QString& name) const { return dir.filePath(name); }

    ToolRun run(const QStringList& arguments)
    {
        QProcess process;
        process.start(QStringLiteral(CORVANE_KEYSET_TOOL), arguments);
        EXPECT_TRUE(process.waitForFinished(120000)) << "the tool did not finish";
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
    }

    corvane::test::PdfPages pdf(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? corvane::test::pdfPages(file.readAll())
                                              : corvane::test::PdfPages();
    }

    Corvane_Constant_Server constants;
    QTemporaryDir dir;
    QStringList names;
};

TEST_F(SheetCommandTest, WritesTheSheetOfTheKeysetNamedInThePageSizeAsked)
{
    struct Case
    {
        QStringList arguments;
        QSizeF points;
    } cases[] = {
        {{u"one.CvKs"_s}, {841.89, 595.28}},
        {{u"one.CvKs"_s, u"--page"_s, u"letter"_s}, {792, 612}},
        {{u"studio.plist"_s, u"--keyset"_s, u"3"_s, u"--page=A4"_s}, {841.89, 595.28}},
        // A name that reads as a number is the name first.
        {{u"studio.plist"_s, u"--keyset"_s, u"2"_s}, {841.89, 595.28}},
        {{u"--keyset=1"_s, u"studio.plist"_s, u"--page"_s, u"Letter"_s}, {792, 612}},
    };
    for (const Case& c : cases) {
        QStringList arguments{QStringLiteral("sheet")};
        for (const QString& a : c.arguments)
            arguments << (a.contains(u'.') && !a.startsWith(u'-') ? path(a) : a);
        arguments << QStringLiteral("-o") << path(QStringLiteral("out.pdf"));
        QFile::remove(path(QStringLiteral("out.pdf")));
        const ToolRun result = run(arguments);
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        ASSERT_EQ(result.exitCode, 0) << qPrintable(result.err);
        EXPECT_FALSE(result.err.contains(u"corvane-keyset"_s)) << qPrintable(result.err);
        const corvane::test::PdfPages pages = pdf(QStringLiteral("out.pdf"));
        EXPECT_GE(pages.count, 8);
        ASSERT_EQ(int(pages.sizes.size()), pages.count);
        EXPECT_NEAR(pages.sizes.front().width(), c.points.width(), 1.0);
        EXPECT_NEAR(pages.sizes.front().height(), c.points.height(), 1.0);
    }
}

TEST_F(SheetCommandTest, BadInputIsRefusedWithItsReasonAndLeavesTheOutputAlone)
{
    QFile precious(path(QStringLiteral("precious.pdf")));
    ASSERT_TRUE(precious.open(QIODevice::WriteOnly));
    precious.write("kept");
    precious.close();
    QFile broken(path(QStringLiteral("broken.plist")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("<?xml version=\"1.0\"?><plist><dict><key>");
    broken.close();

    struct Case
    {
        QStringList arguments;
        int exitCode;
        QStringList said;
    } cases[] = {
        {{u"missing.plist"_s}, 2, {u"cannot read"_s, u"missing.plist"_s}},
        {{u"broken.plist"_s}, 2, {u"cannot read"_s, u"broken.plist"_s}},
        {{u"studio.plist"_s, u"--keyset"_s, u"Nowhere"_s},
         4,
         {u"no keyset \"Nowhere\""_s, names.at(0), names.at(2)}},
        {{u"studio.plist"_s, u"--keyset"_s, u"9"_s}, 4, {u"no keyset \"9\""_s}},
        {{u"studio.plist"_s}, 4, {u"holds 3 keysets"_s, u"--keyset"_s, names.at(0), names.at(2)}},
        {{u"one.CvKs"_s, u"--page"_s, u"a3"_s}, 64, {u"unknown page size \"a3\""_s}},
        {{u"one.CvKs"_s, u"--keyset"_s}, 64, {u"--keyset needs a value"_s}},
        {{u"one.CvKs"_s, u"--colour"_s}, 64, {u"unknown option \"--colour\""_s}},
        {{u"one.CvKs"_s, u"studio.plist"_s}, 64, {u"usage:"_s}},
    };
    for (const Case& c : cases) {
        QStringList arguments{QStringLiteral("sheet")};
        for (const QString& a : c.arguments)
            arguments << (a.contains(u'.') && !a.startsWith(u'-') ? path(a) : a);
        arguments << QStringLiteral("-o") << path(QStringLiteral("precious.pdf"));
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        const ToolRun result = run(arguments);
        EXPECT_EQ(result.exitCode, c.exitCode) << qPrintable(result.err);
        for (const QString& words : c.said)
            EXPECT_TRUE(result.err.contains(words)) << qPrintable(result.err);
        QFile file(path(QStringLiteral("precious.pdf")));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), QByteArray("kept"));
    }

    // Without -o, and into a folder that is not there.
    ToolRun result = run({QStringLiteral("sheet"), path(QStringLiteral("one.CvKs"))});
    EXPECT_EQ(result.exitCode, 64);
    EXPECT_TRUE(result.err.contains(QStringLiteral("usage:"))) << qPrintable(result.err);
    result = run({QStringLiteral("sheet"), path(QStringLiteral("one.CvKs")), QStringLiteral("-o"),
                  path(QStringLiteral("no/such/folder.pdf"))});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_TRUE(result.err.contains(QStringLiteral("cannot write"))) << qPrintable(result.err);
}

} // namespace
