#include "json/JSONImporterExporter.h"

#include "platform/Stream.h"
#include "json/JSONPrinter.h"
#include "json/JSONReader.h"

#include <span>
#include <utility>

namespace {

constexpr std::size_t kUsualSize = 512; // of a frame with one report

void appendHeader(std::string& frame) {
    frame.append(frame::kMagic.begin(), frame::kMagic.end());
    frame.append(frame::kLengthSize, '\0');
}

void fillInLength(std::string& frame) {
    auto length = static_cast<std::uint32_t>(frame.size() - frame::kHeaderSize);
    for (std::size_t i = 0; i < frame::kLengthSize; ++i, length >>= 8)
        frame[frame::kMagic.size() + i] = static_cast<char>(length & 0xFF);
}

bool readWhole(Stream& stream, void* buffer, std::size_t size) {
    return stream.read(buffer, static_cast<std::int32_t>(size)) == static_cast<std::int32_t>(size);
}

bool readText(Stream& stream, std::span<char> text) {
    while (!text.empty()) {
        const std::int32_t count = stream.read(text.data(), static_cast<std::int32_t>(text.size()));
        if (count <= 0)
            return false;
        text = text.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

std::uint32_t frame::textLength(std::string_view header) {
    std::uint32_t length = 0;
    for (std::size_t i = kLengthSize; i-- > 0;)
        length = length << 8 | static_cast<unsigned char>(header[kMagic.size() + i]);
    return length;
}

std::string JSONImporterExporter::toFrame() const {
    std::string frame;
    frame.reserve(kUsualSize);
    appendHeader(frame);
    {
        const KeltoGuard guard(jsonEngineLock);
        appendObject(frame, m_object);
    }
    fillInLength(frame);
    return frame;
}

bool JSONImporterExporter::exportTo(Stream& stream) {
    const std::string frame = toFrame();
    return stream.write(frame.data(), static_cast<std::int32_t>(frame.size())) ==
           static_cast<std::int32_t>(frame.size());
}

bool JSONImporterExporter::importFrom(Stream& stream) {
    std::array<char, frame::kHeaderSize> header{};
    if (!readWhole(stream, header.data(), frame::kMagic.size()) ||
        !readWhole(stream, header.data() + frame::kMagic.size(), frame::kLengthSize))
        return false;
    const std::uint32_t length = frame::textLength({header.data(), header.size()});
    if (length > frame::kLargestText)
        return false;
    std::string text(length, '\0');
    if (!readText(stream, text) || text.empty())
        return false;
    JSONValue message;
    {
        const KeltoGuard guard(jsonEngineLock);
        message = parseJsonText(text.c_str(), frame::kMaxValues);
    }
    if (message.type != JSONValueType::ObjectValue)
        return false;
    m_object = std::move(message.objectValue);
    return true;
}

void JSONImporterExporter::clear() { m_object = {}; }

bool findKey(const JSONObject& object, std::string_view key, JSONObject::const_iterator& member) {
    const auto found = object.find(key);
    if (found == object.end())
        return false;
    member = found;
    return true;
}

std::vector<std::string> getStringList(const JSONObject& object, std::string_view key) {
    std::vector<std::string> texts;
    JSONObject::const_iterator list;
    if (findKey(object, key, list)) {
        for (const JSONValue& item : list->value.arrayValue)
            texts.push_back(item.textValue);
    }
    return texts;
}
