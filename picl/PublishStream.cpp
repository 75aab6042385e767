#include "picl/PublishStream.h"

#include "platform/Stream.h"

#include <utility>

void PublishStream::set(std::shared_ptr<Stream> stream, const std::function<void(const Send&)>& begin) {
    const KeltoGuard frames(m_frameLock);
    if (hasEnded())
        return;
    replace(std::move(stream));
    if (!isEmpty())
        begin([this](JSONPICL& message) { return send(message); });
}

bool PublishStream::isEmpty() const { return current() == nullptr; }

bool PublishStream::send(JSONPICL& message) {
    const KeltoGuard frames(m_frameLock);
    return write(message);
}

bool PublishStream::publish(JSONPICL& message) {
    const KeltoGuard frames(m_frameLock);
    const bool isSent = write(message);
    if (!isSent)
        replace(nullptr);
    return isSent;
}

bool PublishStream::reply(Stream& stream, JSONPICL& message) {
    if (isCurrent(stream)) {
        const KeltoGuard frames(m_frameLock);
        if (isCurrent(stream))
            return write(message);
    }
    return !hasEnded() && message.exportTo(stream);
}

void PublishStream::sayGoodbye() {
    JSONPICL message;
    message.addDisconnect();
    const KeltoGuard frames(m_frameLock);
    static_cast<void>(write(message)); // there is nobody left to tell
    replace(nullptr);
    const KeltoGuard guard(m_streamLock);
    m_hasEnded = true;
}

std::shared_ptr<Stream> PublishStream::current() const {
    const KeltoGuard guard(m_streamLock);
    return m_stream;
}

bool PublishStream::isCurrent(const Stream& stream) const {
    const std::shared_ptr<Stream> mine = current();
    return mine && mine->getId() == stream.getId();
}

bool PublishStream::hasEnded() const {
    const KeltoGuard guard(m_streamLock);
    return m_hasEnded;
}

void PublishStream::replace(std::shared_ptr<Stream> stream) {
    const KeltoGuard guard(m_streamLock); // the old one leaves with the argument, after it
    m_stream.swap(stream);
}

bool PublishStream::write(JSONPICL& message) {
    const std::shared_ptr<Stream> stream = current();
    return stream && message.exportTo(*stream);
}
