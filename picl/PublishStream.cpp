#include "picl/PublishStream.h"

#include "platform/Log.h"
#include "platform/Stream.h"

#include <cstdint>
#include <utility>

namespace {

std::string makeDisconnectFrame() {
    JSONPICL message;
    message.addDisconnect();
    return message.toFrame();
}

bool writeWhole(Stream& stream, const std::string& frame) {
    const auto size = static_cast<std::int32_t>(frame.size());
    return stream.write(frame.data(), size) == size;
}

} // namespace

void closeAfter(const std::bad_alloc& failure, Stream& stream) {
    logLine("connection to the property server closed: ", failure.what());
    stream.close();
}

PublishStream::PublishStream() : m_disconnectFrame(makeDisconnectFrame()) {}

void PublishStream::set(std::shared_ptr<Stream> stream, const std::function<void(const Send&)>& begin) {
    const KeltoGuard reports(m_reportLock);
    const KeltoGuard frames(m_frameLock);
    if (hasEnded())
        return;
    replace(std::move(stream));
    if (isEmpty())
        return;
    try {
        begin([this](JSONPICL& message) { return send(message); });
    } catch (const std::bad_alloc& failure) {
        closeAfter(failure);
    }
}

bool PublishStream::isEmpty() const { return current() == nullptr; }

bool PublishStream::send(JSONPICL& message) {
    const std::string frame = message.toFrame();
    const KeltoGuard frames(m_frameLock);
    return write(frame);
}

bool PublishStream::publish(JSONPICL& message) {
    const std::string frame = message.toFrame();
    const KeltoGuard reports(m_reportLock);
    const KeltoGuard frames(m_frameLock);
    const bool isSent = write(frame);
    if (!isSent)
        replace(nullptr);
    return isSent;
}

bool PublishStream::answer(Stream& stream, const std::function<bool(const Send&)>& make) {
    if (!isCurrent(stream))
        return make([&](JSONPICL& message) { return !hasEnded() && message.exportTo(stream); });
    const KeltoGuard reports(m_reportLock);
    return make([&](JSONPICL& message) { return reply(stream, message); });
}

void PublishStream::closeAfter(const std::bad_alloc& failure) {
    if (const std::shared_ptr<Stream> stream = current())
        ::closeAfter(failure, *stream);
}

bool PublishStream::reply(Stream& stream, JSONPICL& message) {
    const std::string frame = message.toFrame();
    const KeltoGuard frames(m_frameLock);
    return !hasEnded() && writeWhole(stream, frame);
}

void PublishStream::disconnect() {
    end();
    const KeltoGuard frames(m_frameLock);
    if (const std::shared_ptr<Stream> stream = current())
        static_cast<void>(writeWhole(*stream, m_disconnectFrame)); // the connection ends either way
    replace(nullptr);
}

std::shared_ptr<Stream> PublishStream::current() const {
    const KeltoGuard guard(m_streamLock);
    return m_stream;
}

bool PublishStream::isCurrent(const Stream& stream) const {
    const std::shared_ptr<Stream> mine = current();
    return mine && mine->getId() == stream.getId();
}

void PublishStream::replace(std::shared_ptr<Stream> stream) {
    const KeltoGuard guard(m_streamLock); // the old stream is released after the lock, with the argument
    m_stream.swap(stream);
}

bool PublishStream::write(const std::string& frame) {
    const std::shared_ptr<Stream> stream = current();
    return !hasEnded() && stream && writeWhole(*stream, frame);
}
