#pragma once

#include "picl/PICLServerAgent.h"
#include "platform/Stream.h"
#include "platform/ThreadFactory.h"
#include "property/PublishingPropertyManager.h"
#include "property/StringProperty.h"

#include <memory>
#include <string>
#include <thread>

/// A whole member of the property system at one end of a stream: its properties, its agent and the thread
/// that reads. At its end it says goodbye and closes the stream.
class Member {
public:
    /// @p name is the name and the component GUID of the program, and that of its file.
    Member(const std::string& name, std::shared_ptr<Stream> end)
        : stream(std::move(end)),
          manager(std::make_shared<PublishingPropertyManager>(
              threads, kThreadPriority, kThreadPriority, L"/store/" + std::wstring(name.begin(), name.end()),
              L"/boot/none")),
          agent(std::make_shared<PICLServerAgent>(
              manager, threads, kThreadPriority,
              std::make_shared<StringProperty>(name, name, name, "c", "Components"))) {
        manager->setPublisher(agent);
    }

    ~Member() { leave(); }

    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;

    void join() {
        agent->setPublishStream(stream);
        agent->startPublishing();
        m_reader = std::thread([this] {
            while (agent->processNextMessage(stream)) {
            }
        });
    }

    void leave() {
        agent->disconnect();
        stream->close();
        if (m_reader.joinable())
            m_reader.join();
    }

    /// Waits until the reader has ended by itself.
    void awaitEndOfReading() { m_reader.join(); }

    template <typename Type, typename Value>
    std::shared_ptr<Type> add(const std::string& guid, Value value) {
        auto property = std::make_shared<Type>(value, guid, "a name", "G", "a group");
        manager->addProperty(property);
        return property;
    }

    const std::shared_ptr<Stream> stream;
    const std::shared_ptr<ThreadFactory> threads = std::make_shared<ThreadFactory>(kThreadPriority);
    const std::shared_ptr<PublishingPropertyManager> manager;
    const std::shared_ptr<PICLServerAgent> agent;

private:
    std::thread m_reader;
};
