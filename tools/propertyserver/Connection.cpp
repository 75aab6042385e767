#include "tools/propertyserver/Connection.h"

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <utility>

namespace asio = boost::asio;

namespace {

// For what is more than a piece: an idle connection holds no large buffer.
std::array<char, 65536>& commonBuffer() {
    thread_local std::array<char, 65536> buffer;
    return buffer;
}

} // namespace

Connection::Connection(Socket socket, const Handler& handler)
    : m_socket(std::move(socket)), m_handler(handler), m_lastWhole(Clock::now()) {}

void Connection::start() {
    boost::system::error_code failure;
    m_socket.non_blocking(true, failure);
    if (failure)
        end("cannot be read: " + failure.message());
    else
        awaitBytes();
}

void Connection::awaitBytes() {
    if (m_hasEnded || m_parkedBytes > kMostParked || m_isReading || !m_whyGone.empty())
        return;
    m_isReading = true;
    m_socket.async_read_some(
        asio::buffer(m_piece),
        [self = shared_from_this()](const boost::system::error_code& failure, std::size_t count) {
            self->m_isReading = false;
            if (failure)
                self->endOf(failure);
            else
                self->takeBytes(count);
        });
}

void Connection::takeBytes(std::size_t count) {
    if (!isInsideFrame())
        m_lastWhole = Clock::now();
    m_reader.take({m_piece.data(), count});
    if (count == m_piece.size())
        readMore();
    if (m_reader.waiting() <= kLong || m_reader.nextFrame().empty()) {
        proceed();
        return;
    }
    m_isReading = true;
    weigh();
    m_handler.turns.request([self = shared_from_this()] {
        self->m_isReading = false;
        self->proceed();
    });
}

// Deals with what has come, and reads on.
void Connection::proceed() {
    takeMessages();
    if (isInsideFrame())
        m_handler.wait();
    weigh();
    awaitBytes();
}

// What else is there, up to a limit: the others have their turn.
void Connection::readMore() {
    boost::system::error_code failure;
    const std::size_t count = m_socket.read_some(asio::buffer(commonBuffer()), failure);
    if (!failure)
        m_reader.take({commonBuffer().data(), count});
}

void Connection::endOf(const boost::system::error_code& failure) {
    const bool isUsual = failure == asio::error::eof || failure == asio::error::connection_reset;
    m_whyGone = isUsual ? std::string(kHasGone) : "has gone: " + failure.message();
    if (m_parked.empty()) // else what it has sent before is done first
        end(m_whyGone);
}

void Connection::takeMessages() {
    while (!m_hasEnded && m_parkedBytes <= kMostParked) {
        const bool mayPark = m_holds || !m_parked.empty();
        std::string frame(mayPark ? m_reader.nextFrame() : std::string_view());
        JSONPICL message;
        const FrameReader::Result result = m_reader.next(message);
        if (result == FrameReader::Result::Refused)
            end("sent what is no message");
        if (result != FrameReader::Result::Message)
            return;
        m_lastWhole = Clock::now();
        const bool goes = message.has(keys::kDisconnect);
        if (mayPark && (goes || message.asks() || message.has(keys::kSetRequests)))
            park(std::move(frame));
        else
            m_handler.take(*this, message);
    }
}

// It waits as it came: what is made of it takes many times the memory.
void Connection::park(std::string frame) {
    m_parkedBytes += frame.size();
    m_parked.push_back(std::move(frame));
}

void Connection::hold(bool holds) {
    m_holds = holds;
    if (holds || m_parked.empty() || std::exchange(m_isResuming, true))
        return;
    asio::post(m_socket.get_executor(), [self = shared_from_this()] { // not inside of a call of the hub
        self->m_handler.turns.request([self] { self->takeParked(); });
    });
}

void Connection::takeParked() {
    m_isResuming = false;
    while (!m_hasEnded && !m_holds && !m_parked.empty()) {
        FrameReader reader;
        reader.take(m_parked.front());
        m_parkedBytes -= m_parked.front().size();
        m_parked.pop_front();
        m_lastWhole = Clock::now(); // nothing was read meanwhile
        JSONPICL message;
        if (reader.next(message) == FrameReader::Result::Message) // as it was before
            m_handler.take(*this, message);
    }
    if (m_parked.empty() && !m_whyGone.empty())
        end(m_whyGone);
    proceed();
}

