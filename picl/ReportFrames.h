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

    /// Takes reports, and sends the frames that are full. Returns false once a frame did not go out; then
    /// nothing more is sent. Blocks as the stream does.
    bool add(PropertyGetResponses reports);
    bool add(PropertyGetResponse report);

    /// Sends what is left, an empty list if nothing ever came. Returns whether all went out. Blocks as the
    /// stream does.
    [[nodiscard]] bool finish();

private:
    void begin();

    JSONPICL& m_message;
    const Kind m_kind;
    const Send m_send;
    std::size_t m_textSize = 0; // of the frame that the message makes
    bool m_sends = true;
};
