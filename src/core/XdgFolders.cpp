#include "core/XdgFolders.h"

#include <QDir>

namespace corvane {

namespace {

QString baseFolder(const char* variable, const QString& underHome)
{
    const QString value = qEnvironmentVariable(variable);
    if (value.isEmpty() || QDir::isRelativePath(value))
        return QDir::homePath() + underHome;
    return value;
}

} // namespace

QString xdgDataHome()
{
    return baseFolder("XDG_DATA_HOME", QStringLiteral("/.local/share"));
}

QString xdgConfigHome()
{
    return baseFolder("XDG_CONFIG_HOME", QStringLiteral("/.config"));
}

} // namespace corvane
