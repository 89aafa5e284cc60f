#pragma once

#include <QLatin1StringView>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace corvane {

class NoticeRegistry;

// What every observer is handed: the name, the poster, and the payload of the notice type that
// name belongs to (see Notifications.h). The payload lives only for the delivery.
struct Notification
{
    QLatin1StringView name;
    const void* sender = nullptr;
    const void* payload = nullptr;
};

// The names every typed post() and observe() in the program mentions, each with the payload type
// it belongs to. It is filled before main() from the instantiations of those templates, so a
// program can ask which observed names nothing posts.
class NoticeRegistry
{
public:
    struct Use
    {
        QLatin1StringView name;
        const void* payloadType; // one address per payload type
        bool posted = false;
        bool observed = false;
    };

    static NoticeRegistry& instance();
    const std::vector<Use>& uses() const { return m_uses; }

    template <class Notice>
    static const void* payloadType()
    {
        static const char tag = 0;
        return &tag;
    }

    bool notePosted(QLatin1StringView name, const void* payloadType);
    bool noteObserved(QLatin1StringView name, const void* payloadType);

private:
    Use& use(QLatin1StringView name, const void* payloadType);
    std::vector<Use> m_uses;
};

namespace detail {
template <class Notice>
inline const bool noticePosted =
    NoticeRegistry::instance().notePosted(Notice::name, NoticeRegistry::payloadType<Notice>());
template <class Notice>
inline const bool noticeObserved =
    NoticeRegistry::instance().noteObserved(Notice::name, NoticeRegistry::payloadType<Notice>());
} // namespace detail

// Synchronous, in-process notifications: post() calls every matching observer before it returns.
// Notices are the payload structs of Notifications.h; each carries its name, so posting and
// observing one are checked by the compiler. An observer lives exactly as long as the
// Observation that observe() returned, so nothing can be called after its owner went away, even
// from inside a delivery.
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

    // Delivers the notice to its observers; a null sender means nobody in particular.
    template <class Notice>
    void post(const Notice& notice, const void* sender = nullptr)
    {
        static_cast<void>(detail::noticePosted<Notice>);
        deliver(Notice::name, sender, &notice);
    }

    // Observes one notice type, from one sender or (null) from any.
    template <class Notice>
    [[nodiscard]] Observation observe(const void* sender,
                                      std::function<void(const Notice&)> handler)
    {
        static_cast<void>(detail::noticeObserved<Notice>);
        return addObserver(Notice::name, sender,
                           [handler = std::move(handler)](const Notification& n) {
                               handler(*static_cast<const Notice*>(n.payload));
                           });
    }

    // Observes each of several notice types with one handler that needs no payload (views that
    // redraw on any of them), appending the observations to the owner's list.
    template <class... Notices>
    void observeEach(std::vector<Observation>& into, const void* sender,
                     const std::function<void()>& handler)
    {
        (into.push_back(observe<Notices>(sender, [handler](const Notices&) { handler(); })), ...);
    }

    // Sees every notice, by name and sender only (logging, tests).
    [[nodiscard]] Observation observeAll(const void* sender, Handler handler);

    std::size_t observerCount() const;

private:
    // Shared with the deliveries under way, which skip an observer removed meanwhile.
    struct Registered
    {
        Handler handler;
        bool active = true;
    };
    // In the order of their ids.
    struct Entry
    {
        quint64 id;
        QLatin1StringView name; // empty: every notice
        const void* sender;
        std::shared_ptr<Registered> registered;
    };

    Observation addObserver(QLatin1StringView name, const void* sender, Handler handler);
    void deliver(QLatin1StringView name, const void* sender, const void* payload);
    void remove(quint64 id);

    std::vector<Entry> m_entries;
    quint64 m_nextId = 1;
    std::vector<Observation*> m_liveObservations;
};

} // namespace corvane
