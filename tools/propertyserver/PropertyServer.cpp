#include "tools/propertyserver/PropertyServer.h"

#include "picl/FrameReader.h"
#include "platform/os/DescriptorLimit.h"
#include "platform/os/LocalListener.h"
#include "platform/os/TcpConnection.h"
#include "property/BoolProperty.h"
#include "property/MakeProperty.h"
#include "property/UInt32Property.h"
#include "property/ValueText.h"
#include "tools/propertyserver/Connection.h"
#include "tools/propertyserver/Hub.h"
#include "tools/propertyserver/LocalProgram.h"

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <csignal>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

namespace asio = boost::asio;

namespace {

using asio::ip::tcp;
using Clock = Questions::Clock;
using Device = asio::local::stream_protocol;

// How long after its time an answer that does not come, or a frame that stays a part, is noticed.
constexpr std::chrono::milliseconds kTick{250};

// How long a message is looked for before the server sleeps.
constexpr std::chrono::microseconds kLookOut{20};

// In all connections together; then who is at fault for the most has to go.
constexpr std::size_t kMostWaiting = 128U << 20U;

// Until the host may have a descriptor again.
constexpr std::chrono::milliseconds kAcceptPause{200};

bool isResolution(std::string_view text) {
    try {
        const std::uint32_t dots = parseUInt32(text);
        return dots > 0 && dots <= PropertyServerOptions::kMostDotsPerInch;
    } catch (const std::logic_error&) { // it is no number
        return false;
    }
}

} // namespace

class PropertyServer::Loop {
public:
    explicit Loop(PropertyServerOptions options);
    ~Loop();

    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    [[nodiscard]] bool listen(std::string& why);
    void run();
    void stopOnSignals();

    asio::io_context context{1};
    std::shared_ptr<BoolProperty> acConnected;
    std::shared_ptr<UInt32Property> dotsPerInch;
    std::uint16_t tcpPort = 0;

private:
    [[nodiscard]] bool listenOnDevice(std::string& why);
    [[nodiscard]] bool listenOnTcp(std::string& why);
    template <typename Acceptor>
    void accept(Acceptor& acceptor, asio::steady_timer& pause);
    template <typename Socket>
    void admit(Socket socket);
    void take(Peer& peer, const JSONPICL& message);
    void takeLocal(const std::string& frame);
    void drop(Connection& connection, std::string_view why);
    void weigh(std::size_t from, std::size_t to);
    void checkRoom();
    void makeRoom();
    void tick();
    [[nodiscard]] bool endWaiting(Questions::Clock::time_point now);

    const PropertyServerOptions m_options;
    Turns m_turns{context};
    const Connection::Handler m_handler;
    std::optional<os::LocalListener> m_listener;
    Device::acceptor m_device{context};
    tcp::acceptor m_tcp{context};
    asio::steady_timer m_ticker{context};
    asio::steady_timer m_devicePause{context};
    asio::steady_timer m_tcpPause{context};
    asio::signal_set m_signals{context};
    Hub m_hub;
    LocalProgram m_firmware;
    std::set<std::shared_ptr<Connection>> m_connections;
    std::size_t m_waiting = 0; // bytes, in all connections
    bool m_isMakingRoom = false;
    bool m_isListening = false;
    bool m_isTicking = false;
};

PropertyServer::Loop::Loop(PropertyServerOptions options)
    : m_options(std::move(options)),
      m_handler{[this](Connection& connection, const JSONPICL& message) { take(connection, message); },
                [this] { tick(); },
                [this](Connection& connection, std::string_view why) { drop(connection, why); },
                [this](std::size_t from, std::size_t to) { weigh(from, to); }, m_turns},
      m_hub(
          [this](std::string_view sentence) {
              if (m_isListening) // the firmware is there before anybody else
                  m_options.log(sentence);
          },
          [this](Hub::Work work) { m_turns.request(std::move(work)); }),
      m_firmware(vocabulary::components::kFirmwareDriver, [this](std::string frame) {
          asio::post(context, [this, said = std::move(frame)] { takeLocal(said); });
      }) {
    namespace groups = vocabulary::groups;
    namespace properties = vocabulary::properties;
    acConnected =
        makeProperty<BoolProperty>(groups::kBattery, properties::kBatteryACConnected, m_options.acConnected);
    dotsPerInch =
        makeProperty<UInt32Property>(groups::kGeneral, properties::kDotsPerInch, m_options.dotsPerInch);
    m_hub.join(m_firmware);
    m_firmware.add(acConnected);
    m_firmware.add(dotsPerInch, isResolution);
    context.poll(); // nobody speaks for the firmware before it does
    context.restart();
}

