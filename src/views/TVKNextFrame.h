#pragma once

#include <QObject>
#include <functional>

// Work a window does for the next frame rather than inside the notice that asked for it. A touch
// on the surface is answered to the service from inside the selection notice, so whatever the
// windows do there delays the surface's echo; they only ask for their work here, and it runs
// once, after the event that asked for it, however many times it was asked for meanwhile.
class TVKNextFrame : public QObject
{
public:
    TVKNextFrame(QObject* parent, std::function<void()> work);
    ~TVKNextFrame() override;

    void request();
    // Runs the work now when it is due (before reading what the window shows); nothing if not.
    void flush();
    bool pending() const { return m_pending; }

    // Windows with work still to do, in the whole program.
    static int pendingCount() { return s_pending; }

protected:
    bool event(QEvent* event) override;

private:
    void setPending(bool pending);

    std::function<void()> m_work;
    bool m_pending = false;
    static int s_pending;
};
