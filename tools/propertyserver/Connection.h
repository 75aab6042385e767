#pragma once

#include "picl/FrameReader.h"
#include "tools/propertyserver/Outbox.h"
#include "tools/propertyserver/Peer.h"
#include "tools/propertyserver/Turns.h"

#include <array>
#include <boost/asio/generic/stream_protocol.hpp>
#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

/// A program's connection: bytes to messages for the server, messages to bytes for the program.
///
/// Never waits: what the program does not take stays in the outbox, up to a limit; what it sends is read a
/// piece at a time, and what costs much time is done in turn with that of the others. Belongs to the thread
/// of the event loop.
class Connection final : public Peer, public std::enable_shared_from_this<Connection> {
public:
    using Socket = boost::asio::generic::stream_protocol::socket;
    using Clock = std::chrono::steady_clock;

    /// With how much waiting to be sent, but for changes, a message or an answer of any length is still
    /// taken: several of the longest frames.
    static constexpr std::size_t kMostWaiting = 32U << 20U;

    /// With how many bytes of changes waiting it is too slow for ever: each is the last of its property.
    static constexpr std::size_t kMostChanges = 64U << 20U;

    /// With how much waiting what others ask and set is still sent: well below, for that is not its fault.
    static constexpr std::size_t kMostOfOthers = kMostWaiting / 2;

    /// How much of what it asks and sets waits while it is held, but for one message; behind more nothing is
    /// read. What it answers passes by.
    static constexpr std::size_t kMostParked = 256U << 10U;

    /// With how many bytes a piece of work is long, and waits for its turn: half a millisecond, or less.
    static constexpr std::size_t kLong = 8192;

    /// How long the rest of a frame may take.
    static constexpr std::chrono::seconds kFramePatience{10};

    /// What the server does with a connection.
    struct Handler {
        std::function<void(Connection&, const JSONPICL&)> take; ///< A message has come.
        std::function<void()> wait;                             ///< A part of a frame waits for the rest.
        std::function<void(Connection&, std::string_view)> end; ///< It is over; says why.
        std::function<void(std::size_t from, std::size_t to)> weigh; ///< Its load() changes.
        Turns& turns;                                                ///< Of all connections.
    };

    /// Takes over @p socket. @p handler outlives the connection.
    Connection(Socket socket, const Handler& handler);

    /// Begins to read.
    void start();

    void send(JSONPICL& message) override;
    [[nodiscard]] bool takesMore() const override { return m_outbox.waitingForReader() <= kMostOfOthers; }
    void answer(std::vector<SharedReport> reports, bool isForAll) override;
    void publish(const SharedReport& report) override;
    void hold(bool holds) override;
    void end(std::string_view why) override;
    void charge(std::ptrdiff_t bytes) override;

    /// Returns whether a part of a frame has waited for the rest too long. Restarts the clock of one that
    /// came whole meanwhile.
    [[nodiscard]] bool isStuck(Clock::time_point now) const;

    /// Returns whether a part of a frame waits for the rest.
    [[nodiscard]] bool isInsideFrame() const {
        return m_reader.waiting() > 0 && m_reader.nextFrame().empty();
    }

    /// Returns how many bytes wait here for the program, or for the server, with what the hub keeps for it.
    [[nodiscard]] std::size_t load() const { return m_load; }

    /// Returns how much of the load it has to answer for: hardly for what others tell, and it has yet to
    /// read.
    [[nodiscard]] std::size_t fault() const;

    /// Says goodbye, as far as the program takes it at once, and closes.
    void close();

private:
    void awaitBytes();
    void takeBytes(std::size_t count);
    void readMore();
    void endOf(const boost::system::error_code& failure);
    void proceed();
    void takeMessages();
    void takeParked();
    void park(std::string frame);
    void flush();
    void makeFrameInTurn();
    [[nodiscard]] bool hasRoom();
    void flushSoon();
    void awaitRoom();

    void weigh();

    Socket m_socket;
    const Handler& m_handler;
    std::array<char, 1024> m_piece{}; // a message as a rule
    FrameReader m_reader;
    Outbox m_outbox;
    Clock::time_point m_lastWhole;    // when there was no part of a frame left
    std::deque<std::string> m_parked; // frames that came while the program was held
    std::size_t m_parkedBytes = 0;
    std::string m_whyGone;     // absent as long as the program may send more
    std::size_t m_charged = 0; // by the hub
    std::size_t m_load = 0;    // as it was told
    bool m_holds = false;
    bool m_isResuming = false; // a turn to take what is parked is under way
    bool m_isDeaf = false;     // takes nothing more, but may have sent something before
    bool m_isReading = false;  // a wait for bytes, or for a turn to read them, is under way
    bool m_isFlushing = false; // a wait for room, or for a turn, or a flush, is under way
    bool m_isClosing = false;
    bool m_hasEnded = false;
};
