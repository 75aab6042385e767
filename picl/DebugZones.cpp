#include "picl/DebugZones.h"

#include "property/BoolProperty.h"
#include "property/MakeProperty.h"
#include "property/PropertyManager.h"

#include <cstddef>

void createDebugZones(PropertyManager& manager) {
    for (std::size_t index = 0; index < vocabulary::kDebugZones.size(); ++index) {
        std::atomic<bool>& flag = vocabulary::debugZoneFlag(index);
        const auto zone = makeProperty<BoolProperty>(vocabulary::groups::kDebugZone,
                                                     vocabulary::kDebugZones[index].property, flag.load());
        zone->addListener([&flag](const std::shared_ptr<Property>& changed) {
            flag = static_cast<const BoolProperty&>(*changed).getValue();
        });
        manager.addPersistentProperty(zone);
        // A stored value came without a call of the listener; a peer may set another one meanwhile.
        do
            flag = zone->getValue();
        while (flag != zone->getValue());
    }
}
