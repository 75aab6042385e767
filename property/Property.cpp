#include "property/Property.h"

#include <utility>

namespace {

constexpr std::size_t kFirstListeners = 10;

} // namespace

Property::Property(std::string_view guid, std::string_view name, std::string_view groupGuid,
                   std::string_view groupName)
    : m_guid(guid), m_name(name), m_groupGuid(groupGuid), m_groupName(groupName) {}

Property::~Property() = default;

// A full list is replaced and never moved: a notification on another thread goes on in the old one.
void Property::addListener(Listener listener) {
    const KeltoGuard guard(m_listenersLock);
    if (!m_listeners || m_listeners->size() == m_listeners->capacity()) {
        auto larger = std::make_shared<Listeners>();
        larger->reserve(m_listeners ? m_listeners->size() * 2 : kFirstListeners);
        if (m_listeners)
            larger->assign(m_listeners->begin(), m_listeners->end());
        m_listeners = std::move(larger);
    }
    m_listeners->push_back(std::move(listener));
}

void Property::notifyListeners() {
    std::shared_ptr<Listeners> held;
    const Listener* listener = nullptr;
    const Listener* end = nullptr;
    {
        const KeltoGuard guard(m_listenersLock);
        if (!m_listeners)
            return;
        held = m_listeners;
        listener = held->data();
        end = listener + held->size();
    }
    for (; listener != end; ++listener)
        (*listener)(shared_from_this());
}
