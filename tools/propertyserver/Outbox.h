#pragma once

#include "tools/propertyserver/Peer.h"

#include <cstddef>
#include <deque>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// What waits to be sent to one program.
///
/// Frames go in their order. Changes wait behind them, of each property the last one only, and become frames
/// when there is nothing else to send, one frame at a time: so what waits for a program that reads slowly, or
/// not at all, does not grow with the number of changes. Belongs to one thread.
class Outbox {
public:
    /// Adds a frame.
    void send(std::string frame);

    /// Adds the frames of an answer. Changes that wait may be of its properties: they are no older.
    void answer(const std::vector<SharedReport>& reports, bool isForAll);

    /// Has @p report told, in place of an older one on its property.
    void publish(const SharedReport& report);

    /// Returns what is to be written next, empty if there is nothing. It stays until sent() took it.
    [[nodiscard]] std::string_view next();

    /// Takes @p count bytes from what next() returned.
    void sent(std::size_t count);

    /// Returns how many bytes wait in frames, but for those of an answer or of changes that went to the front
    /// at once: they are as long as what there is to tell.
    [[nodiscard]] std::size_t bytes() const { return m_bytes; }

private:
    struct Frame {
        std::string bytes;
        bool isCounted;
    };
    using Changes = std::list<SharedReport>;

    void forget(const SharedReport& report);
    void add(std::string frame, bool isCounted);
    [[nodiscard]] std::vector<SharedReport> takeChanges();

    std::deque<Frame> m_frames;
    std::size_t m_sent = 0; // of the first frame
    std::size_t m_bytes = 0;
    Changes m_changes;                                                // the newest at the end
    std::unordered_map<std::string_view, Changes::iterator> m_places; // of the changes, by their own ids
};
