#pragma once

#include "app/UpgradeInterface.h"
#include "app/UpgradePlatform.h"
#include "app/UpgradeSharedRecord.h"
#include "app/WindowsUpgradeInterface.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// A platform under the link that a test scripts: it writes down what the link does, and hands out events.
class ScriptedPlatform final : public UpgradePlatform {
public:
    void openEvent(UpgradeEvent event) override;
    void openRecord() override;
    void openMutex() override;
    std::optional<UpgradeSharedRecord> readRecord() override;
    bool writeCommand(std::uint8_t command) override;
    std::optional<UpgradeEvent> waitForEvent() override;
    void endWait() override;
    void setEvent(UpgradeEvent event) override;
    bool lock() override;
    void unlock() override;
    void beginExit() override {}

    /// Hands @p event to the listener.
    void raise(UpgradeEvent event);

    /// Hands @p event to the listener and waits until it is back in its wait. Returns false if it does not
    /// come.
    bool signal(UpgradeEvent event);

    /// Adds @p codes to the ring, as an upgrader does.
    void queue(const std::vector<std::uint8_t>& codes);

    /// Writes down a line; "!" goes before it if the mutex is held.
    void note(const std::string& line);

    /// Returns the lines so far, joined with ", ", and forgets them.
    std::string takeNotes();

    /// Locks the mutex as another process does, or unlocks it.
    void keepMutex(bool keep);

    /// Returns whether a thread waits for the mutex.
    [[nodiscard]] bool isMutexAwaited() const;

    [[nodiscard]] bool isWaiting() const;
    [[nodiscard]] bool waitIsToEnd() const;
    [[nodiscard]] bool waitHasEnded() const;

    UpgradeSharedRecord record{};
    bool hasRecord = true;
    bool hasMutex = true;

private:
    mutable std::mutex m_lock; // guards all that follows
    std::condition_variable m_changed;
    std::deque<UpgradeEvent> m_events;
    bool m_waiting = false;
    bool m_ended = false;
    bool m_mutexHeld = false;
    bool m_mutexKept = false;
    bool m_mutexAwaited = false;
    std::vector<std::string> m_notes;
};

/// A link over a scripted platform, with handlers that write down their calls there: "display 5", "progress
/// 7", "printer a/b/c", "package a/b/c", "size 77", "repair 1".
struct ScriptedLink {
    explicit ScriptedLink(std::vector<std::string> systemFeatures = {}, bool acConnected = true);

    /// Sends @p codes on one signal. Returns what the link did.
    std::string take(const std::vector<std::uint8_t>& codes);
    std::string act(UserAction action);

    std::shared_ptr<ScriptedPlatform> platform = std::make_shared<ScriptedPlatform>();
    std::shared_ptr<WindowsUpgradeInterface> link;
};
