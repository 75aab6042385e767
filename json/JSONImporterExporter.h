#pragma once

#include "json/JSONValue.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
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

    /// Reads one frame and takes its object. Returns false where the stream ends or fails before the frame
    /// does, where the text is empty or longer than the limit, or where it is no JSON object; then the stream
    /// may be out of step with its frames. The magic is not looked at. Blocks as the stream does.
    [[nodiscard]] virtual bool importFrom(Stream& stream);

    /// Empties the object.
    virtual void clear();

    /// Has importFrom() refuse an object with more values than @p mostValues, for who reads what anybody
    /// sends: a frame of the largest length can make a hundred megabytes of values.
    void limitValues(std::size_t mostValues) { m_mostValues = mostValues; }

protected:
    JSONObject m_object;

private:
    std::size_t m_mostValues = std::numeric_limits<std::size_t>::max();
};

/// Finds the member of this key. Returns whether there is one; only then @p member is set.
bool findKey(const JSONObject& object, std::string_view key, JSONObject::const_iterator& member);

/// Returns the texts of the array under @p key; what is no text gives an empty one, what is no array nothing.
[[nodiscard]] std::vector<std::string> getStringList(const JSONObject& object, std::string_view key);
