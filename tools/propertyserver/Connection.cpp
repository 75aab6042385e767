#include "tools/propertyserver/Connection.h"

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

// Less is not worth a timer.
constexpr std::chrono::milliseconds kFreeOfRest{2};

} // namespace

Connection::Connection(Socket socket, const Handler& handler)
    : m_socket(std::move(socket)),
      m_rest(m_socket.get_executor()),
      m_handler(handler),
      m_lastWhole(Clock::now()) {}

void Connection::start() {
    boost::system::error_code failure;
    m_socket.non_blocking(true, failure);
    if (failure)
        end("cannot be read: " + failure.message());
    else
        awaitBytes();
}

void Connection::awaitBytes() {
    if (m_hasEnded || m_parkedBytes > kMostParked || m_isReading)
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
    const Clock::time_point begin = Clock::now();
    if (!isInsideFrame())
        m_lastWhole = begin;
    m_reader.take({m_piece.data(), count});
    if (count == m_piece.size())
        readMore();
    takeMessages();
    if (isInsideFrame())
        m_handler.wait();
    rest(Clock::now() - begin);
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
    end(isUsual ? std::string(kHasGone) : "has gone: " + failure.message());
}

void Connection::takeMessages() {
    while (!m_hasEnded && m_parkedBytes <= kMostParked) {
        auto message = std::make_unique<JSONPICL>();
        const std::size_t before = m_reader.waiting();
        const FrameReader::Result result = m_reader.next(*message);
        if (result == FrameReader::Result::Refused)
            end("sent what is no message");
        if (result != FrameReader::Result::Message)
            return;
        m_lastWhole = Clock::now();
        if ((m_holds || !m_parked.empty()) && (message->asks() || message->has(keys::kSetRequests))) {
            m_parked.push_back({std::move(message), before - m_reader.waiting()});
            m_parkedBytes += m_parked.back().bytes;
        } else {
            m_handler.take(*this, *message);
        }
    }
}

// The others have their turn as long as this one had.
void Connection::rest(Clock::duration spent) {
    if (spent < kFreeOfRest || m_hasEnded) {
        awaitBytes();
        return;
    }
    m_isReading = true;
    m_rest.expires_after(spent);
    m_rest.async_wait([self = shared_from_this()](const boost::system::error_code& /*cancelled*/) {
        self->m_isReading = false;
        self->awaitBytes();
    });
}

void Connection::hold(bool holds) {
    m_holds = holds;
    if (holds)
        return;
    asio::post(m_socket.get_executor(), [self = shared_from_this()] { // not inside of a call of the hub
        self->takeParked();
    });
}

void Connection::takeParked() {
    const Clock::time_point begin = Clock::now();
    while (!m_hasEnded && !m_holds && !m_parked.empty()) {
        const Parked parked = std::move(m_parked.front());
        m_parked.pop_front();
        m_parkedBytes -= parked.bytes;
        m_handler.take(*this, *parked.message);
    }
    takeMessages();
    if (!m_isReading)
        rest(Clock::now() - begin);
}

bool Connection::isStuck(Clock::time_point now) const {
    return isInsideFrame() && now - m_lastWhole > kFramePatience;
}

void Connection::send(JSONPICL& message) {
    if (!hasRoom())
        return;
    m_outbox.send(message.toFrame());
    flush();
}

void Connection::answer(const std::vector<SharedReport>& reports, bool isForAll) {
    if (!hasRoom())
        return;
    m_outbox.answer(reports, isForAll);
    flush();
}

void Connection::publish(const SharedReport& report) {
    if (m_hasEnded || m_isDeaf)
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
    if (m_isFlushing)
        return;
    while (!m_hasEnded) {
        const std::string_view bytes = m_outbox.next();
        if (bytes.empty())
            return;
        boost::system::error_code failure;
        const std::size_t count = m_socket.write_some(asio::buffer(bytes.data(), bytes.size()), failure);
        if (failure == asio::error::would_block) {
            awaitRoom();
            return;
        }
        if (failure) { // it may have gone, but what it has sent before counts
            m_isDeaf = true;
            m_outbox = {};
            return;
        }
        m_outbox.sent(count);
    }
}

// Who has a long answer to read is not at fault; who asks on and on without reading is.
bool Connection::hasRoom() {
    if (m_outbox.bytes() > kMostWaiting)
        end("does not read what it is sent");
    return !m_hasEnded && !m_isDeaf;
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
    if (!m_hasEnded) {
        JSONPICL goodbye;
        goodbye.addDisconnect();
        m_isFlushing = false;
        flush(); // first the changes, which would stand behind it
        send(goodbye);
        m_hasEnded = true;
    }
    m_rest.cancel(ignored);
    m_socket.close(ignored);
}
