#include "core/TVKUserDefaults.h"

#include "core/PlistCodec.h"
#include "core/XdgFolders.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace corvane {

QString TVKUserDefaults::defaultPath()
{
    return xdgConfigHome() + QStringLiteral("/Tavrik/com.tavrik.CorvaneRS.plist");
}

TVKUserDefaults::TVKUserDefaults(QString path) : m_path(std::move(path))
{
    reload();
}

TVKUserDefaults::State TVKUserDefaults::reload()
{
    m_values = PlistValue::makeDict();
    m_error.clear();
    m_changed = false;
    const QFileInfo info(m_path);
    if (!info.exists() && !info.isSymLink()) {
        m_state = State::Missing;
        return m_state;
    }
    const PlistReadResult read = PlistCodec::readFile(m_path);
    if (!read.ok) {
        m_state = State::Unreadable;
        m_error = QStringLiteral("%1: %2").arg(m_path, read.error.toString());
    } else if (!read.value.isDict()) {
        m_state = State::Unreadable;
        m_error = QStringLiteral("%1: the store is not a dictionary").arg(m_path);
    } else {
        m_state = State::Loaded;
        m_values = read.value;
    }
    return m_state;
}

const PlistValue& TVKUserDefaults::objectForKey(QStringView key) const
{
    return m_values.value(key);
}

void TVKUserDefaults::setObject(const QString& key, PlistValue object)
{
    if (m_values.contains(key) && m_values.value(key) == object)
        return;
    m_values.insert(key, std::move(object));
    m_changed = true;
}

void TVKUserDefaults::removeObjectForKey(QStringView key)
{
    if (!m_values.contains(key))
        return;
    m_values.remove(key);
    m_changed = true;
}

bool TVKUserDefaults::synchronize(QString* errorMessage)
{
    if (m_state == State::Unreadable) {
        if (errorMessage)
            *errorMessage = QStringLiteral("%1 could not be read and is left as it is").arg(m_path);
        return false;
    }
    // The file already holds every value: writing it again would change nothing.
    if (m_state == State::Loaded && !m_changed && QFileInfo::exists(m_path))
        return true;
    const QString folder = QFileInfo(m_path).absolutePath();
    if (!QDir().mkpath(folder)) {
        if (errorMessage)
            *errorMessage = QStringLiteral("%1: the folder cannot be made").arg(folder);
        return false;
    }
    if (!PlistCodec::writeFile(m_path, m_values, PlistFormat::Xml, errorMessage))
        return false;
    m_state = State::Loaded;
    m_changed = false;
    return true;
}

QString TVKUserDefaults::moveAside(QString* errorMessage)
{
    if (m_state != State::Unreadable)
        return QString();
    const QString aside = moveFileAside(m_path, QStringLiteral("unreadable"), errorMessage);
    if (aside.isNull())
        return QString();
    m_values = PlistValue::makeDict();
    m_state = State::Missing;
    m_error.clear();
    return aside;
}

QString TVKUserDefaults::moveFileAside(const QString& path, const QString& why,
                                       QString* errorMessage)
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    const QString base = QStringLiteral("%1.%2-%3").arg(path, why, stamp);
    QString aside = base;
    for (int n = 2; QFileInfo::exists(aside) || QFileInfo(aside).isSymLink(); ++n)
        aside = QStringLiteral("%1-%2").arg(base).arg(n);
    if (!QFile::rename(path, aside)) {
        if (errorMessage)
            *errorMessage = QStringLiteral("%1 cannot be moved aside").arg(path);
        return QString();
    }
    return aside;
}

} // namespace corvane
