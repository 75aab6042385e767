#include "json/JSONImporterExporter.h"

#include "tests/support/FaultyStream.h"
#include "json/JSONPrinter.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

/// A message whose object a test can see.
class Message final : public JSONImporterExporter {
public:
    JSONObject& object() { return m_object; }

    std::string printed() {
        std::ostringstream out;
        printObject(out, m_object);
        return out.str();
    }
};

std::string header(std::uint32_t length) {
    std::string bytes(frame::kMagic.begin(), frame::kMagic.end());
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(length >> shift & 0xFF);
    return bytes;
}

std::string framed(const std::string& text) { return header(static_cast<std::uint32_t>(text.size())) + text; }

TEST(Frame, LeavesInOneWrite) {
    Message message;
    MemoryStream stream;
    ASSERT_TRUE(message.exportTo(stream));
    EXPECT_EQ(stream.output, std::string("\xB3\xEC\x09\x9A\x22\x92\x48\xFA\x83\xD0\x06\x84\x0B\xC9\x91\x02"
                                         "\x02\0\0\0{}",
                                         22));
    message.object()["a"] = std::string(70'000, 'x');
    ASSERT_TRUE(message.exportTo(stream));
    EXPECT_EQ(stream.writes, 2);
    EXPECT_EQ(stream.output.substr(22), framed("{\"a\": \"" + std::string(70'000, 'x') + "\"}"));

    FaultyStream broken(30);
    EXPECT_FALSE(message.exportTo(broken));
}

TEST(Frame, ComesInPiecesAndOneAfterTheOther) {
    MemoryStream stream(framed("{\"a\": 1}") + framed("{\"b\": \"" + std::string(100, 'x') + "\"}") +
                        std::string(16, '\0') + framed("{}").substr(16));
    stream.largestRead = 16;
    Message message;
    ASSERT_TRUE(message.importFrom(stream));
    EXPECT_EQ(message.printed(), "{\"a\": 1}");
    ASSERT_TRUE(message.importFrom(stream));
    EXPECT_EQ(message.printed(), "{\"b\": \"" + std::string(100, 'x') + "\"}")
        << "nothing of the first is left";
    ASSERT_TRUE(message.importFrom(stream)) << "the magic is not looked at";
    EXPECT_EQ(message.printed(), "{}");
    message.object()["a"] = 1;
    message.clear();
    EXPECT_EQ(message.printed(), "{}");
}

TEST(Frame, WhatIsRefusedLeavesTheObjectAsItWas) {
    struct {
        const char* name;
        std::string bytes;
        std::size_t largestRead = std::string::npos;
    } const kRows[] = {
        {"no text", framed("")},
        {"an array", framed("[]")},
        {"a text that is none", framed("{\"a\"}")},
        {"one byte too many", header(frame::kLargestText + 1) + "{}" + std::string(frame::kLargestText, ' ')},
        {"4 GiB", header(0xFFFFFFFF) + "{}"},
        {"a magic in two reads", framed("{}"), 15},
        {"a length in two reads", framed("{}").substr(0, 16) + framed("{}").substr(16), 3},
        {"a zero byte inside", framed(std::string("{\"a\": 1\0}", 9))},
    };
    for (const auto& [name, bytes, largestRead] : kRows) {
        testing::internal::CaptureStderr();
        MemoryStream stream(bytes);
        stream.largestRead = largestRead;
        Message message;
        message.object()["kept"] = true;
        EXPECT_FALSE(message.importFrom(stream)) << name;
        EXPECT_EQ(message.printed(), "{\"kept\": true}") << name;
        testing::internal::GetCapturedStderr();
    }
    const std::string whole = framed("{\"a\": [1,2,{}]}");
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        Message message;
        message.object()["kept"] = true;
        FaultyStream stream(cut, whole, cut % 2 == 0 ? StreamFailed : 0);
        EXPECT_FALSE(message.importFrom(stream)) << cut;
        EXPECT_EQ(message.printed(), "{\"kept\": true}") << cut;
    }
}

TEST(Frame, TheLongestTextIsTaken) {
    MemoryStream stream(framed("{}" + std::string(frame::kLargestText - 2, ' ')));
    Message message;
    EXPECT_TRUE(message.importFrom(stream));
}

TEST(Frame, ListsOfTextsAreReadForgivingly) {
    Message message;
    MemoryStream stream(framed("{\"a\": [\"x\", 1, \"\", [\"y\"]], \"b\": \"x\", \"c\": []}"));
    ASSERT_TRUE(message.importFrom(stream));
    const JSONObject& object = message.object();
    EXPECT_EQ(getStringList(object, "a"), (std::vector<std::string>{"x", "", "", ""}));
    for (const char* const key : {"b", "c", "d", "A"})
        EXPECT_TRUE(getStringList(object, key).empty()) << key;
    JSONObject::const_iterator member;
    EXPECT_TRUE(findKey(object, "b", member));
    EXPECT_EQ(member->value.textValue, "x");
    EXPECT_FALSE(findKey(object, "", member));
}

} // namespace
