#include "tests/picl/AgentTest.h"
#include "tests/support/AllocationProbe.h"

#include <gtest/gtest.h>

namespace {

constexpr std::size_t kMaxPeak = 64'000'000;

/// Reads from a text of the test, and drops what is written.
class Wire final : public Stream {
public:
    explicit Wire(std::string_view input) : m_input(input) {}

    std::int32_t read(void* buffer, std::int32_t size) override {
        const std::size_t count = std::min(m_input.size(), static_cast<std::size_t>(size));
        std::memcpy(buffer, m_input.data(), count);
        m_input.remove_prefix(count);
        return static_cast<std::int32_t>(count);
    }
    std::int32_t write(const void* /*buffer*/, std::int32_t size) override { return size; }
    void close() override { isClosed = true; }

    bool isClosed = false;

private:
    std::string_view m_input;
};

/// Returns a frame of the largest size whose list has as many items, all @p item, as a message may have
/// values.
std::string fullFrame(const std::string& key, const std::string& item, std::size_t valuesInItem) {
    const std::size_t room = frame::kLargestText - key.size() - 16;
    const std::size_t count = std::min((frame::kMaxValues - 1) / valuesInItem, room / (item.size() + 1));
    std::string text = "{\"" + key + "\":[" + repeated(item + ',', count - 1) + item + "]}";
    text.resize(frame::kLargestText, ' ');
    return frameOf(text);
}

class Memory : public AgentTest {};

TEST_F(Memory, OfAnyFrameIsBounded) {
    const auto text = add<StringProperty>("T", "");
    const std::string set = R"({"PropertySetRequests": [{"GUID": "G:T","Value": ")";
    const auto longValue = [&](const std::string& part) {
        return frameOf(set + repeated(part, (frame::kLargestText - set.size() - 4) / part.size()) + "\"}]}");
    };
    struct {
        const char* name;
        std::string bytes;
    } const kRows[] = {
        {"small numbers", fullFrame("x", "0", 1)},
        {"empty objects", fullFrame("x", "{}", 1)},
        {"small lists", fullFrame("x", "[0]", 2)},
        {"lists of two sizes", fullFrame("x", "[0],[0,0]", 5)},
        {"objects of two sizes", fullFrame("x", R"({"":0},{"":0,"a":0})", 5)},
        {"a large object out of order", frameOf(largestObject())},
        {"gets without fields", fullFrame("PropertyGetRequests", "0", 1)},
        {"gets", fullFrame("PropertyGetRequests", R"({"GUID":"G:T"})", 2)},
        {"gets of nothing", fullFrame("PropertyGetRequests", R"({"GUID":"G:no"},{"":0,"":0})", 5)},
        {"sets", fullFrame("PropertySetRequests", R"({"GUID":"G:T","Value":"long enough for the heap"})", 3)},
        {"reports",
         fullFrame("PropertyGetResponses", R"({"GUID":"G:T","Value":"long enough for the heap"})", 3)},
        {"a long value", longValue("x")},
        {"a long value of escapes", longValue("\\n")},
        {"open lists behind a long one", frameOf("{\"\":[[" + repeated("0,", 1000) + "0]," +
                                                 repeated("[", 9000) + repeated("]", 9000) + "]}")},
        {"open objects behind a large one",
         frameOf("{\"\":[{" + repeated("\"\":0,", 1000) + "\"\":0}," + repeated("{\"\":", 3000) + '0' +
                 repeated("}", 3000) + "]}")},
    };
    for (const auto& [name, bytes] : kRows) {
        const auto wire = std::make_shared<Wire>(bytes);
        text->setValue("");
        const std::size_t idle = allocations::liveBytes();
        allocations::resetPeak();
        EXPECT_TRUE(agent->processNextMessage(wire)) << name;
        const std::size_t peak = allocations::peakBytes() - idle;
        EXPECT_LE(peak, kMaxPeak) << name;
    }
}

TEST_F(Memory, ThatRunsOutWhileReadingEndsTheConnection) {
    const std::string many = fullFrame("x", "0", 1);
    struct {
        const char* name;
        std::string bytes;
        std::size_t largestAllocation = allocations::Failing::kNone;
        bool closes = true;
    } const kRows[] = {
        {"a frame of many values", many, allocations::Failing::kNone, false},
        {"one value more", frameOf("{\"x\": [" + repeated("0,", frame::kMaxValues) + "0]}")},
        {"no memory for the text", many, 1'000'000},
        {"no memory at all", many, 0},
        {"no memory for the values", fullFrame("x", "{}", 1), 5'000'000},
        {"no JSON", frameOf("{\"a\"}"), allocations::Failing::kNone, false},
    };
    for (const auto& [name, bytes, largestAllocation, closes] : kRows) {
        const auto wire = std::make_shared<Wire>(bytes);
        testing::internal::CaptureStderr();
        {
            const allocations::Failing failing(allocations::Failing::kNone, largestAllocation);
            while (agent->processNextMessage(wire)) {
            }
        }
        EXPECT_EQ(wire->isClosed, closes) << name;
        EXPECT_EQ(testing::internal::GetCapturedStderr().find("connection") != std::string::npos, closes)
            << name;
    }
    EXPECT_TRUE(agent->processNextMessage(std::make_shared<Wire>(many))) << "another connection";
}

TEST_F(Memory, ThatRunsOutWhilePublishingEndsTheConnection) {
    const auto text = add<StringProperty>("T", "");
    connect();
    startReader();
    const std::string large(1'000'000, 'x');
    text->setValue(large);
    testing::internal::CaptureStderr();
    {
        const allocations::Failing failing(allocations::Failing::kNone, large.size() - 1);
        agent->startPublishing();
        reader.join(); // its stream is closed
    }
    EXPECT_NE(testing::internal::GetCapturedStderr().find("connection"), std::string::npos);
    text->setValue("short");
    peer = std::make_shared<ScriptedPeer>();
    connect();
}

} // namespace
