#pragma once

#include "platform/Thread.h"
#include "platform/os/NativeThread.h"

/// A Thread over a thread of the host.
class WindowsThread final : public Thread {
public:
    WindowsThread(Routine routine, std::int32_t priority, std::uint8_t stackOption);
    ~WindowsThread() override;

    [[nodiscard]] bool start(void* argument) override;
    [[nodiscard]] bool setPriority(std::int32_t priority) override;
    void stop() override;

    /// Does nothing.
    virtual void platformHook() {}

private:
    os::NativeThread m_handle; // kept after stop(), so that a routine that was let go has its thread
};
