#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

/// Where the server listens, and what it starts with.
struct PropertyServerOptions {
    static constexpr std::uint32_t kMostDotsPerInch = 10'000; ///< The least is 1.

    std::string devicePath;          ///< Of the Unix socket, a path of the host.
    std::string tcpAddress;          ///< IPv4 or IPv6, in numbers; empty for no TCP.
    std::uint16_t tcpPort = 0;       ///< 0: one that is free.
    std::size_t mostPrograms = 4096; ///< Connected at a time; those beyond are turned away.
    bool acConnected = true;
    std::uint32_t dotsPerInch = 300; ///< What else it is set to is not taken.
    std::function<void(std::string_view)> log = [](std::string_view /*sentence*/) {};
};

/// The property server: programs connect to it, and it hands their messages to where they belong. It is
/// itself the program "Firmware Driver", with "Battery AC Connected" and "Dots Per Inch".
///
/// One event loop on one thread does all of it. So that no program delays or harms the others none is waited
/// for, what is long takes turns, what is kept for one is bounded, and who breaks the rules loses its
/// connection.
class PropertyServer {
public:
    /// Listens. Returns null on failure and puts a sentence about it into @p why. Does not block.
    static std::unique_ptr<PropertyServer> create(PropertyServerOptions options, std::string& why);

    ~PropertyServer();

    PropertyServer(const PropertyServer&) = delete;
    PropertyServer& operator=(const PropertyServer&) = delete;

    /// Serves. Blocks until stop(), or one of the signals of stopOnSignals(); then every program that
    /// has read what it was sent is told goodbye.
    void run();

    /// Ends run(). Thread: any. Does not block.
    void stop();

    /// Has SIGINT and SIGTERM end run().
    void stopOnSignals();

    /// Returns the port on which it listens, 0 without TCP.
    [[nodiscard]] std::uint16_t tcpPort() const;

    /// Set what the firmware tells. Thread: any. Do not block.
    void setACConnected(bool connected);
    void setDotsPerInch(std::uint32_t dots);

private:
    class Loop;

    explicit PropertyServer(std::unique_ptr<Loop> loop);

    const std::unique_ptr<Loop> m_loop;
};
