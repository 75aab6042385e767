#pragma once

#include "platform/Stream.h"
#include "tests/support/DeviceRootTest.h"
#include "json/JSONImporterExporter.h"

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

/// Returns @p text, @p times behind each other.
inline std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

/// Returns @p text as it travels.
inline std::string frameOf(std::string_view text) {
    std::string frame("\xB3\xEC\x09\x9A\x22\x92\x48\xFA\x83\xD0\x06\x84\x0B\xC9\x91\x02", 16);
    for (unsigned shift = 0; shift < 32; shift += 8)
        frame += static_cast<char>(text.size() >> shift);
    return frame.append(text);
}

/// Returns the text of the object that takes the most memory of all that a frame may hold: one list of
/// members, their keys on the heap and out of order.
inline std::string largestObject() {
    std::string text = "{\"\":0";
    for (std::size_t i = 1; i < frame::kMaxValues; ++i)
        text += ",\"a long key " + std::to_string(i * 7919 % 1'000'000) + "\":0";
    text += '}';
    text.resize(frame::kLargestText, ' ');
    return text;
}

/// The peer at the other end of a stream: a test says what it sends and looks at what it gets, write by
/// write. It can stop reading, or break.
class ScriptedPeer final : public Stream {
public:
    using Clock = std::chrono::steady_clock;

    std::int32_t read(void* buffer, std::int32_t size) override {
        std::unique_lock guard(m_lock);
        m_changed.wait(guard, [this] { return m_closed || !m_input.empty(); });
        const std::size_t count = std::min(m_input.size(), static_cast<std::size_t>(size));
        std::memcpy(buffer, m_input.data(), count);
        m_input.erase(0, count);
        return count == 0 ? StreamFailed : static_cast<std::int32_t>(count);
    }

    std::int32_t write(const void* buffer, std::int32_t size) override {
        std::unique_lock guard(m_lock);
        ++m_begun;
        m_changed.notify_all();
        m_changed.wait(guard, [this] { return m_closed || !m_stalls; });
        if (m_closed || m_fails)
            return StreamFailed;
        m_writes.emplace_back(static_cast<const char*>(buffer), static_cast<std::size_t>(size));
        m_changed.notify_all();
        return size;
    }

    void close() override { change(m_closed, true); }
    void stall(bool stalls) { change(m_stalls, stalls); }
    void fail(bool fails) { change(m_fails, fails); }

    /// Sends @p text in a frame.
    void says(std::string_view text) {
        const std::scoped_lock guard(m_lock);
        m_input += frameOf(text);
        m_changed.notify_all();
    }

    /// Waits for the next write and returns it; an empty one stands for none by the deadline.
    std::string hears() {
        std::unique_lock guard(m_lock);
        if (!m_changed.wait_for(guard, kDeadline, [this] { return !m_writes.empty(); }))
            return {};
        std::string first = std::move(m_writes.front());
        m_writes.pop_front();
        return first;
    }

    /// Waits until @p count writes have begun in all. Returns whether they did by the deadline.
    bool sees(int count, std::chrono::milliseconds deadline = kDeadline) {
        std::unique_lock guard(m_lock);
        return m_changed.wait_for(guard, deadline, [&] { return m_begun >= count; });
    }

    [[nodiscard]] bool heardAll() const {
        const std::scoped_lock guard(m_lock);
        return m_writes.empty();
    }

private:
    void change(bool& what, bool value) {
        const std::scoped_lock guard(m_lock);
        what = value;
        m_changed.notify_all();
    }

    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::string m_input;
    std::deque<std::string> m_writes;
    int m_begun = 0;
    bool m_closed = false;
    bool m_stalls = false;
    bool m_fails = false;
};
