#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/DeviceRootTest.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

/// One run of the program "picl", with what it says to whom.
class PiclRun {
public:
    /// Starts it with @p arguments, the command first, over the device root @p root, in which its streams
    /// lie.
    PiclRun(const std::filesystem::path& root, const std::vector<std::string>& arguments,
            const std::string& input = "")
        : m_out(root / ("out" + std::to_string(++s_count))), m_err(root / ("err" + std::to_string(s_count))) {
        const std::filesystem::path in = root / ("in" + std::to_string(s_count));
        std::ofstream(in, std::ios::binary) << input;
        const std::string redirected = "exec \"$0\" \"$@\" <'" + in.string() + "' 2>'" + m_err.string() + "'";
        std::vector<std::string> all{"/bin/sh", "-c", redirected, PICL_PROGRAM, "--root", root.string()};
        all.insert(all.end(), arguments.begin(), arguments.end());
        m_process = std::make_unique<ChildProcess>(all, m_out);
    }

    std::optional<int> status() { return m_process->exitStatus(kDeadline); }
    void signal(int number) const { m_process->signal(number); }

    [[nodiscard]] std::string out() const { return contents(m_out); }
    [[nodiscard]] std::string err() const { return contents(m_err); }

    /// Returns whether the standard output becomes @p text, each '#' of which stands for any digit.
    [[nodiscard]] bool prints(const std::string& text) const {
        return eventually([&] {
            const std::string printed = out();
            return std::equal(
                printed.begin(), printed.end(), text.begin(), text.end(),
                [](char c, char form) { return form == '#' ? c >= '0' && c <= '9' : c == form; });
        });
    }

private:
    static std::string contents(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        return bytes.str();
    }

    static inline int s_count = 0;
    const std::filesystem::path m_out;
    const std::filesystem::path m_err;
    std::unique_ptr<ChildProcess> m_process;
};
