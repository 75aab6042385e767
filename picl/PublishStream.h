#pragma once

#include "picl/JSONPICL.h"
#include "platform/KeltoMutex.h"

#include <functional>
#include <memory>

class Stream;

/// The one stream on which an endpoint publishes, asks and says goodbye; absent at first.
///
/// Frames stay whole and in order: each is one write under m_frameLock. That nothing follows a frame that
/// broke off in its middle is the stream's own care. A write can take as long as the stream lets it stall;
/// whether there is a stream can be asked meanwhile.
///
/// There is none until set(), none after a publication that failed, until set() again, and none for good
/// after sayGoodbye().
///
/// Order of locks: m_frameLock, then m_streamLock.
class PublishStream {
public:
    using Send = std::function<bool(JSONPICL&)>;

    /// Makes @p stream, which may be empty, the one, and has @p begin send its first frames before anybody
    /// else can. Does nothing after sayGoodbye(). Thread: any. Blocks as the streams do.
    void set(std::shared_ptr<Stream> stream, const std::function<void(const Send&)>& begin);

    /// Thread: any. Does not block.
    [[nodiscard]] bool isEmpty() const;

    /// Sends @p message. Returns whether it went out. Thread: any. Blocks as the stream does.
    [[nodiscard]] bool send(JSONPICL& message);

    /// As send(); a failure leaves no stream.
    bool publish(JSONPICL& message);

    /// Sends @p message on @p stream, between the other frames if it is this one. Returns whether it went
    /// out; after sayGoodbye() it does not. Thread: any. Blocks as the stream does.
    [[nodiscard]] bool reply(Stream& stream, JSONPICL& message);

    /// Sends "Disconnect", behind which no frame goes out any more, and lets the stream go. Thread: any.
    /// Blocks as the stream does.
    void sayGoodbye();

private:
    [[nodiscard]] std::shared_ptr<Stream> current() const;
    [[nodiscard]] bool isCurrent(const Stream& stream) const;
    [[nodiscard]] bool hasEnded() const;
    void replace(std::shared_ptr<Stream> stream) KELTO_REQUIRES(m_frameLock);
    [[nodiscard]] bool write(JSONPICL& message) KELTO_REQUIRES(m_frameLock);

    KeltoMutex m_frameLock;
    mutable KeltoMutex m_streamLock;
    std::shared_ptr<Stream> m_stream KELTO_GUARDED_BY(m_streamLock);
    bool m_hasEnded KELTO_GUARDED_BY(m_streamLock) = false;
};
