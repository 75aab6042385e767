#pragma once

#include "platform/ThreadFactory.h"
#include "property/Property.h"
#include "property/PropertyFile.h"
#include "property/PropertyFileStore.h"
#include "property/PropertyManager.h"
#include "tests/support/DeviceRootTest.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <sys/resource.h>

inline constexpr std::int32_t kPriority = 251;

class PropertyManagerTest : public DeviceRootTest {
protected:
    PropertyManagerTest() {
        std::filesystem::create_directory(root() / "store");
        std::filesystem::create_directory(root() / "boot");
    }

    PropertyManager& start() {
        manager.reset();
        manager = std::make_unique<PropertyManager>(
            threads, kPriority, kPriority, L"/store/AppPreferences.ini", L"/boot/AppPreferencesOverride.ini");
        manager->startWorker();
        return *manager;
    }

    // What is queued is written when the manager goes.
    void finish() { manager.reset(); }

    template <typename Type, typename Value>
    std::shared_ptr<Type> add(const char* guid, Value value) {
        auto property = std::make_shared<Type>(value, guid, "n", "G", "g");
        manager->addPersistentProperty(property);
        return property;
    }

    [[nodiscard]] std::filesystem::path file() const { return root() / "store/AppPreferences.ini"; }
    [[nodiscard]] std::filesystem::path backup() const { return root() / "store/AppPreferences.ini.bak"; }
    [[nodiscard]] std::filesystem::path overrideFile() const {
        return root() / "boot/AppPreferencesOverride.ini";
    }

    static void write(const std::filesystem::path& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string read(const std::filesystem::path& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    static std::string good(const std::string& lines) { return withFileCheck(lines); }

    bool loadingFailed() { return named("Property Loading Error")->getStringValue() == "True"; }
    std::shared_ptr<Property> named(const std::string& name) {
        PropertyQueue all;
        manager->getAllProperties(all);
        for (const auto& property : all) {
            if (property->getName() == name)
                return property;
        }
        return nullptr;
    }

    std::shared_ptr<ThreadFactory> threads = std::make_shared<ThreadFactory>(kPriority);
    std::unique_ptr<PropertyManager> manager;
};

// A medium with room for so many bytes a file: what is written beyond that breaks off.
class SmallMedium {
public:
    explicit SmallMedium(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        m_ignored = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallMedium() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_ignored);
    }
    SmallMedium(const SmallMedium&) = delete;
    SmallMedium& operator=(const SmallMedium&) = delete;

private:
    rlimit m_before{};
    void (*m_ignored)(int) = nullptr;
};

inline std::string valuesOf(const std::wstring& path) {
    PropertyFileEntries entries;
    std::string values = PropertyFileStore::parseFile(path, entries) ? "" : "damaged ";
    for (const PropertyFileEntry& entry : entries)
        values.append(entry.value).append(" ");
    return values;
}
