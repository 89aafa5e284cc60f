// The preference store over its file: what it keeps, and that a file it could not read survives.
#include "core/MoveAside.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace key = corvane::key;

using corvane::PlistValue;
using corvane::TVKUserDefaults;

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(UserDefaults, StoresAndReadsBackEveryKindOfValueInItsOwnFolder)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Tavrik/com.tavrik.CorvaneRS.plist"));
    TVKUserDefaults store(path);
    EXPECT_EQ(store.state(), TVKUserDefaults::State::Missing);
    EXPECT_TRUE(store.objectForKey(key::IPAdr).isNull());

    PlistValue model = PlistValue::makeDict();
    model.insert(key::Keysets, PlistValue::makeArray());
    store.setObject(key::ModelData, model);
    store.setObject(key::IPAdr, PlistValue(QStringLiteral("10.0.0.7")));
    store.setObject(key::EnetPrt, PlistValue(quint64(4000)));
    store.setObject(QStringLiteral("TVKGone"), PlistValue(true));
    store.removeObjectForKey(u"TVKGone");
    QString error;
    ASSERT_TRUE(store.synchronize(&error)) << error.toStdString();

    const TVKUserDefaults again(path);
    EXPECT_EQ(again.state(), TVKUserDefaults::State::Loaded);
    EXPECT_EQ(again.objectForKey(key::ModelData), model);
    EXPECT_EQ(again.objectForKey(key::IPAdr).toString(), QStringLiteral("10.0.0.7"));
    EXPECT_EQ(again.objectForKey(key::EnetPrt).toUnsigned(0), 4000u);
    EXPECT_FALSE(again.dictionary().contains(u"TVKGone"));

    // Unsynchronized changes are dropped by reading the file again.
    store.setObject(key::IPAdr, PlistValue(QStringLiteral("1.2.3.4")));
    EXPECT_EQ(store.reload(), TVKUserDefaults::State::Loaded);
    EXPECT_EQ(store.objectForKey(key::IPAdr).toString(), QStringLiteral("10.0.0.7"));
}

TEST(UserDefaults, AFileThatCannotBeReadIsNeverOverwrittenOnlyMovedAside)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("store.plist"));
    const QByteArray damaged[] = {
        QByteArray("<?xml version=\"1.0\"?><plist><dict><key>TVKModelData</key><dict>"),
        QByteArray("<?xml version=\"1.0\"?><plist><array/></plist>"),
        QByteArray("bplist00\xff\xff", 10),
    };
    for (const QByteArray& bytes : damaged) {
        put(path, bytes);
        TVKUserDefaults store(path);
        EXPECT_EQ(store.state(), TVKUserDefaults::State::Unreadable) << bytes.constData();
        EXPECT_TRUE(store.error().startsWith(path)) << store.error().toStdString();

        store.setObject(key::IPAdr, PlistValue(QStringLiteral("10.0.0.7")));
        QString error;
        EXPECT_FALSE(store.synchronize(&error));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_EQ(contents(path), bytes);

        const QString aside = store.moveAside(&error);
        ASSERT_FALSE(aside.isEmpty()) << error.toStdString();
        EXPECT_TRUE(aside.startsWith(path + QStringLiteral(".unreadable-")));
        EXPECT_EQ(contents(aside), bytes);
        EXPECT_FALSE(QFile::exists(path));
        EXPECT_EQ(store.state(), TVKUserDefaults::State::Missing);
        EXPECT_TRUE(store.synchronize(&error)) << error.toStdString();
        EXPECT_EQ(TVKUserDefaults(path).state(), TVKUserDefaults::State::Loaded);
        EXPECT_TRUE(store.moveAside().isNull()) << "a readable store stays where it is";
    }
    // Three files moved aside within the same second keep names of their own.
    EXPECT_EQ(QDir(dir.path()).entryList({QStringLiteral("store.plist.unreadable-*")}).size(), 3);
}

TEST(UserDefaults, MovingAsideNeverReplacesAFileAlreadyThere)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("journal"));
    const QDateTime when(QDate(2026, 3, 4), QTime(5, 6, 7));
    const QString first = path + QStringLiteral(".unreadable-20260304-050607");
    // Taken: a file from an earlier damage in the same second, and a link pointing nowhere.
    put(first, "earlier");
    ASSERT_TRUE(QFile::link(dir.filePath(QStringLiteral("gone")), first + QStringLiteral("-2")));

    put(path, "damaged");
    QString error;
    const QString aside = corvane::moveFileAside(path, &error, when);
    EXPECT_EQ(aside, first + QStringLiteral("-3")) << error.toStdString();
    EXPECT_EQ(contents(aside), "damaged");
    EXPECT_EQ(contents(first), "earlier");
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(QFileInfo(first + QStringLiteral("-2")).isSymLink());

    put(path, "again");
    EXPECT_EQ(corvane::moveFileAside(path, nullptr, when), first + QStringLiteral("-4"));
    EXPECT_EQ(contents(first + QStringLiteral("-4")), "again");

    // What cannot be moved says so and leaves everything where it was.
    EXPECT_TRUE(corvane::moveFileAside(path, &error, when).isNull());
    EXPECT_TRUE(error.startsWith(path)) << error.toStdString();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::System).size(), 4);
}

TEST(UserDefaults, DefaultPathFollowsTheDesktopsConfigurationFolder)
{
    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", "/tmp/cfg");
    EXPECT_EQ(TVKUserDefaults::defaultPath(),
              QStringLiteral("/tmp/cfg/Tavrik/com.tavrik.CorvaneRS.plist"));
    qputenv("XDG_CONFIG_HOME", "relative/cfg");
    EXPECT_EQ(TVKUserDefaults::defaultPath(),
              QDir::homePath() + QStringLiteral("/.config/Tavrik/com.tavrik.CorvaneRS.plist"));
    qputenv("XDG_CONFIG_HOME", saved);
}
