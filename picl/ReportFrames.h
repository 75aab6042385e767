#pragma once

#include "picl/JSONPICL.h"

#include <cstddef>
#include <functional>

/// Reports on their way into frames, of which each stays within what the other side accepts.
///
/// As a rule all reports leave in one frame. What does not fit opens a further one, which is a message like
/// the first, so that an answer of any length takes the memory of one frame. A report that is too long for
/// any frame is left out.
class ReportFrames {
public:
    /// Sends one frame. Returns whether it went out.
    using Send = std::function<bool(JSONPICL&)>;

    enum class Kind { Reports, GetAllAnswer };

    /// How much of the text of a frame the reports in it may take, and how much one takes.
    static const std::size_t kRoom;
    [[nodiscard]] static std::size_t textSize(const PropertyGetResponse& report);

    /// Frames are built in @p message, which is emptied before. Requires: it outlives this object.
    ReportFrames(JSONPICL& message, Kind kind, Send send);

    /// Appends a report and sends the frame before it if that is full. Returns false after a frame could not
    /// be sent; then nothing more is sent. Blocks while a frame is sent.
    bool add(PropertyGetResponse report);

    /// Returns whether no report was added.
    [[nodiscard]] bool isEmpty() const { return m_textSize == kMessageSize; }

    /// Sends what is left, an empty list if nothing ever came. Returns whether all went out. Blocks as the
    /// stream does.
    [[nodiscard]] bool finish();

private:
    void begin();

    static const std::size_t kMessageSize; // of the text around the reports

    JSONPICL& m_message;
    const Kind m_kind;
    const Send m_send;
    std::size_t m_textSize = 0; // of the frame that the message makes
    bool m_sends = true;
};
