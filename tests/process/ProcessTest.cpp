#include "tests/process/ProcessTest.h"

#include "platform/os/DeviceRoot.h"
#include "tests/support/PlatformLeaks.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace {

const std::filesystem::path kBuiltPrograms = PROGRAM_FOLDER;

// A program finds its device root by its own place, so each test has the programs in a folder of its own.
void placeProgram(const std::filesystem::path& program, const std::filesystem::path& folder) {
    std::error_code otherFileSystem;
    std::filesystem::create_hard_link(program, folder / program.filename(), otherFileSystem);
    if (otherFileSystem)
        std::filesystem::copy_file(program, folder / program.filename());
}

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string leakSuppressions(const std::filesystem::path& folder) {
    const std::filesystem::path file = folder / "leaks";
    std::ofstream(file) << kPlatformLeaks;
    return file.string() + ":print_suppressions=0";
}

} // namespace

ProcessTest::ProcessTest() : m_programFolder(root()) {
    os::setDeviceRoot((m_programFolder / "printer").string());
    placeProgram(kBuiltPrograms / "UpgradeUI", m_programFolder);
    placeProgram(kBuiltPrograms / "upgrader-sim", m_programFolder);
    std::filesystem::create_directory(m_programFolder / "printer");
    std::filesystem::copy(kBuiltPrograms / "printer/hard disk", m_programFolder / "printer/hard disk",
                          std::filesystem::copy_options::recursive);
    // NOLINTBEGIN(concurrency-mt-unsafe): there is no other thread yet
    ::setenv("XDG_RUNTIME_DIR", root().c_str(), 1);
    ::setenv("XDG_CACHE_HOME", root().c_str(), 1);
    // What the platform plug-in of Qt leaves to the end of a process is no leak of the application.
    ::setenv("LSAN_OPTIONS", ("suppressions=" + leakSuppressions(root())).c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // NOLINTEND(concurrency-mt-unsafe)
}

void ProcessTest::startUpgrader() {
    std::string why;
    upgrader.reset();
    upgrader = UpgraderLink::create(why);
    ASSERT_NE(upgrader, nullptr) << why;
}

std::unique_ptr<ChildProcess> ProcessTest::startApplication() {
    return std::make_unique<ChildProcess>(std::vector{(m_programFolder / "UpgradeUI").string()},
                                          m_programFolder / "UpgradeUI.output");
}

std::unique_ptr<ChildProcess> ProcessTest::startSimulator(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), (m_programFolder / "upgrader-sim").string());
    return std::make_unique<ChildProcess>(arguments, m_programFolder / "upgrader-sim.output");
}

bool ProcessTest::repliesWith(std::uint8_t code) {
    const auto reply = upgrader->awaitReply(kDeadline + kDeadline);
    return reply && reply->kind == UpgraderReply::Kind::Command && reply->command == code;
}

bool ProcessTest::acknowledges() {
    // The commands of the application's other thread may come first.
    while (const auto reply = upgrader->awaitReply(kDeadline)) {
        if (reply->kind == UpgraderReply::Kind::Acknowledgement)
            return true;
    }
    return false;
}

bool ProcessTest::sleeps(const ChildProcess& process) {
    const long before = process.contextSwitches();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    return before > 0 && process.contextSwitches() == before;
}

std::string ProcessTest::output(const std::string& program) const {
    return bytesOf(m_programFolder / (program + ".output"));
}

void ProcessTest::place(const std::string& path, const std::string& bytes) const {
    const std::filesystem::path file = printer() / path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string ProcessTest::contents(const std::string& path) const { return bytesOf(printer() / path); }

void ProcessTest::tellScreens() const {
    const std::string control = "hard disk/qt/qml/KCControls/KCPopupBodyText.qml";
    std::string text = contents(control);
    text.insert(text.rfind('}'), "onVisibleChanged: if (visible) console.warn(parent.objectName)\n");
    place(control, text);
}
