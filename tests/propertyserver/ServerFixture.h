#pragma once

#include "picl/FrameReader.h"
#include "platform/OXPLStreamDriverInterface.h"
#include "platform/os/DeviceRoot.h"
#include "property/ExternalAppProperty.h"
#include "property/UInt32Property.h"
#include "tests/picl/Member.h"
#include "tests/picl/ScriptedPeer.h"
#include "tests/propertyserver/ShortHand.h"
#include "tools/propertyserver/PropertyServer.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

inline const std::string kFirmware(vocabulary::components::kFirmwareDriver.guid);
inline const std::string kDots = kFirmware + '/' + std::string(vocabulary::groups::kGeneral.guid) + ':' +
                                 std::string(vocabulary::properties::kDotsPerInch.guid);

inline void connectToDevice(const os::Descriptor& socket) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, os::devicePath("PRN0:").c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(socket.value(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

inline void connectToTcp(const os::Descriptor& socket, std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket.value(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

inline std::string travelling(const ShortHand& text) {
    JSONPICL message;
    write(text, message);
    return message.toFrame();
}

/// A program that a test speaks for, at its end of a connection.
class Program {
public:
    static constexpr const char* kEnd = "(the end)";

    explicit Program(os::Descriptor socket) : m_socket(std::move(socket)) {
        ::fcntl(m_socket.value(), F_SETFL, 0); // it may wait
        const timeval limit{.tv_sec = std::chrono::duration_cast<std::chrono::seconds>(kDeadline).count(),
                            .tv_usec = 0};
        ::setsockopt(m_socket.value(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }

    /// Connects to the device.
    Program() : Program(os::Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))) {
        connectToDevice(m_socket);
    }

    /// Writes @p bytes, as long as @p goesOn. Returns whether all went out.
    bool write(std::string_view bytes, const std::atomic<bool>& goesOn) const {
        while (!bytes.empty() && goesOn) {
            const ssize_t count =
                ::send(m_socket.value(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count > 0)
                bytes.remove_prefix(static_cast<std::size_t>(count));
            else if (errno == EAGAIN)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            else
                return false;
        }
        return goesOn;
    }

    void says(const ShortHand& text) const {
        const std::string frame = travelling(text);
        EXPECT_EQ(::send(m_socket.value(), frame.data(), frame.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(frame.size()));
    }

    /// Returns the next message, kEnd at the end of the stream, nothing if none comes by the deadline.
    ShortHand hears() {
        JSONPICL message;
        std::string bytes(65536, '\0');
        while (m_reader.next(message) != FrameReader::Result::Message) {
            const ssize_t count = ::recv(m_socket.value(), bytes.data(), bytes.size(), 0);
            if (count == 0)
                return kEnd;
            if (count < 0)
                return errno == EAGAIN ? "" : kEnd;
            m_reader.take({bytes.data(), static_cast<std::size_t>(count)});
        }
        return message.has(keys::kDisconnect) ? "goodbye" : shortHand(message);
    }

    /// Returns what comes up to and with a message that has @p text, or the end.
    ShortHand hearsUpTo(const std::string& text) {
        ShortHand all;
        for (ShortHand heard = hears();; heard = hears()) {
            all += heard + '\n';
            if (heard.empty() || heard == kEnd || heard.find(text) != std::string::npos)
                return all;
        }
    }

    /// Returns what the firmware says; with it all that was said before is done.
    ShortHand asksFirmware() {
        says("get " + kDots);
        return hearsUpTo(kDots);
    }

private:
    os::Descriptor m_socket;
    FrameReader m_reader;
};

using Mirror = ExternalAppProperty<UInt32Property, unsigned int>;

class Server : public DeviceRootTest {
protected:
    Server() {
        std::filesystem::create_directory(root() / "store");
        std::filesystem::create_directory(root() / "dev");
        start();
    }

    ~Server() override { stop(); }

    void start() {
        std::string why;
        PropertyServerOptions options;
        options.devicePath = os::devicePath("PRN0:");
        options.tcpAddress = "127.0.0.1";
        options.log = [this](std::string_view sentence) {
            notTaken += sentence.starts_with("cannot take a connection") ? 1 : 0;
        };
        server = PropertyServer::create(options, why);
        ASSERT_TRUE(server) << why;
        m_thread = std::thread([this] { server->run(); });
    }

    void stop() {
        if (!server)
            return;
        server->stop();
        m_thread.join();
        server.reset();
    }

    std::unique_ptr<PropertyServer> server;
    std::atomic<int> notTaken = 0; // connections, each time that it was tried

private:
    std::thread m_thread;
};

inline std::unique_ptr<Member> makeMember(const std::string& name) {
    auto member = std::make_unique<Member>(
        name, std::make_shared<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream));
    member->join();
    return member;
}

inline std::unique_ptr<Mirror> mirrorOf(const Member& asking, const std::string& owner,
                                        const std::string& guid) {
    return std::make_unique<Mirror>(0U, asking.agent, asking.manager, owner, guid, "a name", "G", "a group",
                                    20000U);
}

/// Has @p asking see, watch and set a new property of @p owner.
inline void talk(Member& owner, const std::string& name, Member& asking) {
    static std::atomic<int> properties = 0;
    const std::string guid = "N" + std::to_string(++properties);
    const auto number = owner.add<UInt32Property>(guid, 1U);
    const auto mirror = mirrorOf(asking, name, guid);
    EXPECT_EQ(mirror->getValue(), 1U);
    number->setValue(2);
    EXPECT_TRUE(eventually([&] { return mirror->getValue() == 2; }));
    mirror->setValue(3);
    EXPECT_TRUE(eventually([&] { return number->getValue() == 3; }));
    EXPECT_TRUE(eventually([&] { return mirror->getValue() == 3; }));
}