PropertyServer::Loop::~Loop() {
    for (const std::shared_ptr<Connection>& connection : m_connections)
        connection->close();
}

bool PropertyServer::Loop::listen(std::string& why) {
    static_cast<void>(os::raiseDescriptorLimit()); // what it was is what there is
    m_isListening = listenOnDevice(why) && (m_options.tcpAddress.empty() || listenOnTcp(why));
    return m_isListening;
}

bool PropertyServer::Loop::listenOnDevice(std::string& why) {
    m_listener.emplace(m_options.devicePath);
    os::Descriptor socket = m_listener->isOpen() ? m_listener->duplicate() : os::Descriptor();
    if (!socket.isOpen()) {
        why = "cannot listen on " + m_options.devicePath + ": " +
              (m_listener->isOpen() ? "no descriptor is left" : m_listener->failure()) +
              "; name another place by --root";
        return false;
    }
    m_device.assign(Device(), socket.release());
    accept(m_device, m_devicePause);
    return true;
}

bool PropertyServer::Loop::listenOnTcp(std::string& why) {
    boost::system::error_code failure;
    const asio::ip::address address = asio::ip::make_address(m_options.tcpAddress, failure);
    const tcp::endpoint endpoint(address, m_options.tcpPort);
    const auto attempt = [&](auto&& step) {
        if (!failure)
            step();
    };
    attempt([&] { m_tcp.open(endpoint.protocol(), failure); });
    attempt([&] { m_tcp.set_option(tcp::acceptor::reuse_address(true), failure); });
    attempt([&] { m_tcp.bind(endpoint, failure); });
    attempt([&] { m_tcp.listen(asio::socket_base::max_listen_connections, failure); });
    if (failure) {
        why = "cannot listen on " + m_options.tcpAddress + ", port " + std::to_string(m_options.tcpPort) +
              ": " + failure.message() + "; name another place by --tcp-address or --tcp-port";
        return false;
    }
    tcpPort = m_tcp.local_endpoint(failure).port();
    accept(m_tcp, m_tcpPause);
    return true;
}

template <typename Acceptor>
void PropertyServer::Loop::accept(Acceptor& acceptor, asio::steady_timer& pause) {
    acceptor.async_accept([this, &acceptor, &pause](const boost::system::error_code& failure, auto socket) {
        if (failure == asio::error::operation_aborted)
            return;
        if (!failure)
            admit(std::move(socket));
        if (!failure || failure == asio::error::connection_aborted) {
            accept(acceptor, pause);
            return;
        }
        m_options.log("cannot take a connection: " + failure.message());
        pause.expires_after(kAcceptPause);
        pause.async_wait([this, &acceptor, &pause](const boost::system::error_code& cancelled) {
            if (!cancelled)
                accept(acceptor, pause);
        });
    });
}

template <typename Socket>
void PropertyServer::Loop::admit(Socket socket) {
    if (m_connections.size() >= m_options.mostPrograms) {
        m_options.log("turned a program away: " + std::to_string(m_options.mostPrograms) + " are connected");
        return;
    }
    if constexpr (std::is_same_v<Socket, tcp::socket>) {
        boost::system::error_code ignored; // it works without, if not as well
        socket.set_option(tcp::no_delay(true), ignored);
        os::noticeLostPeer(socket.native_handle());
    }
    const auto connection = std::make_shared<Connection>(std::move(socket), m_handler);
    m_connections.insert(connection);
    m_hub.join(*connection);
    connection->start();
}

