#include "picl/FrameReader.h"

#include "tests/picl/ScriptedPeer.h"

#include <gtest/gtest.h>

namespace {

using Result = FrameReader::Result;

/// Takes @p bytes in pieces of @p size. Returns the messages, a line each, and what came of the rest.
std::string readInPieces(std::string_view bytes, std::size_t size) {
    FrameReader reader;
    std::string text;
    Result result = Result::Incomplete;
    for (; !bytes.empty() && result != Result::Refused; bytes.remove_prefix(std::min(size, bytes.size()))) {
        reader.take(bytes.substr(0, size));
        JSONPICL message;
        while ((result = reader.next(message)) == Result::Message)
            text += message.toFrame().substr(frame::kHeaderSize) + '\n';
    }
    text += result == Result::Refused ? "refused" : std::to_string(reader.waiting()) + " wait";
    return text;
}

std::string header(std::uint32_t length) {
    std::string bytes = frameOf("").substr(0, frame::kMagic.size());
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(length >> shift);
    return bytes;
}

TEST(FrameReader, ReadsTheSameInWhateverPiecesItComes) {
    const std::string one = frameOf(R"({"Disconnect": "True"})");
    const std::string two = frameOf(R"({"GetAllProperties": true})");
    const std::string longest =
        header(frame::kLargestText) + "{}" + std::string(frame::kLargestText - 2, ' ');
    struct {
        const char* name;
        std::string bytes;
        std::string read;
    } const kRows[] = {
        {"one frame", one, "{\"Disconnect\": \"True\"}\n0 wait"},
        {"several, the last a part", one + two + one.substr(0, 30),
         "{\"Disconnect\": \"True\"}\n{\"GetAllProperties\": true}\n30 wait"},
        {"a part of a header", one.substr(0, 19), "19 wait"},
        {"another magic", std::string(16, 'x') + one.substr(16), "{\"Disconnect\": \"True\"}\n0 wait"},
        {"a header that tells the most there may be", header(frame::kLargestText), "20 wait"},
        {"the longest", longest, "{}\n0 wait"},
        {"one byte more, with nothing behind it", one + header(frame::kLargestText + 1),
         "{\"Disconnect\": \"True\"}\nrefused"},
        {"4 GiB", header(0xFFFF'FFFF), "refused"},
        {"no text", one + header(0) + one, "{\"Disconnect\": \"True\"}\nrefused"},
        {"a text that is no object", frameOf("[]") + one, "refused"},
        {"a text that is no JSON", frameOf("{\"") + one, "refused"},
        {"too many values", frameOf("{\"a\": [" + repeated("0,", frame::kMaxValues) + "0]}"), "refused"},
    };
    for (const auto& [name, bytes, read] : kRows) {
        testing::internal::CaptureStderr(); // where the reader of texts names its errors
        const std::size_t step = bytes.size() < 200 ? 1 : (1U << 20U) + 1;
        for (std::size_t size = step; size <= bytes.size(); size += step)
            EXPECT_EQ(readInPieces(bytes, size), read) << name << ", in pieces of " << size;
        testing::internal::GetCapturedStderr();
    }
}

TEST(FrameReader, AMessageStaysAsItWasWhereThereIsNoOther) {
    FrameReader reader;
    JSONPICL message;
    message.addDisconnect();
    reader.take(header(0));
    EXPECT_EQ(reader.next(message), Result::Refused);
    EXPECT_EQ(reader.next(message), Result::Refused) << "for good";
    EXPECT_TRUE(message.has(keys::kDisconnect));
}

} // namespace
