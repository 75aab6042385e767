#include "picl/FrameReader.h"

#include "platform/Stream.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::size_t kKeptRoom = 4096; // bytes that stay allocated for the next frame

/// Reads a text that is there already.
class TextStream final : public Stream {
public:
    explicit TextStream(std::string_view text) : m_text(text) {}

    std::int32_t read(void* buffer, std::int32_t size) override {
        const std::size_t count = std::min(m_text.size(), static_cast<std::size_t>(size));
        std::memcpy(buffer, m_text.data(), count);
        m_text.remove_prefix(count);
        return static_cast<std::int32_t>(count);
    }

    std::int32_t write(const void* /*buffer*/, std::int32_t /*size*/) override { return StreamNotWritable; }

    void close() override {}

private:
    std::string_view m_text;
};

bool readFrame(std::string_view frame, JSONPICL& message) {
    try {
        TextStream stream(frame);
        return message.importFrom(stream);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

void FrameReader::take(std::string_view bytes) {
    m_bytes.erase(0, std::exchange(m_read, 0));
    m_bytes.append(bytes);
}

std::string_view FrameReader::nextFrame() const {
    const std::string_view rest = std::string_view(m_bytes).substr(m_read);
    if (rest.size() < frame::kHeaderSize)
        return {};
    const std::uint32_t length = frame::textLength(rest.substr(0, frame::kHeaderSize));
    if (length > frame::kLargestText)
        return rest;
    return rest.size() < frame::kHeaderSize + length ? std::string_view()
                                                     : rest.substr(0, frame::kHeaderSize + length);
}

FrameReader::Result FrameReader::next(JSONPICL& message) {
    const std::string_view frame = nextFrame();
    if (frame.empty())
        return Result::Incomplete;
    if (!readFrame(frame, message))
        return Result::Refused;
    m_read += frame.size();
    if (waiting() == 0 && m_bytes.capacity() > kKeptRoom) {
        std::string().swap(m_bytes);
        m_read = 0;
    }
    return Result::Message;
}
