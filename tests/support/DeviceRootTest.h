#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

/// Returns true as soon as @p condition holds, false if it does not within the deadline.
bool eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds deadline = std::chrono::seconds(20));

/// How long a test waits for what must come.
constexpr std::chrono::milliseconds kDeadline = std::chrono::seconds(20);

/// A test with an empty device root of its own, removed at its end.
class DeviceRootTest : public ::testing::Test {
protected:
    DeviceRootTest();
    ~DeviceRootTest() override;

    [[nodiscard]] const std::filesystem::path& root() const { return m_root; }
    [[nodiscard]] std::filesystem::path objectFile(std::string_view name) const;

private:
    std::filesystem::path m_root;
};
