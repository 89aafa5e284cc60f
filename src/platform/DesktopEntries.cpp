#include "platform/DesktopEntries.h"

#include "core/XdgFolders.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <algorithm>

namespace corvane::DesktopEntries {

namespace {

// An entry larger than this is no desktop entry; reading stops rather than filling memory.
constexpr qint64 kMaxEntryBytes = 1 << 20;

QStringList dataDirs()
{
    QStringList dirs;
    const QString list = qEnvironmentVariable("XDG_DATA_DIRS");
    for (const QString& dir : list.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        if (!QDir::isRelativePath(dir))
            dirs.append(dir);
    }
    if (dirs.isEmpty())
        dirs = {QStringLiteral("/usr/local/share"), QStringLiteral("/usr/share")};
    return dirs;
}

// "\s", "\n", "\t", "\r" and "\\" in string values.
QString unescaped(QStringView value)
{
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c != u'\\' || i + 1 == value.size()) {
            out.append(c);
            continue;
        }
        const QChar next = value.at(++i);
        switch (next.unicode()) {
        case u's':
            out.append(u' ');
            break;
        case u'n':
            out.append(u'\n');
            break;
        case u't':
            out.append(u'\t');
            break;
        case u'r':
            out.append(u'\r');
            break;
        default:
            out.append(next);
        }
    }
    return out;
}

// The localised keys to try for a POSIX locale name, most specific first, as the desktop entry
// rules order them: lang_COUNTRY@MODIFIER, lang_COUNTRY, lang@MODIFIER, lang.
QStringList localeSuffixes(const QString& language)
{
    QString name = language;
    QString modifier;
    if (const qsizetype at = name.indexOf(u'@'); at >= 0) {
        modifier = name.mid(at + 1);
        name.truncate(at);
    }
    if (const qsizetype dot = name.indexOf(u'.'); dot >= 0)
        name.truncate(dot);
    if (name.isEmpty() || name == u"C" || name == u"POSIX")
        return {};
    QString lang = name;
    QString country;
    if (const qsizetype underscore = name.indexOf(u'_'); underscore >= 0) {
        lang = name.left(underscore);
        country = name.mid(underscore + 1);
    }
    QStringList suffixes;
    if (!country.isEmpty() && !modifier.isEmpty())
        suffixes.append(lang + u'_' + country + u'@' + modifier);
    if (!country.isEmpty())
        suffixes.append(lang + u'_' + country);
    if (!modifier.isEmpty())
        suffixes.append(lang + u'@' + modifier);
    suffixes.append(lang);
    return suffixes;
}

bool isTrue(const QString& value)
{
    return value == u"true";
}

} // namespace

QString userLanguage()
{
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty())
            return value;
    }
    return QString();
}

QStringList applicationFolders()
{
    QStringList bases = {xdgDataHome()};
    bases += dataDirs();
    // Applications installed through Flatpak and Snap export their entries here; most sessions
    // list these folders already.
    for (const QString& extra : {xdgDataHome() + QStringLiteral("/flatpak/exports/share"),
                                 QStringLiteral("/var/lib/flatpak/exports/share"),
                                 QStringLiteral("/var/lib/snapd/desktop")}) {
        if (!bases.contains(extra))
            bases.append(extra);
    }
    QStringList folders;
    for (const QString& base : bases) {
        const QString folder = QDir::cleanPath(base + QStringLiteral("/applications"));
        if (!folders.contains(folder))
            folders.append(folder);
    }
    return folders;
}

