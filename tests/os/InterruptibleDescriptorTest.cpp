#include "tests/support/ProbedThread.h"

#include "platform/os/InterruptibleDescriptor.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using os::Descriptor;
using os::InterruptibleDescriptor;
using os::Transfer;

constexpr std::size_t kMoreThanFits = 10'000'000;

struct Pair {
    Descriptor near;
    Descriptor far;
};

Pair sockets() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Pair pipeToWrite() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    return {Descriptor(ends[1]), Descriptor(ends[0])};
}

TEST(InterruptibleDescriptor, GivesTheNumberBackAtCloseAndNotBefore) {
    Pair pair = sockets();
    const int number = pair.near.value();
    InterruptibleDescriptor stream(std::move(pair.near));
    EXPECT_NE(::fcntl(number, F_GETFD), -1);
    Transfer result;
    {
        const ProbedThread reading([&] {
            char byte = 0;
            result = stream.read(&byte, 1);
        });
        EXPECT_TRUE(reading.fallsAsleep());
        stream.close();
        EXPECT_EQ(::fcntl(number, F_GETFD), -1);
    }
    EXPECT_EQ(result.failure, std::errc::operation_canceled);
    EXPECT_FALSE(stream.isOpen());
}

TEST(InterruptibleDescriptor, MayBeClosedAtAnyMomentOfAReadAndAWrite) {
    for (int round = 0; round < 200; ++round) {
        Pair pair = sockets();
        InterruptibleDescriptor stream(std::move(pair.near));
        std::atomic<int> begun = 0;
        std::thread reading([&] {
            ++begun;
            for (char byte = 0; !stream.read(&byte, 1).failure;) {
            }
        });
        std::thread writing([&] {
            ++begun;
            while (!stream.write("x", 1).failure) {
            }
        });
        while (begun < 2)
            std::this_thread::yield();
        stream.close();
        reading.join();
        writing.join();
    }
}

TEST(InterruptibleDescriptor, AWriteWithoutProgressTimesOutAndSaysHowFarItCame) {
    Pair pair = sockets();
    InterruptibleDescriptor stream(std::move(pair.near), 20ms);
    const std::string bytes(kMoreThanFits, 'x');
    const Transfer result = stream.write(bytes.data(), bytes.size());
    EXPECT_EQ(result.failure, std::errc::timed_out);
    EXPECT_GT(result.count, 0U);
    EXPECT_LT(result.count, bytes.size());
    EXPECT_TRUE(stream.isOpen()) << "what that means is the caller's to say";

    std::string room(result.count, '\0');
    EXPECT_EQ(::recv(pair.far.value(), room.data(), room.size(), MSG_WAITALL),
              static_cast<ssize_t>(room.size()));
    EXPECT_EQ(stream.write("x", 1).count, 0U) << "nothing follows what broke off";
}

TEST(InterruptibleDescriptor, ReadsNothingAtThePeersEnd) {
    Pair pair = sockets();
    InterruptibleDescriptor stream(std::move(pair.near));
    { const Descriptor gone = std::move(pair.far); }
    char byte = 0;
    const Transfer result = stream.read(&byte, 1);
    EXPECT_FALSE(result.failure);
    EXPECT_EQ(result.count, 0U);
}

TEST(InterruptibleDescriptor, APeerThatHasGoneFailsTheWriteWithoutASignal) {
    for (const auto& make : {sockets, pipeToWrite}) {
        Pair pair = make();
        InterruptibleDescriptor stream(std::move(pair.near));
        { const Descriptor gone = std::move(pair.far); }
        EXPECT_EQ(stream.write("x", 1).failure, std::errc::broken_pipe);
        sigset_t signals;
        ::sigpending(&signals);
        EXPECT_EQ(::sigismember(&signals, SIGPIPE), 0);
        ::pthread_sigmask(SIG_BLOCK, nullptr, &signals);
        EXPECT_EQ(::sigismember(&signals, SIGPIPE), 0) << "the thread's mask is as before";
    }
}

TEST(InterruptibleDescriptor, IsClosedWithoutADescriptor) {
    InterruptibleDescriptor absent{Descriptor()};
    char byte = 0;
    EXPECT_FALSE(absent.isOpen());
    EXPECT_TRUE(absent.read(&byte, 1).failure);
    EXPECT_TRUE(absent.write(&byte, 0).failure);
    absent.close();
}

} // namespace
