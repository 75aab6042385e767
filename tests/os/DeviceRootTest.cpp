#include "tests/support/DeviceRootTest.h"

#include "platform/os/DeviceRoot.h"

namespace {

struct PathRow {
    const char* path;
    const char* onHost; // "R" at the start stands for the device root
};

class HostPath : public DeviceRootTest {};

TEST_F(HostPath, MapsThePrintersFoldersAndLeavesEverythingElse) {
    constexpr PathRow kRows[] = {
        {"/boot", "R/boot"},
        {"/store/AppPreferences.ini", "R/store/AppPreferences.ini"},
        {"/hard disk\\qt\\plugins", "R/hard disk/qt/plugins"},
        {"/Hard Disk/KeltoPrinterApps/", "R/hard disk/KeltoPrinterApps/"},
        {"/HardDisk/KeltoPrinterApps/", "R/hard disk/KeltoPrinterApps/"},
        {"\\BOOT\\fonts", "R/boot/fonts"},
        {"/bootstrap/x", "/bootstrap/x"},
        {"/home/boot", "/home/boot"},
        {"boot/fonts", "boot/fonts"},
        {"\\OXPLApps\\UpgradeUI", "/OXPLApps/UpgradeUI"},
        {"/", "/"},
        {"", ""},
    };
    for (const PathRow& row : kRows) {
        const std::string expected = row.onHost[0] == 'R' ? root().string() + (row.onHost + 1) : row.onHost;
        EXPECT_EQ(os::hostPath(row.path), expected) << row.path;
    }
}

TEST_F(HostPath, DevicesLieInAFolderOfTheirOwn) {
    EXPECT_EQ(os::devicePath("PRN0:"), root().string() + "/dev/PRN0");
    EXPECT_EQ(os::devicePath("/store/device"), root().string() + "/store/device");
    EXPECT_EQ(os::devicePath("/dev/PRN0:"), "/dev/PRN0:");
}

TEST_F(HostPath, TheHostsOwnRootAddsNothing) {
    os::setDeviceRoot("/");
    EXPECT_EQ(os::devicePath("PRN0:"), "/dev/PRN0");
    EXPECT_EQ(os::hostPath("/Hard Disk/x"), "/hard disk/x");
}

TEST_F(HostPath, TheProgramsFolderIsSpelledAsOnThePrinter) {
    const std::string folder = os::programFolder();
    const auto self = std::filesystem::canonical("/proc/self/exe").parent_path();
    EXPECT_EQ(folder.find('/'), std::string::npos);
    EXPECT_EQ(os::hostPath(folder), self.string());
}

} // namespace
