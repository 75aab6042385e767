#pragma once

#include "platform/SocketFactory.h"

#include <cstdint>
#include <memory>
#include <string>

class DisplayPreferences;
class OXPLStreamDriverInterface;
class PICLServerAgent;
class Property;
class PublishingPropertyManager;
class Stream;
class StringProperty;
class ThreadFactory;
class Worker;

/// What the application sees of the property system: the connection to the property server, the agent that
/// speaks on it and the thread that reads from it; beside it the properties that come with a connection.
///
/// A lost connection is not made again. A second connection may be made all the same: it has an agent and a
/// reader of its own. The reader thread shares ownership of what it uses, so it may be detached within a
/// message. GUI thread only.
class PICLIF {
public:
    PICLIF(std::shared_ptr<ThreadFactory> threads, std::shared_ptr<PublishingPropertyManager> manager);

    /// As disconnect().
    virtual ~PICLIF();

    PICLIF(const PICLIF&) = delete;
    PICLIF& operator=(const PICLIF&) = delete;

    /// Makes the display preferences, and enters the firmware's properties. Requires: called once, after the
    /// attempt to connect, whatever came of that. Blocks at most
    /// ApplicationIdentity::externalPropertyTimeout() for the server.
    virtual void completeSetup();

    /// Connects by TCP to @p port, in the host's order. Returns whether that worked. Blocks as
    /// SocketFactory::createClientSocket() does, and while the first frame is written.
    [[nodiscard]] bool connectToSocket(const IPv4Address& address, std::uint16_t port);

    /// Connects through the device @p name. Returns whether that worked. Blocks while the first frame is
    /// written.
    [[nodiscard]] bool connectToDevice(const std::wstring& name);

    /// Ends the connection, if there is one: "Disconnect" is its last frame, whoever else holds the agent.
    /// Blocks at most 1.5 s, whatever the peer does.
    void disconnect();

    /// Returns the agent of the connection, or nothing where there is none.
    [[nodiscard]] std::shared_ptr<PICLServerAgent> agent() const { return m_agent; }

    /// Returns nothing before completeSetup().
    [[nodiscard]] std::shared_ptr<DisplayPreferences> displayPreferences() const {
        return m_displayPreferences;
    }

private:
    [[nodiscard]] std::shared_ptr<Property> makeComponentProperty() const;
    [[nodiscard]] bool startConnection();
    [[nodiscard]] bool startReading();

    std::shared_ptr<Stream> m_stream;
    std::shared_ptr<OXPLStreamDriverInterface> m_streamDriver;
    std::shared_ptr<Socket> m_socket;
    const std::shared_ptr<ThreadFactory> m_threads;
    const std::shared_ptr<PublishingPropertyManager> m_propertyManager;
    std::shared_ptr<PICLServerAgent> m_agent;
    const std::unique_ptr<SocketFactory> m_socketFactory;
    std::shared_ptr<DisplayPreferences> m_displayPreferences;
    const std::shared_ptr<StringProperty> m_firmwareVersion;
    const std::shared_ptr<StringProperty> m_firmwareBuildNumber;
    std::unique_ptr<Worker> m_readerThread;
    const std::string m_applicationName;
};
