#pragma once

#include <QString>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <vector>

namespace corvane {

struct Notification
{
    QString name;
    const void* sender = nullptr;
    QVariantMap userInfo;
};

// Synchronous, in-process notifications: post() calls every matching observer before it returns.
// An observer lives exactly as long as the Observation that addObserver() returned, so nothing can
// be called after its owner went away, even from inside a delivery.
class NotificationCenter
{
public:
    using Handler = std::function<void(const Notification&)>;

    class Observation
    {
    public:
        Observation() = default;
        ~Observation() { reset(); }
        Observation(Observation&& other) noexcept;
        Observation& operator=(Observation&& other) noexcept;
        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;

        void reset();
        bool isActive() const { return m_center != nullptr; }

    private:
        friend class NotificationCenter;
        NotificationCenter* m_center = nullptr;
        quint64 m_id = 0;
    };

    NotificationCenter() = default;
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    static NotificationCenter& defaultCenter();

    // An empty name observes every notification; a null sender accepts any sender.
    [[nodiscard]] Observation addObserver(const QString& name, const void* sender, Handler handler);

    void post(const QString& name, const void* sender = nullptr, const QVariantMap& userInfo = {});

    std::size_t observerCount() const;

private:
    struct Entry
    {
        quint64 id;
        QString name;
        const void* sender;
        std::shared_ptr<Handler> handler;
    };

    void remove(quint64 id);

    std::vector<Entry> m_entries;
    quint64 m_nextId = 1;
    std::vector<Observation*> m_liveObservations;
};

} // namespace corvane
