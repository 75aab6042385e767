#include "tools/firmware/FirmwareDriver.h"

#include "picl/PICLServerAgent.h"
#include "platform/ThreadFactory.h"
#include "platform/os/DeviceRoot.h"
#include "property/BoolProperty.h"
#include "property/MakeProperty.h"
#include "property/PublishingPropertyManager.h"
#include "property/StringProperty.h"
#include "property/UInt32Property.h"
#include "tools/firmware/HandleStream.h"

#include <filesystem>
#include <utility>

namespace {

constexpr std::uint32_t kDotsPerInch = 300;

std::shared_ptr<Property> makeComponentProperty() {
    const VocabularyEntry& component = vocabulary::components::kFirmwareDriver;
    return makeProperty<StringProperty>(vocabulary::groups::kComponents, component, component.name);
}

} // namespace

/// One application that has connected: the agent that speaks with it and the thread that reads from it.
class FirmwareDriver::Connection {
public:
    Connection(const FirmwareDriver& driver, os::Descriptor peer)
        : m_stream(std::make_shared<HandleStream>(std::move(peer))),
          m_agent(std::make_shared<PICLServerAgent>(driver.m_manager, driver.m_threads, kThreadPriority,
                                                    makeComponentProperty())) {
        driver.m_manager->setPublisher(m_agent);
        m_agent->startPublishing();
        m_reader = std::thread([this] {
            while (m_agent->processNextMessage(m_stream)) {
            }
        });
    }

    ~Connection() {
        m_agent->sayGoodbye();
        m_stream->close();
        m_reader.join();
    }

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

private:
    const std::shared_ptr<Stream> m_stream;
    const std::shared_ptr<PICLServerAgent> m_agent;
    std::thread m_reader;
};

std::unique_ptr<FirmwareDriver> FirmwareDriver::create(bool acConnected, std::string& why) {
    const std::string path = os::devicePath("PRN0:");
    std::error_code noFolder;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), noFolder);
    std::unique_ptr<FirmwareDriver> driver(new FirmwareDriver(path, acConnected));
    if (driver->m_listener.isOpen())
        return driver;
    why = "cannot listen on " + path + ": it is taken, or cannot be made";
    return nullptr;
}

// A property file of its own, so that it never meets the application's; nothing here is worth a line in it.
FirmwareDriver::FirmwareDriver(const std::string& devicePath, bool acConnected)
    : m_listener(devicePath),
      m_threads(std::make_shared<ThreadFactory>(kThreadPriority)),
      m_manager(std::make_shared<PublishingPropertyManager>(m_threads, kThreadPriority, kThreadPriority,
                                                            L"/store/FirmwareDriver.ini",
                                                            L"/store/FirmwareDriverOverride.ini")),
      m_acConnected(makeProperty<BoolProperty>(vocabulary::groups::kBattery,
                                               vocabulary::properties::kBatteryACConnected, acConnected)),
      m_dotsPerInch(makeProperty<UInt32Property>(vocabulary::groups::kGeneral,
                                                 vocabulary::properties::kDotsPerInch, kDotsPerInch)) {
    m_manager->addProperty(m_acConnected);
    m_manager->addProperty(m_dotsPerInch);
    m_server = std::thread(&FirmwareDriver::serve, this);
}

FirmwareDriver::~FirmwareDriver() {
    m_listener.close();
    m_server.join();
}

void FirmwareDriver::serve() {
    std::unique_ptr<Connection> connection;
    while (true) {
        os::Descriptor peer = m_listener.accept();
        if (!peer.isOpen())
            return;
        connection.reset(); // before the next one begins
        connection = std::make_unique<Connection>(*this, std::move(peer));
    }
}

void FirmwareDriver::setACConnected(bool connected) { m_acConnected->setValue(connected); }

void FirmwareDriver::setDotsPerInch(std::uint32_t dots) { m_dotsPerInch->setValue(dots); }
