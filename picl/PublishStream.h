#pragma once

#include "picl/JSONPICL.h"
#include "platform/KeltoMutex.h"

#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <string>

class Stream;

/// Closes @p stream, a connection on which memory ran out, and logs that. Thread-safe. Does not block.
void closeAfter(const std::bad_alloc& failure, Stream& stream);

/// Serializes outgoing frames on the connection to the property server. Thread-safe.
///
/// Each frame is one write under m_frameLock, so frames are never interleaved. A frame is formatted before
/// the lock is taken, except in set(). The stream is empty before set(), after a failed publication, and
/// permanently after disconnect(). isEmpty() and hasEnded() never wait for a write in progress.
///
/// A report sent by set() or answer() is never older than a publication sent before it: m_reportLock is held
/// from the reading of its value to its write, and by every publication. A publication may be older than an
/// answer sent before it; the change that it missed is still queued.
///
/// Lock order: m_reportLock, then m_frameLock, then m_streamLock.
class PublishStream {
public:
    using Send = std::function<bool(JSONPICL&)>;

    PublishStream();

    /// Replaces the stream and sends its first frames with @p begin before any other thread can send. @p
    /// stream may be empty. Ignored after end(). Blocks while frames are written.
    void set(std::shared_ptr<Stream> stream, const std::function<void(const Send&)>& begin);

    [[nodiscard]] bool isEmpty() const;

    /// Sends @p message. Returns false if there is no stream or the write failed. Blocks while writing.
    [[nodiscard]] bool send(JSONPICL& message);

    /// Like send(); a failure empties the stream.
    bool publish(JSONPICL& message);

    /// Runs @p make, which reads values and sends their frames on @p stream; frames of requests may come
    /// between them. Another stream than the current one is written without a lock. Returns the result of @p
    /// make. Blocks while writing.
    [[nodiscard]] bool answer(Stream& stream, const std::function<bool(const Send&)>& make);

    /// Closes the stream after memory ran out, and logs that: no later frame can be written or read.
    /// Does not block.
    void closeAfter(const std::bad_alloc& failure);

    /// Refuses every frame from now on, except "Disconnect". A write in progress completes.
    void end() { m_hasEnded = true; }

    /// Returns whether end() was called.
    [[nodiscard]] bool hasEnded() const { return m_hasEnded; }

    /// Calls end(), sends "Disconnect" as the last frame, and releases the stream. Blocks while writing, but
    /// not for the JSON engine.
    void disconnect();

private:
    [[nodiscard]] std::shared_ptr<Stream> current() const;
    [[nodiscard]] bool isCurrent(const Stream& stream) const;
    void replace(std::shared_ptr<Stream> stream) KELTO_REQUIRES(m_frameLock);
    [[nodiscard]] bool reply(Stream& stream, JSONPICL& message);
    [[nodiscard]] bool write(const std::string& frame) KELTO_REQUIRES(m_frameLock);

    const std::string m_disconnectFrame;
    std::atomic<bool> m_hasEnded = false; // checked under m_frameLock before each write
    KeltoMutex m_reportLock;
    KeltoMutex m_frameLock;
    mutable KeltoMutex m_streamLock;
    std::shared_ptr<Stream> m_stream KELTO_GUARDED_BY(m_streamLock);
};
