#include "platform/os/TcpConnection.h"
#include "tests/support/LoopbackPort.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <vector>

namespace {

using namespace std::chrono_literals;

const std::uint32_t kLoopback = htonl(INADDR_LOOPBACK);

TEST(TcpConnection, SendsSmallWritesAtOnce) {
    LoopbackPort port;
    port.listen();
    const os::Descriptor connection = os::openTcpConnection(kLoopback, port.number());
    int noDelay = 0;
    socklen_t size = sizeof noDelay;
    EXPECT_EQ(::getsockopt(connection.value(), IPPROTO_TCP, TCP_NODELAY, &noDelay, &size), 0);
    EXPECT_NE(noDelay, 0);
}

TEST(TcpConnection, GivesUpOnAPeerThatDoesNotAnswer) {
    LoopbackPort port;
    port.listen(0); // once its queue is full, nobody answers
    std::vector<os::Descriptor> queue;
    do
        queue.push_back(os::openTcpConnection(kLoopback, port.number(), 50ms));
    while (queue.back().isOpen() && queue.size() < 10);
    EXPECT_FALSE(queue.back().isOpen());
}

} // namespace
