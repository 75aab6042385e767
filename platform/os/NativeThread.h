#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace os {

/// One thread of the host: made held back, given a priority, let run, waited for or let go.
///
/// An absent one, also where the host cannot create the thread, returns false from setPriority() and true
/// from waitForEnd(), and does nothing else.
class NativeThread {
public:
    using Routine = std::uint32_t (*)(void* argument);

    NativeThread();

    /// Makes a thread that runs @p routine with @p argument once resume() is called; @p stackSize is in
    /// bytes, 0 means the host's own. Thread: any. Blocks until the thread is there.
    NativeThread(Routine routine, void* argument, std::size_t stackSize);

    /// Lets the thread go: it ends by itself. One that was never resumed ends without its routine.
    ~NativeThread();

    NativeThread(NativeThread&& other) noexcept;
    NativeThread& operator=(NativeThread&& other) noexcept;
    NativeThread(const NativeThread&) = delete;
    NativeThread& operator=(const NativeThread&) = delete;

    [[nodiscard]] bool isPresent() const { return m_state != nullptr; }

    /// Lets the routine run.
    void resume();

    /// Takes @p priority of the printer's scale, on which a lower number is more urgent: 251 is the normal
    /// class at nice 0, 252 to 255 are nice 5, 10, 15, 19, 248 to 250 are nice -15, -10, -5, and below 248
    /// is the real-time class. Returns false if the number is off the scale, if the thread has ended, or if
    /// the process may not do that. Thread: any.
    [[nodiscard]] bool setPriority(std::int32_t priority);

    /// Waits for the end of the routine. Returns whether it has ended; false at once on the thread itself.
    /// Blocks at most @p limit.
    [[nodiscard]] bool waitForEnd(std::chrono::milliseconds limit);

private:
    struct State;

    std::shared_ptr<State> m_state; // shared with the thread, which may outlive this object
};

} // namespace os
