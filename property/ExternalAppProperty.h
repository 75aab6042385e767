#pragma once

#include "picl/PICLServerAgent.h"
#include "prefs/ApplicationIdentity.h"
#include "property/Property.h"
#include "property/PropertyManager.h"
#include "property/PropertyVocabulary.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

/// A value that belongs to another program of the printer, in use as if it were local. T is the class of the
/// property, V its native value.
///
/// Where the property stands is settled once, at construction: in this program's own table, among the mirrors
/// of the agent, with its owner, who is asked; or nowhere, and then a local substitute with the default takes
/// its place for good. Of all three none is looked for again. An owner that takes its property back later
/// leaves an object without a substitute: it reads the default, and what is set or listened to goes nowhere.
///
/// Nothing changes after construction, so there is no lock. Thread: any. Values from the owner arrive, and
/// listeners run for them, on the thread that reads from the stream.
template <typename T, typename V>
class ExternalAppProperty {
public:
    /// Blocks at most @p timeoutMs milliseconds for the owner, which is asked only where @p agent, which may
    /// be empty, does not have the property.
    ExternalAppProperty(V defaultValue, std::shared_ptr<PICLServerAgent> agent,
                        const std::shared_ptr<PropertyManager>& manager, std::string component,
                        const std::string& guid, const std::string& name, const std::string& groupGuid,
                        const std::string& groupName, std::uint32_t timeoutMs)
        : m_component(std::move(component)), m_agent(std::move(agent)), m_default(defaultValue) {
        if (isOwn())
            m_remote = find(*manager, guid, groupGuid);
        else if (m_agent)
            m_remote = m_agent->template getExternalProperty<T>(m_component, groupGuid, guid, timeoutMs);
        if (m_remote.expired())
            m_fallback = fallbackIn(*manager, m_component + "-" + guid, name, groupGuid, groupName);
    }

    ExternalAppProperty(const ExternalAppProperty&) = delete;
    ExternalAppProperty& operator=(const ExternalAppProperty&) = delete;

    [[nodiscard]] V getValue() const {
        const std::shared_ptr<T> property = current();
        return property ? property->getValue() : m_default;
    }

    /// Sets the value here, and asks the owner for it, even where it is the value already. Blocks while the
    /// listeners run and as the stream does.
    void setValue(V value) {
        const std::shared_ptr<T> remote = m_remote.lock();
        if (const std::shared_ptr<T> property = remote ? remote : m_fallback)
            property->setValue(value);
        if (remote && !isOwn() && m_agent)
            static_cast<void>(m_agent->setExternalValue(m_component, remote->getGroupGuid(),
                                                        remote->getGuid(), remote->toString()));
    }

    /// Adds @p listener to the property in use at this moment, with which it goes.
    void addListener(Property::Listener listener) {
        if (const std::shared_ptr<T> property = current())
            property->addListener(std::move(listener));
    }

private:
    static std::shared_ptr<T> find(const PropertyTable& table, const std::string& guid,
                                   const std::string& groupGuid) {
        return std::dynamic_pointer_cast<T>(table.findProperty(guid, groupGuid));
    }

    // Several objects for one property share one substitute.
    std::shared_ptr<T> fallbackIn(PropertyManager& manager, const std::string& guid, const std::string& name,
                                  const std::string& groupGuid, const std::string& groupName) const {
        std::shared_ptr<T> fallback = find(manager, guid, groupGuid);
        if (!fallback) {
            fallback = std::make_shared<T>(m_default, guid, name, groupGuid, groupName);
            if (!manager.addProperty(fallback)) {
                if (std::shared_ptr<T> other = find(manager, guid, groupGuid)) // which was a moment faster
                    return other;
            }
        }
        return fallback;
    }

    [[nodiscard]] bool isOwn() const {
        return m_component == ApplicationIdentity::instance().componentGuid();
    }

    [[nodiscard]] std::shared_ptr<T> current() const {
        std::shared_ptr<T> remote = m_remote.lock();
        return remote ? remote : m_fallback;
    }

    std::weak_ptr<T> m_remote;
    std::shared_ptr<T> m_fallback; // empty unless the property was not found at construction
    const std::string m_component;
    const std::shared_ptr<PICLServerAgent> m_agent;
    const V m_default;
};

/// Returns a value of another program by the texts of the vocabulary. Blocks at most
/// ApplicationIdentity::externalPropertyTimeout() for the owner.
template <typename T, typename V>
std::shared_ptr<ExternalAppProperty<T, V>>
makeExternalProperty(V defaultValue, const std::shared_ptr<PICLServerAgent>& agent,
                     const std::shared_ptr<PropertyManager>& manager, const VocabularyEntry& component,
                     const VocabularyEntry& group, const VocabularyEntry& property) {
    return std::make_shared<ExternalAppProperty<T, V>>(
        defaultValue, agent, manager, std::string(component.guid), std::string(property.guid),
        std::string(property.name), std::string(group.guid), std::string(group.name),
        ApplicationIdentity::instance().externalPropertyTimeout());
}
