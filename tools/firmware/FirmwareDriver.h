#pragma once

#include "platform/os/LocalListener.h"

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

class BoolProperty;
class PublishingPropertyManager;
class ThreadFactory;
class UInt32Property;

/// The printer's firmware as a property server: it listens on the device "PRN0:" of the device root and owns
/// the values that the application asks the component "Firmware Driver" for.
///
/// It serves one connection at a time; a later one takes the place of an earlier one. Each has an agent of
/// its own, which publishes as soon as the other side subscribes.
class FirmwareDriver {
public:
    /// Listens. Returns null on failure and puts a sentence about it into @p why.
    static std::unique_ptr<FirmwareDriver> create(bool acConnected, std::string& why);

    /// Says goodbye and ends the connection. Blocks at most 1.5 s, whatever the other side does.
    ~FirmwareDriver();

    FirmwareDriver(const FirmwareDriver&) = delete;
    FirmwareDriver& operator=(const FirmwareDriver&) = delete;

    /// Sets "Battery AC Connected", which is published. Thread: any.
    void setACConnected(bool connected);

    /// Sets "Dots Per Inch", which is published. Thread: any.
    void setDotsPerInch(std::uint32_t dots);

private:
    class Connection;

    FirmwareDriver(const std::string& devicePath, bool acConnected);

    void serve();

    os::LocalListener m_listener;
    const std::shared_ptr<ThreadFactory> m_threads;
    const std::shared_ptr<PublishingPropertyManager> m_manager;
    const std::shared_ptr<BoolProperty> m_acConnected;
    const std::shared_ptr<UInt32Property> m_dotsPerInch;
    std::thread m_server;
};
