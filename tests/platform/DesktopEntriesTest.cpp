// Installed applications read from desktop entries written into temporary XDG folders, the way
// desktop shells read them.
#include "platform/DesktopEntries.h"

#include "platform/InstallPlatform.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using corvane::DesktopApplication;
namespace DesktopEntries = corvane::DesktopEntries;

namespace {

class DesktopEntriesTest : public ::testing::Test
{
protected:
    void entry(const QString& folder, const QString& relative, const QByteArray& text)
    {
        const QString path = dir.filePath(folder + QStringLiteral("/applications/") + relative);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QStringList folders() const
    {
        return {dir.filePath(QStringLiteral("home/applications")),
                dir.filePath(QStringLiteral("system/applications"))};
    }
    static QStringList ids(const std::vector<DesktopApplication>& apps)
    {
        QStringList out;
        for (const DesktopApplication& app : apps)
            out.append(app.id);
        return out;
    }

    QTemporaryDir dir;
};

TEST_F(DesktopEntriesTest, ApplicationsAreReadOncePerIdWithTheUsersEntriesFirst)
{
    entry(QStringLiteral("system"), QStringLiteral("org.kde.kdenlive.desktop"),
          "# a comment\n[Desktop Entry]\nType=Application\nName=Kdenlive\nName[de]=Kdenlive DE\n"
          "Name[de_AT]=Kdenlive AT\nIcon=kdenlive\nExec=kdenlive %F\n"
          "StartupWMClass=kdenlive\n\n[Desktop Action New]\nName=Not this one\n");
    entry(QStringLiteral("system"), QStringLiteral("audacity.desktop"),
          "[Desktop Entry]\nType=Application\nName=Audacity\\sEditor\nExec=audacity\n");
    // A subfolder is part of the id; a user's hidden copy hides the system's entry.
    entry(QStringLiteral("system"), QStringLiteral("vendor/mixer.desktop"),
          "[Desktop Entry]\nType=Application\nName=Mixer\nExec=mixer\n");
    entry(QStringLiteral("system"), QStringLiteral("gone.desktop"),
          "[Desktop Entry]\nType=Application\nName=Gone\n");
    entry(QStringLiteral("home"), QStringLiteral("gone.desktop"),
          "[Desktop Entry]\nType=Application\nName=Gone\nHidden=true\n");
    // The user's own copy of an entry wins over the system's.
    entry(QStringLiteral("home"), QStringLiteral("audacity.desktop"),
          "[Desktop Entry]\nType=Application\nName=My Audacity\nExec=audacity --mine\n");
    // Not offered: not to be displayed, not an application, no entry group, no name.
    entry(QStringLiteral("system"), QStringLiteral("helper.desktop"),
          "[Desktop Entry]\nType=Application\nName=Helper\nNoDisplay=true\n");
    entry(QStringLiteral("system"), QStringLiteral("link.desktop"),
          "[Desktop Entry]\nType=Link\nName=Web\nURL=https://example.org\n");
    entry(QStringLiteral("system"), QStringLiteral("odd.desktop"),
          "[Other Group]\nType=Application\nName=Odd\n");
    entry(QStringLiteral("system"), QStringLiteral("nameless.desktop"),
          "[Desktop Entry]\nType=Application\nExec=x\n");
    entry(QStringLiteral("system"), QStringLiteral("notes.txt"),
          "[Desktop Entry]\nType=Application\nName=Notes\n");

    const auto apps =
        DesktopEntries::installedApplications(folders(), QStringLiteral("de_AT.UTF-8"));
    EXPECT_EQ(ids(apps), (QStringList{QStringLiteral("org.kde.kdenlive"),
                                      QStringLiteral("vendor-mixer"), QStringLiteral("audacity")}));
    EXPECT_EQ(apps[0].name, QStringLiteral("Kdenlive AT"));
    EXPECT_EQ(apps[0].iconName, QStringLiteral("kdenlive"));
    EXPECT_EQ(apps[0].startupWMClass, QStringLiteral("kdenlive"));
    EXPECT_EQ(apps[2].name, QStringLiteral("My Audacity"));
    EXPECT_EQ(apps[2].exec, QStringLiteral("audacity --mine"));

    // The language falls back from country to language to none; entries not to be displayed
    // are still known when asked for.
    const auto german = DesktopEntries::installedApplications(folders(), QStringLiteral("de_CH"));
    EXPECT_EQ(german.front().name, QStringLiteral("Kdenlive DE"));
    const auto plain = DesktopEntries::installedApplications(folders(), QStringLiteral("C"), true);
    EXPECT_EQ(ids(plain),
              (QStringList{QStringLiteral("helper"), QStringLiteral("org.kde.kdenlive"),
                           QStringLiteral("vendor-mixer"), QStringLiteral("audacity")}));
    EXPECT_EQ(plain[1].name, QStringLiteral("Kdenlive"));
    const auto system = DesktopEntries::readEntry(
        dir.filePath(QStringLiteral("system/applications/audacity.desktop")),
        QStringLiteral("audacity"), QString());
    ASSERT_TRUE(system);
    EXPECT_EQ(system->name, QStringLiteral("Audacity Editor"));
}

TEST_F(DesktopEntriesTest, WindowsAreMatchedAsDesktopShellsMatchThem)
{
    std::vector<DesktopApplication> apps(3);
    apps[0].id = QStringLiteral("org.kde.kdenlive");
    apps[1].id = QStringLiteral("io.example.Editor");
    apps[1].startupWMClass = QStringLiteral("ed-main");
    apps[2].id = QStringLiteral("audacity");
    using DesktopEntries::matchWindowClass;
    EXPECT_EQ(matchWindowClass(apps, QStringLiteral("ed-main"), QStringLiteral("Whatever")),
              &apps[1]);
    EXPECT_EQ(matchWindowClass(apps, QStringLiteral("x"), QStringLiteral("Audacity")), &apps[2]);
    EXPECT_EQ(matchWindowClass(apps, QStringLiteral("kdenlive"), QStringLiteral("kdenlive")),
              &apps[0]);
    EXPECT_EQ(matchWindowClass(apps, QStringLiteral("xterm"), QStringLiteral("XTerm")), nullptr);
    EXPECT_EQ(matchWindowClass(apps, QString(), QString()), nullptr);
}

TEST_F(DesktopEntriesTest, FoldersFollowTheXdgVariables)
{
    const QByteArray home = qgetenv("XDG_DATA_HOME");
    const QByteArray dirs = qgetenv("XDG_DATA_DIRS");
    qputenv("XDG_DATA_HOME", "/h/share");
    qputenv("XDG_DATA_DIRS", "/a:relative:/b/");
    const QStringList folders = DesktopEntries::applicationFolders();
    ASSERT_GE(folders.size(), 3);
    EXPECT_EQ(folders.mid(0, 3),
              (QStringList{QStringLiteral("/h/share/applications"),
                           QStringLiteral("/a/applications"), QStringLiteral("/b/applications")}));
    EXPECT_TRUE(folders.contains(QStringLiteral("/var/lib/flatpak/exports/share/applications")));
    qputenv("XDG_DATA_HOME", home);
    qputenv("XDG_DATA_DIRS", dirs);
}

} // namespace

TEST(DesktopEntryExec, ArgumentsAreUnquotedAndFieldCodesDropped)
{
    const std::vector<std::pair<QString, QStringList>> cases = {
        {QStringLiteral("\"/home/u/My Apps/start\""), {QStringLiteral("/home/u/My Apps/start")}},
        {QStringLiteral("/usr/bin/svc --background  --quiet"),
         {QStringLiteral("/usr/bin/svc"), QStringLiteral("--background"),
          QStringLiteral("--quiet")}},
        {QStringLiteral("\"/a \\\"b\\\"/c\\\\d\" %U"), {QStringLiteral("/a \"b\"/c\\d")}},
        {QStringLiteral("svc --level=100%% %f"),
         {QStringLiteral("svc"), QStringLiteral("--level=100%")}},
        {QStringLiteral("   "), {}},
        {QString(), {}},
    };
    for (const auto& [exec, arguments] : cases)
        EXPECT_EQ(corvane::InstallPlatform::execArguments(exec), arguments) << exec.toStdString();
}
