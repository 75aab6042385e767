#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

class PropertyServer;

/// The printer's firmware as the application sees it: a property server on the device "PRN0:" of the device
/// root that owns the values which the application asks the component "Firmware Driver" for, on a thread of
/// its own.
class FirmwareDriver {
public:
    /// Listens. Returns null on failure and puts a sentence about it into @p why.
    static std::unique_ptr<FirmwareDriver> create(bool acConnected, std::string& why);

    /// Says goodbye and ends the connections. Does not wait for the other sides.
    ~FirmwareDriver();

    FirmwareDriver(const FirmwareDriver&) = delete;
    FirmwareDriver& operator=(const FirmwareDriver&) = delete;

    /// Sets "Battery AC Connected", which is published. Thread: any.
    void setACConnected(bool connected);

    /// Sets "Dots Per Inch", which is published. Thread: any.
    void setDotsPerInch(std::uint32_t dots);

private:
    explicit FirmwareDriver(std::unique_ptr<PropertyServer> server);

    const std::unique_ptr<PropertyServer> m_server;
    std::thread m_thread;
};
