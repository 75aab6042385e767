#include "tests/support/DeviceRootTest.h"

#include "platform/os/DeviceRoot.h"
#include "platform/os/NamedObjectFolder.h"

#include <cstdlib>
#include <thread>

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

DeviceRootTest::DeviceRootTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "upgradeui-test-XXXXXX").string();
    m_root = ::mkdtemp(pattern.data());
    os::setDeviceRoot(m_root.string());
}

DeviceRootTest::~DeviceRootTest() {
    std::error_code ignored; // a folder that stays behind is no failure of the test
    std::filesystem::remove_all(m_root, ignored);
}

std::filesystem::path DeviceRootTest::objectFile(std::string_view name) const {
    return os::namedObjectPath(name);
}
