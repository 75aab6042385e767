#pragma once

#include "tests/commandline/PiclRun.h"
#include "tests/commandline/ScriptedServer.h"

/// Tests of the program "picl" as a process.
class CommandTest : public DeviceRootTest {
protected:
    std::unique_ptr<PiclRun> start(const std::vector<std::string>& arguments,
                                   const std::string& input = "") const {
        return std::make_unique<PiclRun>(root(), arguments, input);
    }
};
