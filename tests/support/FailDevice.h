#pragma once

#include <QByteArray>
#include <QIODevice>

// A device that accepts a fixed number of bytes and then fails every write, like a disk that
// fills up halfway through a save.
class FailDevice : public QIODevice
{
public:
    explicit FailDevice(qint64 capacity) : m_capacity(capacity) { open(QIODevice::WriteOnly); }

    const QByteArray& written() const { return m_written; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 length) override
    {
        const qint64 room = m_capacity - m_written.size();
        if (room <= 0) {
            setErrorString(QStringLiteral("No space left on device"));
            return -1;
        }
        const qint64 taken = std::min(room, length);
        m_written.append(data, taken);
        return taken;
    }

private:
    qint64 m_capacity;
    QByteArray m_written;
};
