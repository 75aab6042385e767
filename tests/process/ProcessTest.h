#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/DeviceRootTest.h"
#include "tools/upgrader/UpgraderLink.h"

#include <memory>
#include <string>

/// Tests of the programs as processes, each with a program folder of its own in which a device root stands.
class ProcessTest : public DeviceRootTest {
protected:
    ProcessTest();

    void startUpgrader();

    /// Starts the application; the link listens at some time after that.
    std::unique_ptr<ChildProcess> startApplication();

    /// Starts the simulator with @p arguments.
    std::unique_ptr<ChildProcess> startSimulator(std::vector<std::string> arguments);

    /// Returns whether the next reply is the command @p code.
    bool repliesWith(std::uint8_t code);
    bool acknowledges();

    /// Returns whether the children of the process have slept for a whole second.
    static bool sleeps(const ChildProcess& process);

    [[nodiscard]] std::filesystem::path programFolder() const { return m_programFolder; }
    [[nodiscard]] std::filesystem::path printer() const { return m_programFolder / "printer"; }
    [[nodiscard]] std::string output(const std::string& program) const;

    /// Puts a file with @p bytes at @p path of the device root, and what folders it needs.
    void place(const std::string& path, const std::string& bytes) const;

    /// Returns the bytes of the file at @p path of the device root, none where there is no such file.
    [[nodiscard]] std::string contents(const std::string& path) const;

    /// Makes the screens of the application tell their names in its output when they come up.
    void tellScreens() const;

    /// Returns whether the screens that came up are those of earlier calls and then @p screens, by the
    /// deadline, and the application has told nothing else. Requires: tellScreens().
    template <typename... Names>
    bool shows(Names... screens) {
        ((m_shown += "qml: " + std::string(screens) + '\n'), ...);
        return eventually([this] { return output("UpgradeUI") == m_shown; });
    }

    std::unique_ptr<UpgraderLink> upgrader;

private:
    std::filesystem::path m_programFolder;
    std::string m_shown;
};
