#pragma once

#include "platform/os/DeviceRoot.h"

#include <cstdlib>
#include <filesystem>
#include <string>

/// An empty device root for a benchmark, removed at its end.
class TemporaryRoot {
public:
    TemporaryRoot() {
        std::string pattern = (std::filesystem::temp_directory_path() / "upgradeui-bench-XXXXXX").string();
        m_path = ::mkdtemp(pattern.data());
        os::setDeviceRoot(m_path.string());
    }
    ~TemporaryRoot() { std::filesystem::remove_all(m_path); }

    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};
