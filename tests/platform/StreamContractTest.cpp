#include "tests/platform/StreamMedia.h"
#include "tests/support/DeviceRootTest.h"
#include "tests/support/FaultyStream.h"
#include "tests/support/ProbedThread.h"

#include <algorithm>
#include <fcntl.h>
#include <future>
#include <span>

namespace {

struct Kind {
    const char* name;
    std::unique_ptr<StreamMedium> (*make)(const std::filesystem::path& root);
    std::uint32_t number = kFileOrDeviceStream;
};

class StreamContract : public DeviceRootTest, public ::testing::WithParamInterface<Kind> {
protected:
    std::unique_ptr<StreamMedium> medium = GetParam().make(root());
};

std::string everyByte() {
    std::string result(256, '\0');
    std::ranges::generate(result, [c = 0]() mutable { return static_cast<char>(c++); });
    return result;
}

std::vector<std::uint8_t> bytes(const std::string& text) { return {text.begin(), text.end()}; }

TEST_P(StreamContract, ReadsEveryByteAsItIsAndNoMoreThanAskedFor) {
    const auto stream = medium->reader(everyByte());
    std::string got(100, '\0');
    ASSERT_EQ(stream->read(got.data(), 100), 100);
    EXPECT_EQ(got, everyByte().substr(0, 100));
    std::string rest(1000, '\0');
    ASSERT_EQ(stream->read(rest.data(), 1000), 156);
    EXPECT_EQ(rest.substr(0, 156), everyByte().substr(100));
}

TEST_P(StreamContract, WritesEveryByteAsItIsWithoutAClose) {
    const auto stream = medium->writer();
    EXPECT_EQ(stream->write("ab\n", 3), 3);
    EXPECT_EQ(stream->writeBytes(bytes(everyByte())), 256);
    EXPECT_EQ(stream->writeBytes({}), 0);
    EXPECT_EQ(medium->take(259), "ab\n" + everyByte());
}

TEST_P(StreamContract, WritesMoreThanTheMediumHoldsAtOnce) {
    const auto stream = medium->writer();
    std::string sent;
    while (sent.size() < 1'000'000)
        sent += everyByte() + "x";
    const auto size = static_cast<std::int32_t>(sent.size());
    auto written = std::async(std::launch::async, [&] { return stream->write(sent.data(), size); });
    const std::string taken = medium->take(sent.size());
    EXPECT_EQ(written.get(), size);
    EXPECT_TRUE(taken == sent);
}

TEST_P(StreamContract, CopiesWhatOneReadingOfTheSourceGives) {
    const auto stream = medium->writer();
    MemoryStream source("0123456789");
    source.largestRead = 4;
    EXPECT_EQ(stream->copyFrom(source, 100), 4);
    EXPECT_EQ(stream->copyFrom(source, 3), 3);
    source.input.clear();
    EXPECT_EQ(stream->copyFrom(source, 100), 0) << "at the end of the source";
    FaultyStream broken(0, "x", StreamNotWritable);
    EXPECT_EQ(stream->copyFrom(broken, 1), StreamNotWritable) << "the source's own failure";
    EXPECT_EQ(stream->write(".", 1), 1);
    EXPECT_EQ(medium->take(8), "0123456.");
}

TEST_P(StreamContract, ClosesAsOftenAsAskedAndMovesNothingAfterwards) {
    const auto reader = medium->reader("abc");
    reader->close();
    reader->close();
    char byte = '-';
    EXPECT_LE(reader->read(&byte, 1), 0);
    EXPECT_EQ(byte, '-');
    const auto writer = medium->writer();
    EXPECT_EQ(writer->write("last", 4), 4);
    writer->close();
    writer->close();
    EXPECT_EQ(medium->take(4), "last") << "closing discards nothing";
    EXPECT_EQ(writer->write("x", 1), StreamFailed);
}

auto inheritedDescriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::ranges::count_if(descriptors, [](const auto& entry) {
        return ::fcntl(std::stoi(entry.path().filename()), F_GETFD) == 0;
    });
}

TEST_P(StreamContract, IsNotInheritedByOtherPrograms) {
    const auto before = inheritedDescriptors();
    const auto stream = medium->writer();
    EXPECT_EQ(inheritedDescriptors(), before);
}

TEST_P(StreamContract, HasItsNumberItsKindAndItsStatus) {
    const std::uint32_t before = MemoryStream().getId();
    const auto first = medium->writer();
    EXPECT_EQ(first->getId(), before + 1);
    EXPECT_EQ(MemoryStream().getId(), before + 2);
    EXPECT_EQ(first->getKind(), GetParam().number);
    EXPECT_EQ(first->getStatus(), 1U);
    first->close();
    EXPECT_EQ(first->getStatus(), 1U);
}

class BlockedStreams : public StreamContract {};

TEST_P(BlockedStreams, EndTheReadAndTheWriteAtClose) {
    const auto stream = medium->writer();
    std::int32_t read = 0;
    std::int32_t written = 0;
    {
        const ProbedThread reading([&] {
            char byte = 0;
            read = stream->read(&byte, 1);
        });
        const ProbedThread writing(
            [&] { written = stream->writeBytes(std::vector<std::uint8_t>(20'000'000)); });
        EXPECT_TRUE(reading.fallsAsleep());
        EXPECT_TRUE(writing.fallsAsleep());
        stream->close();
    }
    EXPECT_EQ(read, StreamFailed);
    EXPECT_EQ(written, StreamFailed);
}

constexpr Kind kKinds[] = {
    {"AFile", makeFileMedium},
    {"AUnixSocket", makeSocketMedium},
    {"ACharacterDevice", makeTerminalMedium},
    {"ATcpConnection", makeTcpMedium, kSocketStream},
};

std::string nameOf(const ::testing::TestParamInfo<Kind>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(, StreamContract, ::testing::ValuesIn(kKinds), nameOf);
INSTANTIATE_TEST_SUITE_P(, BlockedStreams, ::testing::ValuesIn(std::span(kKinds).subspan(1)), nameOf);

} // namespace
