#include "tools/propertyserver/ServerLog.h"

#include "platform/os/Descriptor.h"

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace {

class Log : public testing::Test {
protected:
    Log() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        reader = os::Descriptor(ends[0]);
        writer = os::Descriptor(ends[1]);
        EXPECT_GE(::fcntl(writer.value(), F_SETPIPE_SZ, 1),
                  1); // the least there is: one page, for one line or more
    }

    std::string read() const {
        std::array<char, 65'536> bytes{};
        const ssize_t count = ::read(reader.value(), bytes.data(), bytes.size());
        return {bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
    }

    os::Descriptor reader;
    os::Descriptor writer;
};

TEST_F(Log, LeavesOutWhatNobodyReadsAndTellsHowMuchThatWas) {
    ServerLog log(writer.value());
    log.write("first");
    log.write("second"); // to wait for room here would be for ever
    log.write("third");
    EXPECT_EQ(read(), "picl serve: first\n");
    log.write("fourth");
    EXPECT_EQ(read(), "picl serve: nobody read this; lines that are lost: 2\npicl serve: fourth\n");
    log.write("fifth");
    EXPECT_EQ(read(), "picl serve: fifth\n");
}

TEST_F(Log, KeepsLinesShortAndOutlivesItsReader) {
    ServerLog log(writer.value());
    log.write(std::string(100'000, 'x'));
    EXPECT_EQ(read(), "picl serve: " + std::string(1024, 'x') + '\n');
    log.write("\u009b31m\u202e\u2028\n" + std::string(1000, 'x') + "打印机");
    EXPECT_EQ(read(), R"(picl serve: \u009b31m\u202e\u2028\n)" + std::string(1000, 'x') + '\n')
        << "the terminal obeys nothing, and no character is cut";
    reader = os::Descriptor();
    log.write("nobody is there"); // SIGPIPE would end the test
}

} // namespace
