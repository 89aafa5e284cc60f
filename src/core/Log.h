#pragma once

#include <QString>
#include <QStringList>

namespace corvane {

// The one logging call of the program: the system's fixed texts go out as plain lines, no levels.
// They are written to standard error, where the desktop session's journal keeps them.
void log(const QString& line);

// Redirects log lines while alive (tests read what was logged; tools may silence it).
// Captures nest: the innermost one receives the lines.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const QStringList& lines() const { return m_lines; }
    bool contains(const QString& line) const { return m_lines.contains(line); }
    void clear() { m_lines.clear(); }

private:
    friend void log(const QString& line);
    QStringList m_lines;
    LogCapture* m_previous = nullptr;
};

} // namespace corvane
