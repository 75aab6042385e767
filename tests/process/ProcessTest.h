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
    [[nodiscard]] std::string output(const std::string& program) const;

    std::unique_ptr<UpgraderLink> upgrader;

private:
    std::filesystem::path m_programFolder;
};
