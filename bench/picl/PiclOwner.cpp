#include "bench/picl/OwnedProperties.h"
#include "bench/picl/OwnerProcess.h"

#include "picl/PICLServerAgent.h"
#include "platform/OXPLStreamDriverInterface.h"
#include "platform/ThreadFactory.h"
#include "platform/os/DeviceRoot.h"
#include "property/PublishingPropertyManager.h"
#include "property/StringProperty.h"
#include "property/UInt32Property.h"

#include <cstdlib>
#include <vector>

namespace {

constexpr std::int32_t kPriority = 251;

std::shared_ptr<Property> componentProperty() {
    const VocabularyEntry& component = vocabulary::components::kUpgradeUI;
    const VocabularyEntry& group = vocabulary::groups::kComponents;
    return std::make_shared<StringProperty>("1.0", component.guid, component.name, group.guid, group.name);
}

using Numbers = std::vector<std::shared_ptr<UInt32Property>>;

Numbers addNumbers(PublishingPropertyManager& manager, std::size_t count) {
    const VocabularyEntry& group = vocabulary::groups::kDebugZone;
    Numbers numbers;
    for (std::size_t i = 0; i < count; ++i) {
        numbers.push_back(std::make_shared<UInt32Property>(owned::value(i), owned::guid(i), owned::name(i),
                                                           group.guid, group.name));
        manager.addProperty(numbers.back());
    }
    return numbers;
}

void followFirst(const Numbers& numbers) {
    numbers[owned::kFirst]->addListener([numbers](const std::shared_ptr<Property>&) {
        for (const auto& number : numbers)
            number->setValue(numbers[owned::kFirst]->getValue());
    });
}

} // namespace

/// Owns as many properties as the second argument tells and answers on the device "PRN0:" below the folder of
/// the first until the other side closes it.
int main(int argc, char* argv[]) {
    if (argc != 3)
        return 2;
    os::setDeviceRoot(argv[1]);
    const auto threads = std::make_shared<ThreadFactory>(kPriority);
    const auto manager = std::make_shared<PublishingPropertyManager>(
        threads, kPriority, kPriority, L"/store/AppPreferences.ini", L"/boot/none");
    const auto agent = std::make_shared<PICLServerAgent>(manager, threads, kPriority, componentProperty());
    manager->setPublisher(agent);
    followFirst(addNumbers(*manager, std::strtoul(argv[2], nullptr, 10)));

    const auto stream = std::make_shared<OXPLStreamDriverInterface>(L"PRN0:", kSocketStream);
    if (!stream->isOpen())
        return 1;
    tellReady();
    agent->setPublishStream(stream);
    agent->startPublishing();
    while (agent->processNextMessage(stream)) {
    }
    return 0;
}
