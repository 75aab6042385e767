#include "tools/picl/PropertySetting.h"
#include "tools/picl/PropertyType.h"

#include "picl/DebugZones.h"
#include "platform/ThreadFactory.h"
#include "prefs/DisplayPreferences.h"
#include "prefs/LocalPreferences.h"
#include "property/MakeProperty.h"
#include "property/PublishingPropertyManager.h"
#include "property/TriggerProperty.h"
#include "tests/support/DeviceRootTest.h"

namespace {

namespace vp = vocabulary::properties;

PropertyType realType(const Property& property) {
    if (dynamic_cast<const TriggerProperty*>(&property) != nullptr)
        return PropertyType::Trigger;
    if (dynamic_cast<const BoolProperty*>(&property) != nullptr)
        return PropertyType::Truth;
    if (dynamic_cast<const UInt32Property*>(&property) != nullptr)
        return PropertyType::Number;
    return dynamic_cast<const StringProperty*>(&property) != nullptr ? PropertyType::Text
                                                                     : PropertyType::Unknown;
}

class Types : public DeviceRootTest {};

TEST_F(Types, AreThoseOfTheClassesThatThePropertiesHave) {
    const auto threads = std::make_shared<ThreadFactory>(kThreadPriority);
    const auto manager = std::make_shared<PublishingPropertyManager>(
        threads, kThreadPriority, kThreadPriority, L"/store/file", L"/boot/file");
    createDebugZones(*manager);
    const LocalPreferences local(*manager);
    const auto display = createDisplayPreferences(manager, nullptr);
    display->setScreenResolution(800, 480);

    PropertyQueue all;
    manager->getAllProperties(all);
    for (const std::shared_ptr<Property>& property : all)
        EXPECT_EQ(nameOf(typeOf(property->getGuid())), nameOf(realType(*property))) << property->getName();
    EXPECT_EQ(all.size(), 4U + 18U + 5U + 8U + 2U + 1U) << "the last one stands in for the dots per inch";
    EXPECT_EQ(typeOf(vp::kLoadProperties.guid), PropertyType::Trigger) << "it is in no table";
    EXPECT_EQ(typeOf("A"), PropertyType::Unknown);
}

TEST(Values, AreTheSameWhereTheTypeSaysSo) {
    struct Row {
        PropertyType type;
        const char* one;
        const char* other;
        bool same;
    };
    using enum PropertyType;
    for (const auto& [type, one, other, same] : {Row{Number, "007", "7", true},
                                                 {Number, "7", "70", false},
                                                 {Number, "", "0", false},
                                                 {Number, "7 mm", "7", false},
                                                 {Number, "4294967296", "0", false},
                                                 {Number, "-1", "4294967295", false},
                                                 {Number, "abc", "abd", false},
                                                 {Truth, "TRUE", "True", true},
                                                 {Truth, "true", "False", false},
                                                 {Truth, "1", "True", false},
                                                 {Text, "007", "7", false},
                                                 {Text, "true", "True", false},
                                                 {Text, "", "", true},
                                                 {Unknown, "true", "True", true},
                                                 {Unknown, "007", "7", true},
                                                 {Unknown, "1", "True", false},
                                                 {Unknown, "a", "A", false},
                                                 {Unknown, "99999999999", "99999999999", true}}) {
        EXPECT_EQ(meanTheSame(type, one, other), same) << nameOf(type) << ' ' << one << ' ' << other;
        EXPECT_EQ(meanTheSame(type, other, one), same) << nameOf(type) << ' ' << other << ' ' << one;
    }
}

TEST(Values, ATriggerIsFiredWhateverItTells) {
    PropertyGetResponse trigger;
    trigger.guid = vp::kStoreProperties.guid;
    trigger.value = "False";
    EXPECT_EQ(judge(trigger, "True", trigger), Setting::Fired);
    trigger.guid = vp::kInvertScreen.guid;
    EXPECT_EQ(judge(trigger, "True", trigger), Setting::Refused);
}

} // namespace
