#pragma once

#include "bench/Program.h"

#include "platform/os/Descriptor.h"

#include <ctime>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

inline void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

/// A program that is asked by a benchmark, which goes on when that tells anything on its standard output, and
/// ends it.
class OwnerProgram {
public:
    OwnerProgram(const char* program, std::vector<std::string> arguments)
        : m_program(programFolder() / program, m_ready.writeEnd.value(), std::move(arguments)) {
        m_ready.writeEnd = os::Descriptor();
        char byte = 0;
        require(::read(m_ready.readEnd.value(), &byte, 1) == 1, "an owner does not get ready");
    }
    ~OwnerProgram() { m_program.kill(); }

    OwnerProgram(const OwnerProgram&) = delete;
    OwnerProgram& operator=(const OwnerProgram&) = delete;

    /// Returns the processor time that it has had, in seconds.
    [[nodiscard]] double processorTime() const {
        clockid_t clock{};
        timespec time{};
        require(::clock_getcpuclockid(m_program.id(), &clock) == 0 && ::clock_gettime(clock, &time) == 0,
                "no clock of the owner");
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    }

private:
    struct Ready {
        Ready() {
            int ends[2];
            require(::pipe2(ends, O_CLOEXEC) == 0, "no pipe");
            readEnd = os::Descriptor(ends[0]);
            writeEnd = os::Descriptor(ends[1]);
        }
        os::Descriptor readEnd;
        os::Descriptor writeEnd;
    };

    Ready m_ready;
    Program m_program;
};
