#include "core/NotificationCenter.h"

#include <algorithm>

namespace corvane {

NoticeRegistry& NoticeRegistry::instance()
{
    static NoticeRegistry registry;
    return registry;
}

NoticeRegistry::Use& NoticeRegistry::use(QLatin1StringView name, const void* payloadType)
{
    for (Use& u : m_uses) {
        if (u.name == name && u.payloadType == payloadType)
            return u;
    }
    return m_uses.emplace_back(Use{name, payloadType});
}

bool NoticeRegistry::notePosted(QLatin1StringView name, const void* payloadType)
{
    use(name, payloadType).posted = true;
    return true;
}

bool NoticeRegistry::noteObserved(QLatin1StringView name, const void* payloadType)
{
    use(name, payloadType).observed = true;
    return true;
}

NotificationCenter::Observation::Observation(Observation&& other) noexcept
    : m_center(other.m_center), m_id(other.m_id)
{
    if (m_center) {
        std::replace(m_center->m_liveObservations.begin(), m_center->m_liveObservations.end(),
                     &other, this);
    }
    other.m_center = nullptr;
    other.m_id = 0;
}

NotificationCenter::Observation&
NotificationCenter::Observation::operator=(Observation&& other) noexcept
{
    if (this != &other) {
        reset();
        m_center = other.m_center;
        m_id = other.m_id;
        if (m_center) {
            std::replace(m_center->m_liveObservations.begin(), m_center->m_liveObservations.end(),
                         &other, this);
        }
        other.m_center = nullptr;
        other.m_id = 0;
    }
    return *this;
}

void NotificationCenter::Observation::reset()
{
    if (!m_center)
        return;
    auto& live = m_center->m_liveObservations;
    live.erase(std::remove(live.begin(), live.end(), this), live.end());
    m_center->remove(m_id);
    m_center = nullptr;
    m_id = 0;
}

NotificationCenter::~NotificationCenter()
{
    // Observations that outlive the centre must not reach back into it.
    for (Observation* observation : m_liveObservations) {
        observation->m_center = nullptr;
        observation->m_id = 0;
    }
}

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

NotificationCenter::Observation NotificationCenter::observeAll(const void* sender, Handler handler)
{
    return addObserver(QLatin1StringView(), sender, std::move(handler));
}

NotificationCenter::Observation NotificationCenter::addObserver(QLatin1StringView name,
                                                                const void* sender, Handler handler)
{
    Observation observation;
    observation.m_center = this;
    observation.m_id = m_nextId++;
    m_entries.push_back({observation.m_id, name, sender,
                         std::make_shared<Registered>(Registered{std::move(handler)})});
    // The returned temporary is moved into the caller's variable; the move constructor keeps this
    // list pointing at wherever the observation finally lives.
    m_liveObservations.push_back(&observation);
    return observation;
}

void NotificationCenter::remove(quint64 id)
{
    const auto found =
        std::lower_bound(m_entries.begin(), m_entries.end(), id,
                         [](const Entry& e, quint64 wanted) { return e.id < wanted; });
    if (found == m_entries.end() || found->id != id)
        return;
    found->registered->active = false;
    m_entries.erase(found);
}

void NotificationCenter::deliver(QLatin1StringView name, const void* sender, const void* payload)
{
    const Notification notification{name, sender, payload};
    // Deliver to the observers registered at the time of posting; one removed by an earlier
    // handler during this delivery is skipped.
    // A touch on the surface is answered from inside such a delivery, past a few thousand
    // observers: each is found once, and one removed meanwhile is known by its flag.
    std::vector<std::shared_ptr<Registered>> targets;
    for (const Entry& e : m_entries) {
        if ((e.name.isEmpty() || e.name == name) && (!e.sender || e.sender == sender))
            targets.push_back(e.registered);
    }
    for (const std::shared_ptr<Registered>& target : targets) {
        if (target->active)
            target->handler(notification);
    }
}

std::size_t NotificationCenter::observerCount() const
{
    return m_entries.size();
}

} // namespace corvane
