#pragma once

#include "json/JSONValue.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class Stream;

/// The frame around each message: the magic, the length of the text, the text.
namespace frame {
inline constexpr std::array<std::uint8_t, 16> kMagic{0xB3, 0xEC, 0x09, 0x9A, 0x22, 0x92, 0x48, 0xFA,
                                                     0x83, 0xD0, 0x06, 0x84, 0x0B, 0xC9, 0x91, 0x02};
inline constexpr std::size_t kLengthSize = 4; // unsigned, the lowest byte first
inline constexpr std::size_t kHeaderSize = kMagic.size() + kLengthSize;
inline constexpr std::uint32_t kLargestText = 4194304; // a longer one is refused

/// The most values in a message: the members of its objects and the items of its arrays. A frame full of
/// reports with GUIDs has fewer; without this limit a frame of short values takes 250 MB.
inline constexpr std::size_t kMaxValues = 150'000;

/// Returns the length of the text behind @p header. Requires: it is a whole one.
[[nodiscard]] std::uint32_t textLength(std::string_view header);
} // namespace frame

/// One JSON object and its way to and from a stream, as one frame.
///
/// Belongs to one thread. What fails leaves the object as it was and is told by the result alone.
class JSONImporterExporter {
public:
    JSONImporterExporter() = default;
    virtual ~JSONImporterExporter() = default;

    JSONImporterExporter(const JSONImporterExporter&) = delete;
    JSONImporterExporter& operator=(const JSONImporterExporter&) = delete;

    /// Writes the object as one frame, in one write. Returns whether all of it went out; if not, a part may
    /// have. Blocks as the stream does.
    [[nodiscard]] virtual bool exportTo(Stream& stream);

    /// Returns the object as one frame, as it travels.
    [[nodiscard]] std::string toFrame() const;

    /// Reads one frame and takes its object. Returns false if the stream ends or fails before the frame
    /// does, if the text is empty or longer than frame::kLargestText, or if it is no JSON object; then the
    /// stream may be out of step with its frames. Throws std::bad_alloc if memory runs out or the message has
    /// more than frame::kMaxValues values. The magic is not compared. Blocks as the stream does.
    [[nodiscard]] virtual bool importFrom(Stream& stream);

    /// Empties the object.
    virtual void clear();

protected:
    JSONObject m_object;
};

/// Finds the member of this key. Returns whether there is one; only then @p member is set.
bool findKey(const JSONObject& object, std::string_view key, JSONObject::const_iterator& member);

/// Returns the texts of the array under @p key; what is no text gives an empty one, what is no array nothing.
[[nodiscard]] std::vector<std::string> getStringList(const JSONObject& object, std::string_view key);
