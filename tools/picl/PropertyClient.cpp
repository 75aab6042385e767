#include "tools/picl/PropertyClient.h"

#include "picl/FrameReader.h"

#include <boost/asio.hpp>

#include <array>
#include <csignal>
#include <optional>
#include <utility>
#include <vector>

namespace asio = boost::asio;
using Clock = PropertyClient::Clock;
using ErrorCode = boost::system::error_code;

namespace {

constexpr std::size_t kReadSize = 65536;
constexpr std::chrono::milliseconds kRetryPause(10);

using Endpoint = asio::generic::stream_protocol::endpoint;
using Socket = asio::generic::stream_protocol::socket;

bool isNobodyThere(const ErrorCode& failure) {
    return failure == asio::error::connection_refused ||
           failure == boost::system::errc::no_such_file_or_directory ||
           failure == boost::system::errc::not_a_directory;
}

std::string sentenceFor(const ServerPlace& place, const ErrorCode& failure) {
    constexpr auto kHint = "start one with \"picl serve\", or name its place by --root or --tcp";
    if (isNobodyThere(failure))
        return "no property server listens on " + place.description() + "; " + kHint;
    if (failure == asio::error::timed_out)
        return "the property server on " + place.description() +
               " takes no connection; wait for longer with --timeout, or name another place by --root or "
               "--tcp";
    return "cannot connect to " + place.description() + ": " + failure.message() + "; " + kHint;
}

} // namespace

/// The socket and its loop, which runs only inside of calls. A read is always under way.
class PropertyClient::Connection {
public:
    ErrorCode connect(const ServerPlace& place, Clock::time_point deadline) {
        ErrorCode failure;
        const std::vector<Endpoint> endpoints = resolve(place, deadline, failure);
        for (const Endpoint& endpoint : endpoints) {
            failure = connectTo(endpoint, deadline);
            if (!failure) {
                read();
                break;
            }
        }
        return failure;
    }

    void interruptOnSignals() {
        m_signals.add(SIGINT);
        m_signals.add(SIGTERM);
        m_signals.async_wait([this](const ErrorCode& failure, int) { m_isInterrupted = !failure; });
    }

    Result send(const std::string& frame, Clock::time_point deadline) {
        std::optional<ErrorCode> outcome;
        asio::async_write(m_socket, asio::buffer(frame),
                          [&](const ErrorCode& failure, std::size_t) { outcome = failure; });
        const Result result = runUntil(deadline, [&] { return outcome.has_value(); });
        if (!outcome) { // the frame ends with this call, and the stream is out of step
            m_socket.close();
            run(Clock::time_point::max(), [&] { return outcome.has_value(); });
            return result;
        }
        return *outcome ? Result::Ended : Result::Done;
    }

    Result receive(JSONPICL& message, Clock::time_point deadline) {
        return runUntil(deadline, [&] {
            switch (m_reader.next(message)) {
            case FrameReader::Result::Message:
                return true;
            case FrameReader::Result::Refused:
                m_end = Result::Refused;
                return false;
            case FrameReader::Result::Incomplete:
                return false;
            }
            return false;
        });
    }

private:
    std::vector<Endpoint> resolve(const ServerPlace& place, Clock::time_point deadline, ErrorCode& failure) {
        if (place.host.empty())
            return localEndpoint(place.description(), failure);
        std::vector<Endpoint> endpoints;
        std::optional<ErrorCode> outcome;
        asio::ip::tcp::resolver resolver(m_loop);
        resolver.async_resolve(place.host, std::to_string(place.port),
                               [&](const ErrorCode& code, const auto& found) {
                                   outcome = code;
                                   for (const auto& entry : found)
                                       endpoints.emplace_back(entry.endpoint());
                               });
        run(deadline, [&] { return outcome.has_value(); });
        if (!outcome) {
            resolver.cancel();
            run(Clock::time_point::max(), [&] { return outcome.has_value(); });
            outcome = asio::error::timed_out;
        }
        failure = *outcome;
        return failure ? std::vector<Endpoint>() : endpoints;
    }

    static std::vector<Endpoint> localEndpoint(const std::string& path, ErrorCode& failure) {
        try {
            return {asio::local::stream_protocol::endpoint(path)};
        } catch (const boost::system::system_error& tooLong) {
            failure = tooLong.code();
            return {};
        }
    }

    ErrorCode connectTo(const Endpoint& endpoint, Clock::time_point deadline) {
        for (;;) {
            const ErrorCode failure = tryToConnect(endpoint, deadline);
            // So says the host where the queue of a local listener is full.
            if (failure != asio::error::try_again)
                return failure;
            if (Clock::now() >= deadline)
                return asio::error::timed_out;
            asio::steady_timer pause(m_loop, kRetryPause);
            pause.wait();
        }
    }

    ErrorCode tryToConnect(const Endpoint& endpoint, Clock::time_point deadline) {
        std::optional<ErrorCode> outcome;
        m_socket = Socket(m_loop);
        m_socket.async_connect(endpoint, [&](const ErrorCode& failure) { outcome = failure; });
        run(deadline, [&] { return outcome.has_value(); });
        if (!outcome) {
            m_socket.close();
            run(Clock::time_point::max(), [&] { return outcome.has_value(); });
            return asio::error::timed_out;
        }
        return *outcome;
    }

    void read() {
        m_socket.async_read_some(asio::buffer(m_bytes), [this](const ErrorCode& failure, std::size_t count) {
            m_reader.take({m_bytes.data(), count});
            if (failure)
                m_end = Result::Ended;
            else
                read();
        });
    }

    /// Runs handlers until @p isDone, or the deadline.
    template <typename Condition>
    void run(Clock::time_point deadline, const Condition& isDone) {
        m_loop.restart();
        while (!isDone() && m_loop.run_one_until(deadline) != 0) {
        }
    }

    /// The same, with the result as a caller sees it; what has come counts before the end.
    template <typename Condition>
    Result runUntil(Clock::time_point deadline, const Condition& isDone) {
        bool done = false;
        run(deadline, [&] { return m_isInterrupted || (done = isDone()) || m_end; });
        if (std::exchange(m_isInterrupted, false))
            return Result::Interrupted;
        return done ? Result::Done : m_end.value_or(Result::TimedOut);
    }

    asio::io_context m_loop{1};
    Socket m_socket{m_loop};
    asio::signal_set m_signals{m_loop};
    std::array<char, kReadSize> m_bytes{};
    FrameReader m_reader;
    std::optional<Result> m_end;
    bool m_isInterrupted = false;
};

std::unique_ptr<PropertyClient> PropertyClient::connect(const ServerPlace& place, Clock::time_point deadline,
                                                        std::string& why) {
    auto connection = std::make_unique<Connection>();
    const ErrorCode failure = connection->connect(place, deadline);
    if (failure) {
        why = sentenceFor(place, failure);
        return nullptr;
    }
    return std::unique_ptr<PropertyClient>(new PropertyClient(std::move(connection)));
}

PropertyClient::PropertyClient(std::unique_ptr<Connection> connection)
    : m_connection(std::move(connection)) {}

PropertyClient::~PropertyClient() = default;

void PropertyClient::interruptOnSignals() { m_connection->interruptOnSignals(); }

PropertyClient::Result PropertyClient::send(JSONPICL& message, Clock::time_point deadline) {
    return m_connection->send(message.toFrame(), deadline);
}

PropertyClient::Result PropertyClient::receive(JSONPICL& message, Clock::time_point deadline) {
    return m_connection->receive(message, deadline);
}
