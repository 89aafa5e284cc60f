#include "core/Log.h"

#include <QStringList>
#include <cstdio>

namespace corvane {

namespace {
LogCapture* g_capture = nullptr;
}

void log(const QString& line)
{
    if (g_capture) {
        g_capture->m_lines.append(line);
        return;
    }
    const QByteArray bytes = line.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fputc('\n', stderr);
}

LogCapture::LogCapture() : m_previous(g_capture)
{
    g_capture = this;
}

LogCapture::~LogCapture()
{
    g_capture = m_previous;
}

} // namespace corvane