std::optional<DesktopApplication> readEntry(const QString& path, const QString& id,
                                            const QString& language)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly) ||
        file.size() > kMaxEntryBytes)
        return std::nullopt;
    const QStringList lines = QString::fromUtf8(file.read(kMaxEntryBytes)).split(u'\n');

    QHash<QString, QString> keys;
    bool inEntry = false;
    bool sawEntry = false;
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[')) {
            // Only the first group may be the entry; actions and other groups follow it.
            inEntry = !sawEntry && line == u"[Desktop Entry]";
            sawEntry = sawEntry || inEntry;
            continue;
        }
        if (!inEntry)
            continue;
        const qsizetype equals = line.indexOf(u'=');
        if (equals <= 0)
            continue;
        const QString key = line.left(equals).trimmed();
        // The first occurrence of a key counts.
        if (!keys.contains(key))
            keys.insert(key, unescaped(QStringView(line).mid(equals + 1).trimmed()));
    }
    if (!sawEntry || keys.value(QStringLiteral("Type")) != u"Application" ||
        isTrue(keys.value(QStringLiteral("Hidden"))))
        return std::nullopt;

    DesktopApplication app;
    app.id = id;
    app.path = path;
    app.name = keys.value(QStringLiteral("Name"));
    for (const QString& suffix : localeSuffixes(language)) {
        const QString localised = keys.value(QStringLiteral("Name[%1]").arg(suffix));
        if (!localised.isEmpty()) {
            app.name = localised;
            break;
        }
    }
    if (app.name.isEmpty())
        return std::nullopt;
    app.iconName = keys.value(QStringLiteral("Icon"));
    app.startupWMClass = keys.value(QStringLiteral("StartupWMClass"));
    app.exec = keys.value(QStringLiteral("Exec"));
    app.noDisplay = isTrue(keys.value(QStringLiteral("NoDisplay")));
    return app;
}

std::vector<DesktopApplication>
installedApplications(const QStringList& folders, const QString& language, bool includeNoDisplay)
{
    std::vector<DesktopApplication> applications;
    QSet<QString> decided;
    for (const QString& folder : folders) {
        QDirIterator it(folder, {QStringLiteral("*.desktop")}, QDir::Files,
                        QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
        QStringList found;
        while (it.hasNext())
            found.append(it.next());
        // A stable order, so that the same folders always give the same list.
        found.sort();
        for (const QString& path : found) {
            // The file id: the path below "applications" with "/" turned into "-".
            QString id = QDir(folder).relativeFilePath(path);
            id.chop(int(qstrlen(".desktop")));
            id.replace(u'/', u'-');
            if (decided.contains(id))
                continue;
            decided.insert(id);
            std::optional<DesktopApplication> app = readEntry(path, id, language);
            if (app && (includeNoDisplay || !app->noDisplay))
                applications.push_back(std::move(*app));
        }
    }
    std::sort(applications.begin(), applications.end(),
              [](const DesktopApplication& a, const DesktopApplication& b) {
                  // Case-insensitive rather than collated: the same list whatever the locale.
                  const int byName = a.name.compare(b.name, Qt::CaseInsensitive);
                  return byName != 0 ? byName < 0 : a.id < b.id;
              });
    return applications;
}

std::vector<DesktopApplication> installedApplications()
{
    return installedApplications(applicationFolders(), userLanguage());
}

const DesktopApplication* matchWindowClass(const std::vector<DesktopApplication>& applications,
                                           const QString& instanceName, const QString& className)
{
    const auto find = [&](auto&& matches) -> const DesktopApplication* {
        for (const QString& wanted : {className, instanceName}) {
            if (wanted.isEmpty())
                continue;
            for (const DesktopApplication& app : applications) {
                if (matches(app, wanted))
                    return &app;
            }
        }
        return nullptr;
    };
    const auto same = [](const QString& a, const QString& b) {
        return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
    };
    if (const auto* app = find([&](const DesktopApplication& a, const QString& w) {
            return same(a.startupWMClass, w);
        }))
        return app;
    if (const auto* app =
            find([&](const DesktopApplication& a, const QString& w) { return same(a.id, w); }))
        return app;
    return find([&](const DesktopApplication& a, const QString& w) {
        return same(a.id.section(u'.', -1), w);
    });
}

} // namespace corvane::DesktopEntries
