#include "platform/HandleStream.h"
#include "property/UInt32Property.h"
#include "tests/picl/Member.h"
#include "tests/picl/ScriptedPeer.h"
#include "tests/support/FaultyStream.h"
#include "json/JSONImporterExporter.h"

#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

std::string header(std::uint32_t length) {
    std::string bytes = frameOf("").substr(0, frame::kMagic.size());
    for (unsigned shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(length >> shift);
    return bytes;
}

/// A frame whose list has @p item many times.
std::string listOf(const char* key, const std::string& item, std::size_t times) {
    return frameOf("{\"" + std::string(key) + "\": [" + repeated(item + ",", times - 1) + item + "]}");
}

class Hostile : public DeviceRootTest {
protected:
    Hostile() { std::filesystem::create_directory(root() / "store"); }

    /// Has a member read @p bytes from a peer. Returns how many messages it took.
    int messagesTakenFrom(MemoryStream& peer) {
        const std::shared_ptr<Stream> unowned(&peer, [](Stream*) {});
        int taken = 0;
        testing::internal::CaptureStderr();
        while (member.agent->processNextMessage(unowned))
            ++taken;
        testing::internal::GetCapturedStderr();
        return taken;
    }

    Member member{"ME", std::make_shared<MemoryStream>()};
    std::shared_ptr<UInt32Property> number = member.add<UInt32Property>("N", 7U);
};

TEST_F(Hostile, FramesAreTakenOrEndTheReading) {
    const std::string good = frameOf(R"({"PropertySetRequests": [{"GUID": "G:N","Value": "8"}]})");
    std::string everyByte;
    for (int byte = 1; byte <= 0xFF; ++byte) {
        if (byte != '"' && byte != '\\')
            everyByte += static_cast<char>(byte);
    }
    const std::string value = R"({"PropertySetRequests": [{"GUID": "G:N","Value": ")";
    struct {
        const char* name;
        std::string bytes;
        int taken; // and the good frame behind it is one more
    } const kRows[] = {
        {"length 0", header(0), 0},
        {"the longest text", header(frame::kLargestText) + "{}" + std::string(frame::kLargestText - 2, '\n'),
         1},
        {"one more", header(frame::kLargestText + 1), 0},
        {"4 GiB", header(0xFFFFFFFF), 0},
        {"no object", frameOf("[]"), 0},
        {"no JSON", frameOf("{\"a\"}"), 0},
        {"stray bytes in a text", frameOf("{" + std::string(1'000'000, '@') + "}"), 1},
        {"stray bytes for a frame", std::string(1'000'000, '@'), 0},
        {"nesting within the limit", frameOf("{\"a\": " + repeated("[", 9900) + repeated("]", 9900) + "}"),
         1},
        {"nesting beyond it", frameOf("{\"a\": " + repeated("[", 200'000) + "}"), 0},
        {"room for thousands of open lists",
         frameOf("{\"a\": [[0" + repeated(",0", 100'000) + "]," + repeated("[", 3000) + repeated("]", 3000) +
                 "]}"),
         1},
        {"unknown keys", frameOf(R"({"x": {"y": [1]}, "PropertySetRequests": [{"z": {}}]})"), 1},
        {"every byte", frameOf(value + everyByte + "\"}]}"), 1},
        {"a zero byte", frameOf(value + std::string(1, '\0') + "\"}]}"), 0},
        {"lists that are none", frameOf(R"({"PropertyGetRequests": 5,"PropertyGetResponses": "x"})"), 1},
    };
    for (const auto& [name, bytes, taken] : kRows) {
        MemoryStream peer(bytes + good);
        EXPECT_EQ(messagesTakenFrom(peer), taken == 0 ? 0 : taken + 1) << name;
        number->setValue(7);
    }
    for (std::size_t cut = 0; cut < good.size(); ++cut) {
        FaultyStream peer(cut, good);
        EXPECT_EQ(messagesTakenFrom(peer), 0) << cut;
        EXPECT_EQ(number->getValue(), 7U) << cut;
    }
}

TEST_F(Hostile, TensOfThousandsOfRequestsAreHandled) {
    constexpr std::size_t kMany = 45'000;
    MemoryStream peer(listOf("PropertyGetRequests", R"({"GUID":"G:N"})", kMany) +
                      listOf("PropertySetRequests", R"({"GUID":"G:N","Value":"9"})", kMany) +
                      listOf("PropertyGetResponses", R"({"Component":"C","GUID":"G:N"})", kMany));
    EXPECT_EQ(messagesTakenFrom(peer), 3);
    EXPECT_EQ(number->getValue(), 9U);
    MemoryStream answers(peer.output);
    for (int frames = 0; !answers.input.empty(); ++frames) {
        JSONImporterExporter one;
        ASSERT_TRUE(one.importFrom(answers)) << frames;
    }
}

TEST_F(Hostile, SingleBytesAreNoHeader) {
    const std::string frame = frameOf("{}");
    MemoryStream slow(frame);
    slow.largestRead = 1;
    EXPECT_EQ(messagesTakenFrom(slow), 0);
}

/// A member at one end of a socket, and the bare other end.
class OnASocket : public Hostile {
protected:
    OnASocket() {
        int ends[2];
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        other = os::Descriptor(ends[0]);
        guest =
            std::make_unique<Member>("GUEST", std::make_shared<HandleStream>(os::Descriptor(ends[1]), 200ms));
    }

    os::Descriptor other;
    std::unique_ptr<Member> guest;
};

TEST_F(OnASocket, APeerThatReadsNothingMeetsSilenceAndNoHang) {
    const auto text = guest->add<StringProperty>("T", std::string(1'000'000, 'x'));
    guest->join(); // the first frame is more than the socket takes
    EXPECT_TRUE(eventually([&] { return !guest->agent->setExternalValue("C", "G", "P", "v"); }));
    text->setValue("short");
    EXPECT_TRUE(eventually([&] { return guest->agent->countOfChangedProperties() == 0; }));
    guest.reset();
}

TEST_F(OnASocket, APeerThatClosesInTheMiddleEndsTheReadingAlone) {
    guest->join();
    const std::string half = frameOf("{\"PropertyGetRequests\": []}").substr(0, 30);
    ASSERT_EQ(::write(other.value(), half.data(), half.size()), static_cast<ssize_t>(half.size()));
    other = os::Descriptor();
    guest->awaitEndOfReading();
    const auto text = guest->add<StringProperty>("T", "");
    text->setValue("nobody hears it");
    EXPECT_TRUE(eventually([&] { return !guest->agent->setExternalValue("C", "G", "P", "v"); }));
}

TEST_F(OnASocket, APeerThatStopsWithinAFrameHoldsUpTheReaderAlone) {
    guest->join();
    const std::string begin = frameOf("{}").substr(0, 21);
    ASSERT_EQ(::write(other.value(), begin.data(), begin.size()), static_cast<ssize_t>(begin.size()));
    JSONImporterExporter heard;
    HandleStream peer(os::Descriptor(::dup(other.value())));
    EXPECT_TRUE(heard.importFrom(peer)); // the first frame
    const auto text = guest->add<StringProperty>("T", "");
    EXPECT_TRUE(heard.importFrom(peer)); // a publication
    guest.reset();
    EXPECT_TRUE(heard.importFrom(peer)); // the goodbye
    EXPECT_FALSE(heard.importFrom(peer));
}

} // namespace
