#include "platform/SocketFactory.h"
#include "tests/support/LoopbackPort.h"
#include "tests/support/ProbedThread.h"

#include <array>
#include <bit>
#include <netinet/in.h>
#include <string_view>
#include <sys/socket.h>

namespace {

using namespace std::chrono_literals;

struct AddressRow {
    const char* name;
    std::string_view text;
    std::array<std::uint8_t, 4> octets;
    bool valid;
};

class AddressTexts : public ::testing::TestWithParam<AddressRow> {};

TEST_P(AddressTexts, GiveOctetsOrNone) {
    const IPv4Address address{std::string(GetParam().text)};
    EXPECT_EQ(address.isValid(), GetParam().valid);
    EXPECT_EQ(std::bit_cast<decltype(AddressRow::octets)>(address.toUInt32()), GetParam().octets);
}

constexpr AddressRow kAddresses[] = {
    {"Plain", "192.168.1.255", {192, 168, 1, 255}, true},
    {"APointAtTheEnd", "1.2.3.4.", {1, 2, 3, 4}, true},
    {"ZerosInFrontAreDecimal", "010.001.000.000000001", {10, 1, 0, 1}, true},
    {"AllZero", "0.0.0.0", {}, true},
    {"Empty", "", {}, false},
    {"Above255", "192.168.1.256", {}, false},
    {"FarAbove255", "4294967297.2.3.4", {}, false},
    {"TooFew", "1.2.3", {}, false},
    {"TooFewWithAPointAtTheEnd", "1.2.3.", {}, false},
    {"TooMany", "1.2.3.4.5", {}, false},
    {"TwoPointsAtTheEnd", "1.2.3.4..", {}, false},
    {"EmptyInTheMiddle", "1..3.4", {}, false},
    {"EmptyAtTheStart", ".2.3.4", {}, false},
    {"ALetter", "1.2.x.4", {}, false},
    {"ASign", "1.2.3.-4", {}, false},
    {"ABlank", "1.2.3.4 ", {}, false},
};

INSTANTIATE_TEST_SUITE_P(, AddressTexts, ::testing::ValuesIn(kAddresses),
                         [](const auto& row) { return row.param.name; });

class Sockets : public ::testing::Test {
protected:
    Sockets() { port.listen(); }

    void connect(std::chrono::milliseconds stallLimit = 5s) {
        socket =
            std::make_unique<WindowsTCPClientSocket>(IPv4Address("127.0.0.1"), port.number(), stallLimit);
        ASSERT_TRUE(socket->isConnected());
        peer = port.accept();
    }
    void send(std::string_view bytes) const {
        EXPECT_EQ(::send(peer.value(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    }
    // The socket's own descriptor, found by its peer's port.
    [[nodiscard]] int descriptor() const {
        for (int candidate = 0; candidate < 1024; ++candidate) {
            sockaddr_in address{};
            socklen_t size = sizeof address;
            if (::getpeername(candidate, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
                address.sin_port == htons(port.number()))
                return candidate;
        }
        return -1;
    }
    void fillSendBuffer() const {
        const std::vector<char> bytes(100'000);
        while (::send(descriptor(), bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
        }
    }
    std::string read(std::int32_t size) {
        std::string result(static_cast<std::size_t>(size), '\0');
        count = socket->read(result.data(), size);
        return result.substr(0, static_cast<std::size_t>(std::max(count, 0)));
    }

    LoopbackPort port;
    std::unique_ptr<WindowsTCPClientSocket> socket;
    os::Descriptor peer;
    std::int32_t count = 0; // of the last read()
};

auto openDescriptors() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

TEST_F(Sockets, AreNotMadeWithoutAPeer) {
    const LoopbackPort nobody;
    const auto before = openDescriptors();
    const SocketFactory factory;
    EXPECT_EQ(factory.createClientSocket(IPv4Address("127.0.0.1"), nobody.number()), nullptr);
    for (const char* nowhere : {"localhost", "0.0.0.0"})
        EXPECT_EQ(factory.createClientSocket(IPv4Address(nowhere), port.number()), nullptr) << nowhere;
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_NE(factory.createClientSocket(IPv4Address("127.0.0.1"), port.number()), nullptr);
}

TEST_F(Sockets, FillTheBufferFromSeveralSegments) {
    connect();
    send("abc");
    std::string got;
    {
        const ProbedThread reading([&] { got = read(6); });
        EXPECT_TRUE(reading.fallsAsleep());
        send("defgh");
    }
    EXPECT_EQ(got, "abcdef");
    EXPECT_EQ(read(0), "");
    EXPECT_EQ(count, 0);
    EXPECT_EQ(read(2), "gh");
}

TEST_F(Sockets, GiveAShortCountAtThePeersEndAndFailAfterwards) {
    connect();
    send("half");
    peer = os::Descriptor();
    EXPECT_EQ(read(8), "half");
    EXPECT_TRUE(socket->isConnected());
    read(8);
    EXPECT_EQ(count, StreamFailed);
    EXPECT_FALSE(socket->isConnected());
}

TEST_F(Sockets, AreDisconnectedWhenAWriteTimesOutAfterItsFirstByte) {
    connect(20ms);
    const std::vector<std::uint8_t> moreThanFits(20'000'000);
    EXPECT_EQ(socket->writeBytes(moreThanFits), StreamFailed);
    EXPECT_FALSE(socket->isConnected());
}

TEST_F(Sockets, StayConnectedWhenAWriteTimesOutBeforeItsFirstByte) {
    connect(20ms);
    fillSendBuffer();
    std::int32_t written = 0;
    do // one byte may still fit
        written = socket->write("x", 1);
    while (written == 1);
    EXPECT_EQ(written, StreamRetry);
    EXPECT_TRUE(socket->isConnected());
}

TEST_F(Sockets, EndABlockedReadAtClose) {
    connect();
    send("abc");
    {
        const ProbedThread reading([&] { read(6); });
        EXPECT_TRUE(reading.fallsAsleep());
        socket->close();
    }
    EXPECT_EQ(count, StreamFailed) << "what came before is given up";
    EXPECT_FALSE(socket->isConnected());
}

} // namespace
