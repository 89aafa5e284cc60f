// Every XML document we write is one the standard property-list readers accept: a stored
// configuration, a keyset file and a message body, holding a keyset without a signature and
// texts with every character XML 1.0 cannot carry.
#include "ModelFixture.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace key = corvane::key;

using corvane::PlistCodec;
using corvane::PlistValue;

namespace {

class StandardReadersTest : public ModelTest
{
protected:
    // Runs a reader on the file; the error text when it refuses it, else empty.
    static QString refusal(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        if (!process.waitForFinished(30000))
            return program + QStringLiteral(" did not finish");
        const QString output = QString::fromLocal8Bit(process.readAll());
        // plistutil reports a document it cannot read on its output but still exits with 0.
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0 ||
            output.contains(QLatin1String("ERROR")))
            return program + QStringLiteral(": ") + output;
        return QString();
    }
};

TEST_F(StandardReadersTest, EveryDocumentWeWriteIsAcceptedByXmllintPlistutilAndPlistlib)
{
    const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
    const QString plistutil = QStandardPaths::findExecutable(QStringLiteral("plistutil"));
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    ASSERT_FALSE(xmllint.isEmpty() || plistutil.isEmpty() || python.isEmpty())
        << "scripts/install-deps.sh installs libxml2-utils, libplist-utils and python3";

    CorvaneModelData model;
    model.addKeysetWithName(QStringLiteral("No signature"), 0, QStringLiteral("org.example.x"));
    TVKKeyset* keyset = model.keysetAtIndex(1);
    const QString awkward =
        QStringLiteral("nul%1 bell%2 cr%3 esc%4 lone%5%6 non%7%8 fine\t\n\u00e9")
            .arg(QChar(0), QChar(7), QChar(u'\r'), QChar(0x1b), QChar(0xD800), QChar(0xDC00),
                 QChar(0xFFFE), QChar(0xFFFF));
    keyset->setName(awkward);
    keyset->controlForLayer(0, 13, 0)->setUserName(awkward);
    model.setHasOwnerKeyset(true, std::nullopt, 0);

    QTemporaryDir dir;
    // The preference store with the configuration.
    corvane::TVKUserDefaults store(dir.filePath(QStringLiteral("store.plist")));
    PlistValue configuration = PlistValue::makeDict();
    model.writeTo(configuration);
    store.setObject(key::ModelData, configuration);
    ASSERT_TRUE(store.synchronize());
    // A keyset file.
    const QString keysetFile = dir.filePath(QStringLiteral("keyset.CvKs"));
    ASSERT_TRUE(PlistCodec::writeFile(keysetFile, archiveOf(*keyset)));
    // A keyset-added message body, with its index beside the keyset.
    PlistValue body = archiveOf(*keyset);
    body.insert(corvane::info::KeysetIndex, PlistValue(1));
    const QString bodyFile = dir.filePath(QStringLiteral("body.plist"));
    ASSERT_TRUE(PlistCodec::writeFile(bodyFile, body));

    for (const QString& file : {store.path(), keysetFile, bodyFile}) {
        SCOPED_TRACE(file.toStdString());
        EXPECT_EQ(refusal(xmllint, {QStringLiteral("--noout"), file}), QString());
        EXPECT_EQ(refusal(plistutil, {QStringLiteral("-i"), file, QStringLiteral("-o"),
                                      dir.filePath(QStringLiteral("out.bplist"))}),
                  QString());
        EXPECT_EQ(refusal(python, {QStringLiteral("-c"),
                                   QStringLiteral("import plistlib, sys; "
                                                  "plistlib.load(open(sys.argv[1], 'rb'))"),
                                   file}),
                  QString());
        // And we read it back ourselves, the signature still none.
        const corvane::PlistReadResult read = PlistCodec::readFile(file);
        ASSERT_TRUE(read.ok) << read.error.toString().toStdString();
    }
    const CorvaneModelData reread(store.objectForKey(key::ModelData));
    EXPECT_EQ(reread.keysetAtIndex(1)->signature(), 0u);
    EXPECT_EQ(reread.ownerKeysetSignature(), 0u);
}

} // namespace