bool Connection::isStuck(Clock::time_point now) const {
    return m_isReading && isInsideFrame() && now - m_lastWhole > kFramePatience;
}

void Connection::send(JSONPICL& message) {
    if (!hasRoom())
        return;
    m_outbox.send(message.toFrame());
    flush();
}

void Connection::answer(std::vector<SharedReport> reports, bool isForAll) {
    if (!hasRoom())
        return;
    m_outbox.answer(std::move(reports), isForAll);
    flush();
}

void Connection::publish(const SharedReport& report) {
    if (!hasRoom())
        return;
    m_outbox.publish(report);
    flushSoon();
}

// The changes that come in one piece leave in one frame.
void Connection::flushSoon() {
    if (std::exchange(m_isFlushing, true))
        return;
    asio::post(m_socket.get_executor(), [self = shared_from_this()] {
        self->m_isFlushing = false;
        self->flush();
    });
}

void Connection::flush() {
    while (!m_isFlushing && !m_hasEnded) {
        if (m_outbox.unmade() > kLong && !m_isClosing) {
            makeFrameInTurn();
            break;
        }
        const std::string_view bytes = m_outbox.next();
        if (bytes.empty())
            break;
        boost::system::error_code failure;
        const std::size_t count = m_socket.write_some(asio::buffer(bytes.data(), bytes.size()), failure);
        if (failure == asio::error::would_block) {
            awaitRoom();
        } else if (failure) { // it may have gone, but what it has sent before counts
            m_isDeaf = true;
            m_outbox = {};
        } else {
            m_outbox.sent(count);
        }
    }
    weigh();
}

void Connection::makeFrameInTurn() {
    m_isFlushing = true;
    m_handler.turns.request([self = shared_from_this()] {
        self->m_isFlushing = false;
        if (!self->m_hasEnded)
            static_cast<void>(self->m_outbox.next());
        self->flush();
    });
}

// Who has a long answer to read is not at fault; who asks on and on without reading is.
bool Connection::hasRoom() {
    if (m_outbox.waitingForReader() > kMostWaiting || m_outbox.waitingChanges() > kMostChanges)
        end("does not read what it is sent");
    return !m_hasEnded && !m_isDeaf;
}

void Connection::charge(std::ptrdiff_t bytes) {
    m_charged += static_cast<std::size_t>(bytes);
    weigh();
}

void Connection::weigh() {
    const std::size_t load =
        m_isClosing ? 0 : m_reader.waiting() + m_parkedBytes + m_outbox.waiting() + m_charged;
    m_handler.weigh(std::exchange(m_load, load), load);
}

std::size_t Connection::fault() const {
    constexpr std::size_t part = 16; // that counts, where nobody is at fault for more
    const std::size_t told = m_outbox.waiting() - m_outbox.waitingForReader();
    return m_isClosing ? 0 : m_load - std::min(m_load, told) + told / part;
}

void Connection::awaitRoom() {
    m_isFlushing = true;
    m_socket.async_wait(asio::socket_base::wait_write,
                        [self = shared_from_this()](const boost::system::error_code& /*cancelled*/) {
                            self->m_isFlushing = false;
                            self->flush();
                        });
}

void Connection::end(std::string_view why) {
    if (std::exchange(m_hasEnded, true))
        return;
    asio::post(m_socket.get_executor(), [self = shared_from_this(), reason = std::string(why)] {
        self->close();
        self->m_handler.end(*self, reason);
    });
}

void Connection::close() {
    boost::system::error_code ignored; // there is nobody left to tell
    m_isClosing = true;
    if (!m_hasEnded) {
        JSONPICL goodbye;
        goodbye.addDisconnect();
        m_isFlushing = false;
        flush(); // first the changes, which would stand behind it
        send(goodbye);
        m_hasEnded = true;
    }
    m_socket.close(ignored);
    weigh();
}