void PropertyServer::Loop::take(Peer& peer, const JSONPICL& message) {
    m_hub.take(peer, message, Questions::Clock::now());
    if (m_hub.isWaiting())
        tick();
}

void PropertyServer::Loop::takeLocal(const std::string& frame) {
    FrameReader reader; // one for each: what one frame is does not concern the next
    reader.take(frame);
    JSONPICL message;
    while (reader.next(message) == FrameReader::Result::Message)
        m_hub.take(m_firmware, message, Questions::Clock::now());
}

void PropertyServer::Loop::drop(Connection& connection, std::string_view why) {
    m_hub.leave(connection, why);
    m_connections.erase(connection.shared_from_this());
    checkRoom();
}

void PropertyServer::Loop::weigh(std::size_t from, std::size_t to) {
    m_waiting += to - from;
    if (to > from)
        checkRoom();
}

void PropertyServer::Loop::checkRoom() {
    if (m_waiting > kMostWaiting && !std::exchange(m_isMakingRoom, true))
        asio::post(context, [this] { makeRoom(); }); // not inside of a call of a connection
}

void PropertyServer::Loop::makeRoom() {
    m_isMakingRoom = false;
    const auto heaviest =
        std::max_element(m_connections.begin(), m_connections.end(),
                         [](const auto& one, const auto& other) { return one->fault() < other->fault(); });
    if (m_waiting > kMostWaiting && heaviest != m_connections.end())
        (*heaviest)->end("takes more memory than any other, and there is no more");
}

// Runs only as long as something waits: a server that has nothing to do sleeps.
void PropertyServer::Loop::tick() {
    if (std::exchange(m_isTicking, true))
        return;
    m_ticker.expires_after(kTick);
    m_ticker.async_wait([this](const boost::system::error_code& cancelled) {
        m_isTicking = false;
        if (!cancelled && endWaiting(Questions::Clock::now()))
            tick();
    });
}

// Returns whether something goes on waiting.
bool PropertyServer::Loop::endWaiting(Questions::Clock::time_point now) {
    m_hub.expire(now);
    bool waits = m_hub.isWaiting();
    for (const std::shared_ptr<Connection>& connection : m_connections) {
        waits = waits || connection->isInsideFrame();
        if (connection->isStuck(now))
            connection->end("did not finish what it began to send");
    }
    return waits;
}

// Where a message comes the next one often follows: to look for it a moment longer, while others have the
// processor if they want it, costs less than to sleep and to be woken.
void PropertyServer::Loop::run() {
    while (context.run_one() > 0) {
        for (auto end = Clock::now() + kLookOut; Clock::now() < end && !context.stopped();) {
            std::this_thread::yield();
            if (context.poll() > 0)
                end = Clock::now() + kLookOut;
        }
    }
}

void PropertyServer::Loop::stopOnSignals() {
    m_signals.add(SIGINT);
    m_signals.add(SIGTERM);
    m_signals.async_wait([this](const boost::system::error_code& cancelled, int /*signal*/) {
        if (!cancelled)
            context.stop();
    });
}

std::unique_ptr<PropertyServer> PropertyServer::create(PropertyServerOptions options, std::string& why) {
    auto loop = std::make_unique<Loop>(std::move(options));
    if (!loop->listen(why))
        return nullptr;
    return std::unique_ptr<PropertyServer>(new PropertyServer(std::move(loop)));
}

PropertyServer::PropertyServer(std::unique_ptr<Loop> loop) : m_loop(std::move(loop)) {}
PropertyServer::~PropertyServer() = default;

void PropertyServer::run() { m_loop->run(); }
void PropertyServer::stop() { m_loop->context.stop(); }
void PropertyServer::stopOnSignals() { m_loop->stopOnSignals(); }
std::uint16_t PropertyServer::tcpPort() const { return m_loop->tcpPort; }

void PropertyServer::setACConnected(bool connected) {
    asio::post(m_loop->context, [loop = m_loop.get(), connected] { loop->acConnected->setValue(connected); });
}

void PropertyServer::setDotsPerInch(std::uint32_t dots) {
    asio::post(m_loop->context, [loop = m_loop.get(), dots] { loop->dotsPerInch->setValue(dots); });
}
