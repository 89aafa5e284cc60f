#include "views/TVKNextFrame.h"

#include <QCoreApplication>
#include <QEvent>

namespace {

const QEvent::Type kRunWork = QEvent::Type(QEvent::registerEventType());

} // namespace

int TVKNextFrame::s_pending = 0;

TVKNextFrame::TVKNextFrame(QObject* parent, std::function<void()> work)
    : QObject(parent), m_work(std::move(work))
{}

TVKNextFrame::~TVKNextFrame()
{
    setPending(false);
}

void TVKNextFrame::request()
{
    if (m_pending)
        return;
    setPending(true);
    // Posted, so it runs with the repaints the notice asked for, after the event being handled.
    QCoreApplication::postEvent(this, new QEvent(kRunWork));
}

void TVKNextFrame::flush()
{
    if (!m_pending)
        return;
    // The posted event finds nothing due and does nothing.
    setPending(false);
    m_work();
}

bool TVKNextFrame::event(QEvent* event)
{
    if (event->type() != kRunWork)
        return QObject::event(event);
    flush();
    return true;
}

void TVKNextFrame::setPending(bool pending)
{
    if (pending == m_pending)
        return;
    m_pending = pending;
    s_pending += pending ? 1 : -1;
}
