#include "tests/support/DeviceRootTest.h"

#include "platform/ByteBuffer.h"
#include "platform/FileStream.h"
#include "platform/WideText.h"
#include "platform/os/Descriptor.h"
#include "platform/os/FileSync.h"

#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <optional>

namespace {

class FileStreams : public DeviceRootTest {
protected:
    FileStreams() { std::filesystem::create_directory(root() / "store"); }

    [[nodiscard]] std::filesystem::path onHost() const { return root() / "store/f"; }
    void put(const std::string& bytes) const { std::ofstream(onHost(), std::ios::binary) << bytes; }
    [[nodiscard]] std::string content() const {
        std::ifstream file(onHost(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

constexpr const wchar_t* kPath = L"/store/f";

TEST_F(FileStreams, ReadToTheEndAndThenNothing) {
    put("0123456789");
    FileStream file(kPath, FileRead);
    ByteBuffer small(4);
    EXPECT_EQ(file.readInto(small, 100), 4) << "no more than the buffer holds";
    char rest[100];
    EXPECT_EQ(file.read(rest, 100), 6);
    EXPECT_EQ(file.read(rest, 100), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(small.data()), 4) + std::string(rest, 6), "0123456789");
}

TEST_F(FileStreams, TellTheirSizeAndReadOnFromWhereTheyWere) {
    put("0123456789");
    FileStream file(kPath, FileRead);
    char byte = 0;
    ASSERT_EQ(file.read(&byte, 1), 1);
    EXPECT_EQ(file.size(), 10U);
    ASSERT_EQ(file.read(&byte, 1), 1);
    EXPECT_EQ(byte, '1');
    char rest[100];
    ASSERT_EQ(file.read(rest, 100), 8);
    EXPECT_EQ(file.size(), 10U) << "also at the end";
    EXPECT_EQ(file.read(rest, 100), 0);
}

struct ModeRow {
    const char* name;
    std::uint8_t mode;
    std::optional<std::string> before;
    bool good;
    std::int32_t written;
    std::optional<std::string> after;
};

TEST_F(FileStreams, OpenAndWriteAsTheirModeSays) {
    const ModeRow rows[] = {
        {"reading needs a file", FileRead, {}, false, StreamNotWritable, {}},
        {"reading writes nothing", FileRead, "old", true, StreamNotWritable, "old"},
        {"writing makes the file", FileWrite | FileTruncate, {}, true, 2, "ab"},
        {"writing empties the file", FileWrite | FileTruncate, "old", true, 2, "ab"},
        {"appending keeps the file", FileWrite | FileAppend, "old", true, 2, "oldab"},
        {"reading and writing start at the beginning", FileRead | FileWrite, "old", true, 2, "abd"},
        {"or at the end", FileRead | FileWrite | FileAtEnd, "old", true, 2, "oldab"},
    };
    for (const ModeRow& row : rows) {
        std::filesystem::remove(onHost());
        if (row.before)
            put(*row.before);
        FileStream file(kPath, row.mode);
        EXPECT_EQ(file.isGood(), row.good) << row.name;
        EXPECT_EQ(file.write("ab", 2), row.written) << row.name;
        EXPECT_EQ(std::filesystem::exists(onHost()), row.after.has_value()) << row.name;
        EXPECT_EQ(content(), row.after.value_or("")) << row.name;
    }
}

TEST_F(FileStreams, AnswerFailedWhereNothingCanBeReadOrWritten) {
    char byte = 0;
    FileStream absent(kPath, FileRead);
    EXPECT_EQ(absent.read(&byte, 1), StreamFailed);
    EXPECT_EQ(absent.size(), 0U);
    FileStream folder(L"/store", FileRead);
    EXPECT_EQ(folder.read(&byte, 1), StreamFailed);
    FileStream unmade(L"/store/none/f", FileWrite | FileTruncate);
    EXPECT_FALSE(unmade.isGood());
    EXPECT_EQ(unmade.write("x", 1), StreamFailed);
    EXPECT_FALSE(unmade.sync());
}

TEST_F(FileStreams, CountNothingAsWrittenThatTheMediumRefuses) {
    FileStream full(L"/dev/full", FileWrite | FileTruncate);
    ASSERT_TRUE(full.isGood());
    EXPECT_EQ(full.write("x", 1), StreamFailed);
    EXPECT_FALSE(full.isGood());
    EXPECT_FALSE(full.sync());
}

TEST_F(FileStreams, AnswerAtEndForAWriteAfterAReadBeyondTheEnd) {
    put("abc");
    FileStream file(kPath, FileRead | FileWrite);
    char bytes[10];
    ASSERT_EQ(file.read(bytes, 10), 3);
    EXPECT_EQ(file.write("x", 1), StreamAtEnd);
    EXPECT_EQ(content(), "abc");
}

TEST_F(FileStreams, CloseTwiceWithoutHarmAndSyncWhatIsOpen) {
    FileStream file(kPath, FileWrite | FileTruncate);
    ASSERT_EQ(file.write("x", 1), 1);
    EXPECT_TRUE(file.sync());
    file.close();
    file.close();
    EXPECT_TRUE(file.isGood());
    EXPECT_FALSE(file.sync());
}

TEST_F(FileStreams, AreSyncedInAFolderThatCannotBeSynced) {
    put("x");
    const os::Descriptor file(::open(onHost().c_str(), O_RDONLY | O_CLOEXEC));
    // This path leads to the file itself, but fsync() of the folder /proc/self/fd gives EINVAL.
    EXPECT_EQ(os::syncFile("/proc/self/fd/" + std::to_string(file.value())), std::error_code());
}

TEST_F(FileStreams, TakeTheCharactersOfAPathForBytes) {
    {
        FileStream file(L"/store/\x00c3\x01a4", FileWrite | FileTruncate);
        EXPECT_TRUE(file.isGood());
    }
    EXPECT_TRUE(std::filesystem::exists(root() / "store/\xc3\xa4"));
    EXPECT_EQ(toWide("a\xff"), L"a\u00ff");
    EXPECT_EQ(toNarrow(toWide("\x80\x7f")), "\x80\x7f");
}

} // namespace
