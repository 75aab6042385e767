#include "picl/PICLIF.h"

#include "picl/DebugZones.h"
#include "picl/PICLServerAgent.h"
#include "platform/OXPLStreamDriverInterface.h"
#include "platform/Thread.h"
#include "platform/Worker.h"
#include "prefs/ApplicationIdentity.h"
#include "prefs/DisplayPreferences.h"
#include "property/MakeProperty.h"
#include "property/PublishingPropertyManager.h"

#include <utility>

namespace {

std::shared_ptr<StringProperty> makeFirmwareProperty(const VocabularyEntry& property, const char* value) {
    return makeProperty<StringProperty>(vocabulary::groups::kProductInfo, property, value);
}

} // namespace

PICLIF::PICLIF(std::shared_ptr<ThreadFactory> threads, std::shared_ptr<PublishingPropertyManager> manager)
    : m_threads(std::move(threads)),
      m_propertyManager(std::move(manager)),
      m_socketFactory(std::make_unique<SocketFactory>()),
      m_firmwareVersion(makeFirmwareProperty(vocabulary::properties::kFirmwareVersion, "1.1.153310")),
      m_firmwareBuildNumber(makeFirmwareProperty(vocabulary::properties::kFirmwareBuildNumber, "153310")),
      m_applicationName(ApplicationIdentity::instance().applicationName()) {}

PICLIF::~PICLIF() { disconnect(); }

void PICLIF::completeSetup() {
    m_displayPreferences = createDisplayPreferences(m_propertyManager, m_agent);
    m_propertyManager->addProperty(m_firmwareVersion);
    m_propertyManager->addProperty(m_firmwareBuildNumber);
}

bool PICLIF::connectToSocket(const IPv4Address& address, std::uint16_t port) {
    disconnect();
    m_socket = m_socketFactory->createClientSocket(address, port);
    if (!m_socket)
        return false;
    m_stream = m_socket;
    return startConnection();
}

bool PICLIF::connectToDevice(const std::wstring& name) {
    disconnect();
    m_streamDriver = std::make_shared<OXPLStreamDriverInterface>(name, kFileOrDeviceStream);
    if (!m_streamDriver->isOpen())
        return false;
    m_stream = m_streamDriver;
    return startConnection();
}

std::shared_ptr<Property> PICLIF::makeComponentProperty() const {
    const ApplicationIdentity& identity = ApplicationIdentity::instance();
    const VocabularyEntry& group = vocabulary::groups::kComponents;
    return std::make_shared<StringProperty>(m_applicationName, identity.componentGuid(),
                                            identity.componentName(), group.guid, group.name);
}

// The agent knows the properties before the first frame is sent, and publishes before anything is read.
bool PICLIF::startConnection() {
    m_agent = std::make_shared<PICLServerAgent>(m_propertyManager, m_threads, kThreadPriority,
                                                makeComponentProperty());
    m_propertyManager->setPublisher(m_agent);
    m_agent->setPublishStream(m_stream);
    if (!m_agent->startPublishing() || !startReading()) {
        disconnect();
        return false;
    }
    createDebugZones(*m_propertyManager);
    return true;
}

bool PICLIF::startReading() {
    m_readerThread = std::make_unique<Worker>(*m_threads, kThreadPriority);
    return m_readerThread->start([agent = m_agent, stream = m_stream] {
        while (agent->processNextMessage(stream)) {
        }
    });
}

// "Disconnect" needs the stream, so the stream is closed last. Closing it ends a blocked read or write.
void PICLIF::disconnect() {
    if (m_agent)
        m_agent->disconnect();
    m_agent.reset();
    m_socket.reset();
    m_streamDriver.reset();
    if (m_stream)
        m_stream->close();
    m_stream.reset();
    m_readerThread.reset();
}
