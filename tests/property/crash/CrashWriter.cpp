#include "tests/property/crash/StepKiller.h"

#include "platform/ThreadFactory.h"
#include "platform/os/DeviceRoot.h"
#include "property/PropertyManager.h"
#include "property/StringProperty.h"
#include "property/UInt32Property.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::int32_t kPriority = 251;
constexpr int kSets = 12;

// In one system call: what is told is told, even if the next thing is the end.
void tell(const std::string& line) {
    if (::write(STDOUT_FILENO, line.data(), line.size()) < 0)
        std::abort();
}

// Tells "D <index> 0" of each property that the file holds, if it is whole at this moment.
void tellStored(const std::wstring& file) {
    PropertyFileEntries entries;
    if (!PropertyFileStore::parseFile(file, entries))
        return;
    for (const PropertyFileEntry& entry : entries)
        tell("D " + std::string(entry.key.substr(entry.key.find('P') + 1)) + " 0\n");
}

} // namespace

/// CrashWriter ROOT FIRST_VALUE PROPERTIES STEP: loads the properties and tells "L <index> <value>" of each,
/// then sets them, telling "S <index> <value>" before each set. Killed at the step STEP of its file work if
/// that is not 0.
int main(int argc, char* argv[]) {
    if (argc != 5)
        return 2;
    const std::string root = argv[1];
    auto value = static_cast<std::uint32_t>(std::stoul(argv[2]));
    const std::size_t count = std::stoul(argv[3]);
    os::setDeviceRoot(root);
    killAtStep(std::stoi(argv[4]), root + "/store", root + "/boot");

    const auto threads = std::make_shared<ThreadFactory>(kPriority);
    const std::wstring file = L"/store/AppPreferences.ini";
    PropertyManager manager(threads, kPriority, kPriority, file, L"/boot/AppPreferencesOverride.ini");
    std::vector<std::shared_ptr<UInt32Property>> properties;
    for (std::size_t i = 0; i < count; ++i) {
        properties.push_back(std::make_shared<UInt32Property>(0U, "P" + std::to_string(i), "n", "G", "g"));
        manager.addPersistentProperty(properties.back());
        tell("L " + std::to_string(i) + ' ' + std::to_string(properties.back()->getValue()) + '\n');
    }
    for (int set = 0; set < kSets; ++set) {
        const std::size_t index = std::size_t{value} * 7 % count;
        tell("S " + std::to_string(index) + ' ' + std::to_string(value) + '\n');
        properties[index]->setValue(value++);
        ::usleep(300); // for the writer to come between
        tellStored(file);
    }
    return 0;
}
