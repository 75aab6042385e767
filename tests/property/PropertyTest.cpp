#include "property/BoolProperty.h"
#include "property/PropertyVocabulary.h"
#include "property/StringProperty.h"
#include "property/TriggerProperty.h"
#include "property/UInt32Property.h"
#include "property/ValueText.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>

namespace {

using namespace std::string_literals;

template <typename T, typename V>
std::shared_ptr<T> made(V value) {
    return std::make_shared<T>(value, "guid", "name", "group guid", "group name");
}

/// Counts the calls of a listener that it adds.
template <typename T>
int callsDuring(const std::shared_ptr<T>& property, const std::function<void(T&)>& action) {
    const auto calls = std::make_shared<int>(0);
    property->addListener([calls](const std::shared_ptr<Property>&) { ++*calls; });
    action(*property);
    return *calls;
}

TEST(ValueText, OnlyTheWordFalseIsFalse) {
    const std::map<std::string, bool> rows = {
        {"False", false}, {"FALSE", false}, {"false", false}, {"fAlSe", false},    {"True", true},
        {"", true},       {"0", true},      {"no", true},     {"off", true},       {"false ", true},
        {"fals", true},   {"fälse", true},  {" false", true}, {"fals\xE5"s, true}, {"FALSE\0"s, true},
    };
    for (const auto& [text, value] : rows)
        EXPECT_EQ(parseBoolean(text), value) << '"' << text << '"';
}

constexpr const char* kInvalid = "invalid stoul argument";
constexpr const char* kOutOfRange = "stoul argument out of range";

struct NumberRow {
    std::string text;
    std::uint32_t number;
    const char* error = nullptr;
};

const NumberRow kNumberRows[] = {
    {"0", 0},
    {"500", 500},
    {"4294967295", 4294967295U},
    {"4294967296", 0, kOutOfRange},
    {"99999999999999999999999999", 0, kOutOfRange},
    {std::string(100'000, '9'), 0, kOutOfRange},
    {std::string(100'000, '0') + "7", 7},
    {"-1", 4294967295U},
    {"-0", 0},
    {"-4294967295", 1},
    {"-4294967296", 0, kOutOfRange},
    {"+7", 7},
    {" \t\n\v\f\r7", 7},
    {"12x4", 12},
    {"0x10", 0},
    {"7\0009"s, 7},
    {"1e9", 1},
    {"", 0, kInvalid},
    {" ", 0, kInvalid},
    {"-", 0, kInvalid},
    {"- 1", 0, kInvalid},
    {"+-1", 0, kInvalid},
    {"x12", 0, kInvalid},
    {"\xA0"s + "7", 0, kInvalid},
};

TEST(ValueText, NumbersAreReadInThirtyTwoBits) {
    for (const NumberRow& row : kNumberRows) {
        const std::string what = '"' + row.text.substr(0, 30) + '"';
        try {
            EXPECT_EQ(parseUInt32(row.text), row.number) << what;
            EXPECT_EQ(row.error, nullptr) << what;
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), row.error) << what;
        } catch (const std::out_of_range& error) {
            EXPECT_STREQ(error.what(), row.error) << what;
        }
    }
}

TEST(UInt32Property, ABadNumberLeavesTheValueAndCallsNobody) {
    const auto property = made<UInt32Property>(7U);
    EXPECT_EQ(callsDuring<UInt32Property>(property,
                                          [](UInt32Property& p) {
                                              EXPECT_THROW(p.setFromString("x"), std::invalid_argument);
                                              EXPECT_THROW(p.loadFromString("4294967296"), std::out_of_range);
                                          }),
              0);
    EXPECT_EQ(property->getValue(), 7U);
    EXPECT_THROW(made<UInt32Property>("x"), std::invalid_argument);
}

struct ValueRow {
    const char* what;
    std::shared_ptr<Property> property;
    const char* text;
    const char* after;
    int calls;
};

TEST(Property, SetsCompareAndNotify) {
    const ValueRow rows[] = {
        {"a boolean to the same", made<BoolProperty>(true), "True", "True", 0},
        {"a boolean to another", made<BoolProperty>(true), "false", "False", 1},
        {"a boolean that was made from a text", made<BoolProperty>("False"), "True", "True", 1},
        {"a boolean to what is no boolean", made<BoolProperty>(true), "0", "True", 0},
        {"a number to the same", made<UInt32Property>(5U), " 5", "5", 0},
        {"a number to the largest", made<UInt32Property>("5"), "-1", "4294967295", 1},
        {"a text to the same", made<StringProperty>("a"), "a", "a", 0},
        {"a text to other letters", made<StringProperty>("a"), "A", "A", 1},
        {"a text to nothing", made<StringProperty>("a"), "", "", 1},
        {"a text that was nothing", made<StringProperty>(""), "b|c=d\n", "b|c=d\n", 1},
        {"a trigger to false", made<TriggerProperty>(false), "False", "False", 0},
        {"a trigger to true", made<TriggerProperty>(false), "True", "False", 1},
    };
    for (const ValueRow& row : rows) {
        const int calls =
            callsDuring<Property>(row.property, [&](Property& p) { p.setFromString(row.text); });
        EXPECT_EQ(calls, row.calls) << row.what;
        EXPECT_EQ(row.property->toString(), row.after) << row.what;
        EXPECT_EQ(row.property->getStringValue(), row.after) << row.what;
    }
}

TEST(Property, LoadsAreSilentAndALaterSetOfTheSameValueIsNoChange) {
    for (const std::shared_ptr<Property>& property : std::initializer_list<std::shared_ptr<Property>>{
             made<BoolProperty>(false), made<UInt32Property>(0U), made<StringProperty>("")}) {
        const int calls = callsDuring<Property>(property, [](Property& p) {
            const std::string before = p.toString();
            p.loadFromString("1");
            EXPECT_NE(p.toString(), before);
            p.setFromString("1");
        });
        EXPECT_EQ(calls, 0) << property->toString();
    }
    const auto flag = made<BoolProperty>(false);
    EXPECT_EQ(callsDuring<BoolProperty>(flag, [](BoolProperty& p) { p.loadValue(true); }), 0);
    EXPECT_TRUE(flag->getValue());
}

TEST(StringProperty, ComparesBytesBehindANul) {
    const auto property = made<StringProperty>("a\0b"s);
    property->setValue("a\0c"s);
    EXPECT_EQ(property->getValue(), "a\0c"s);
}

TEST(Property, KeepsItsIdentity) {
    const auto property = made<BoolProperty>(false);
    EXPECT_EQ(property->getGuid(), "guid");
    EXPECT_EQ(property->getName(), "name");
    EXPECT_EQ(property->getGroupGuid(), "group guid");
    EXPECT_EQ(property->getGroupName(), "group name");
}

TEST(Property, CallsItsListenersInTheOrderOfAddingEachWithItself) {
    const auto property = made<BoolProperty>(false);
    std::vector<int> calls;
    for (int i = 0; i < 25; ++i) {
        property->addListener([&calls, i, self = property.get()](const std::shared_ptr<Property>& changed) {
            EXPECT_EQ(changed.get(), self);
            calls.push_back(i);
        });
    }
    property->setValue(true);
    ASSERT_EQ(calls.size(), 25U);
    EXPECT_TRUE(std::ranges::is_sorted(calls));
}

TEST(Property, AListenerThatThrowsEndsTheNotificationAndTheValueStays) {
    const auto property = made<UInt32Property>(1U);
    int calls = 0;
    property->addListener([&](const auto&) { ++calls; });
    property->addListener([](const auto&) { throw std::runtime_error("from a listener"); });
    property->addListener([&](const auto&) { ++calls; });
    EXPECT_THROW(property->setValue(2), std::runtime_error);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(property->getValue(), 2U);
}

TEST(Property, WithoutAHolderItCannotNotifyButDoesNotNoticeWithoutListeners) {
    UInt32Property property(1, "guid", "name", "group guid", "group name");
    EXPECT_NO_THROW(property.setValue(2));
    property.addListener([](const auto&) { FAIL() << "called without an object"; });
    EXPECT_THROW(property.setValue(3), std::bad_weak_ptr);
    EXPECT_EQ(property.getValue(), 3U);
}

TEST(Property, AListenerMayReadAndSetThePropertyFromAnotherThread) {
    const auto property = made<StringProperty>("a");
    std::string seen;
    property->addListener([&](const std::shared_ptr<Property>& changed) {
        std::thread([&] { // would wait for ever for a lock that the notification holds
            seen = changed->getStringValue();
            changed->loadFromString("c");
        })
            .join();
    });
    property->setValue("b");
    EXPECT_EQ(seen, "b");
    EXPECT_EQ(property->getValue(), "c");
}

struct FiringRow {
    const char* what;
    std::vector<bool> results;
    const char* outcome;
};

TEST(TriggerProperty, ReportsTheFirstFailureOfTheLastFiring) {
    const FiringRow rows[] = {
        {"all succeed", {true, true}, "True"},
        {"the first fails", {false, true}, "False"},
        {"the last fails", {true, false}, "False"},
        {"a firing after a failure starts clean", {true}, "True"},
        {"nobody reports: the outcome before stays", {}, "True"},
    };
    const auto trigger = made<TriggerProperty>(false);
    const FiringRow* row = nullptr;
    trigger->addListener([&](const auto&) {
        for (const bool ok : row->results)
            trigger->recordResult(ok);
    });
    for (const FiringRow& current : rows) {
        row = &current;
        trigger->setValue(true);
        EXPECT_EQ(trigger->getStringValue(), current.outcome) << current.what;
        trigger->setValue(false);
        EXPECT_EQ(trigger->getStringValue(), current.outcome) << current.what << ", then set to false";
    }
}

// Each thread sets values of its own, so every set is a change; the sanitizers watch.
TEST(Property, ThreadsLoseNoNotification) {
    constexpr int kSets = 2000;
    const auto text = made<StringProperty>("");
    const auto number = made<UInt32Property>(0U);
    std::atomic<int> calls = 0;
    text->addListener(
        [&](const std::shared_ptr<Property>& p) { calls += p->getStringValue().empty() ? 0 : 1; });
    number->addListener([&](const auto&) { ++calls; });
    const auto setter = [&](const std::string& prefix, std::uint32_t base) {
        for (std::uint32_t i = 1; i <= kSets; ++i) {
            text->setValue(prefix + std::to_string(i));
            number->setValue(base + i);
        }
    };
    std::thread other(setter, "one long text and more of it ", 0);
    setter("another ", 1'000'000);
    other.join();
    EXPECT_EQ(calls, 4 * kSets);
}

TEST(Property, AListenerMayBeAddedWhileAnotherThreadSets) {
    constexpr int kListeners = 40; // past the room that the list is made with
    const auto property = made<UInt32Property>(0U);
    std::atomic<bool> ended = false;
    std::thread setter([&] {
        for (std::uint32_t i = 1; !ended; ++i)
            property->setValue(i);
    });
    std::atomic<int> heard = 0;
    for (int i = 0; i < kListeners; ++i)
        property->addListener([&heard](const auto&) { ++heard; });
    ended = true;
    setter.join();
    heard = 0;
    property->loadFromString("1"); // whatever the other thread got to
    property->setValue(0);
    EXPECT_EQ(heard, kListeners);
}

TEST(Vocabulary, EveryDebugZoneHasItsGuidAndItsOwnFlagThatStartsWithItsDefault) {
    std::set<std::string_view> guids;
    std::size_t flagsOn = 0;
    for (std::size_t i = 0; i < vocabulary::kDebugZones.size(); ++i) {
        guids.insert(vocabulary::kDebugZones[i].property.guid);
        EXPECT_EQ(vocabulary::debugZoneFlag(i), vocabulary::kDebugZones[i].byDefault) << i;
        flagsOn += vocabulary::debugZoneFlag(i) ? 1U : 0U;
    }
    EXPECT_EQ(guids.size(), vocabulary::kDebugZones.size());
    EXPECT_EQ(flagsOn, 5U);
    vocabulary::debugZoneFlag(15) = false;
    EXPECT_FALSE(vocabulary::debugZoneFlag(15));
    EXPECT_TRUE(vocabulary::debugZoneFlag(10));
    vocabulary::debugZoneFlag(15) = true;
}

} // namespace
