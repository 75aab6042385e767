#include "tools/firmware/FirmwareDriver.h"

#include "platform/os/DeviceRoot.h"
#include "tools/propertyserver/PropertyServer.h"

#include <filesystem>
#include <utility>

std::unique_ptr<FirmwareDriver> FirmwareDriver::create(bool acConnected, std::string& why) {
    PropertyServerOptions options;
    options.devicePath = os::devicePath("PRN0:");
    options.acConnected = acConnected;
    std::error_code noFolder; // listening fails then, and tells
    std::filesystem::create_directories(std::filesystem::path(options.devicePath).parent_path(), noFolder);
    std::unique_ptr<PropertyServer> server = PropertyServer::create(std::move(options), why);
    return server ? std::unique_ptr<FirmwareDriver>(new FirmwareDriver(std::move(server))) : nullptr;
}

FirmwareDriver::FirmwareDriver(std::unique_ptr<PropertyServer> server)
    : m_server(std::move(server)), m_thread([this] { m_server->run(); }) {}

FirmwareDriver::~FirmwareDriver() {
    m_server->stop();
    m_thread.join();
}

void FirmwareDriver::setACConnected(bool connected) { m_server->setACConnected(connected); }

void FirmwareDriver::setDotsPerInch(std::uint32_t dots) { m_server->setDotsPerInch(dots); }
