#include "property/PropertyTable.h"
#include "property/PropertyKey.h"
#include "property/StringProperty.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

std::shared_ptr<Property> made(std::string_view group, std::string_view guid, std::string_view value = "") {
    return std::make_shared<StringProperty>(value, guid, "name", group, "group name");
}

using Keys = std::vector<std::string>;

Keys keysOf(const PropertyQueue& properties) {
    Keys keys;
    for (const auto& property : properties)
        keys.push_back(fullKey(*property));
    return keys;
}

class TableTest : public ::testing::Test {
protected:
    TableTest() {
        for (const char* key : {"G:", "G:b", "G:a", "g:a", "\xC4:a", "Gx:a", "G:B"}) {
            const SplitKey split = splitKey(key);
            EXPECT_TRUE(m_table.addProperty(made(split.groupGuid, split.guid))) << key;
        }
    }
    Keys all() const {
        PropertyQueue properties;
        m_table.getAllProperties(properties);
        return keysOf(properties);
    }
    Keys group(std::string_view guid) const {
        PropertyQueue properties;
        m_table.getGroupProperties(guid, properties);
        return keysOf(properties);
    }
    PropertyTable m_table;
};

TEST_F(TableTest, FindsByGroupAndGuidTogether) {
    struct Row {
        const char* guid;
        const char* group;
        const char* key; // of what is found
    };
    constexpr Row kRows[] = {
        {"a", "G", "G:a"},    {"a", "g", "g:a"},     {"a", "Gx", "Gx:a"}, {"A", "G", nullptr},
        {"b", "g", nullptr},  {"", "G", nullptr},    {"a", "", nullptr},  {"a", "\xC4", "\xC4:a"},
        {"a:", "G", nullptr}, {"x:a", "G", nullptr},
    };
    for (const Row& row : kRows) {
        const auto found = m_table.findProperty(row.guid, row.group);
        EXPECT_EQ(found ? fullKey(*found) : "nothing", row.key ? row.key : "nothing")
            << row.guid << ' ' << row.group;
    }
}

TEST_F(TableTest, ListsAllInByteOrderAndAGroupInTheOrderOfAdding) {
    EXPECT_EQ(all(), (Keys{"G:B", "G:a", "G:b", "Gx:a", "g:a", "\xC4:a"}));
    EXPECT_EQ(group("G"), (Keys{"G:", "G:", "G:b", "G:a", "G:B"}));
    EXPECT_EQ(group("unknown"), Keys{});
    PropertyQueue appended{made("x", "first")};
    m_table.getGroupProperties("g", appended);
    EXPECT_EQ(keysOf(appended), (Keys{"x:first", "g:a"}));
}

TEST_F(TableTest, RefusesADuplicateAndKeepsTheFirst) {
    const auto first = m_table.findProperty("a", "G");
    EXPECT_FALSE(m_table.addProperty(first));
    EXPECT_FALSE(m_table.addProperty(made("G", "a", "another value")));
    EXPECT_FALSE(m_table.addProperty(made("G", "")));
    EXPECT_FALSE(m_table.addProperty(made("g", ""))) << "its key is the one of a group with properties";
    EXPECT_EQ(m_table.findProperty("a", "G"), first);
    EXPECT_EQ(all().size(), 6U);
}

struct RemovalRow {
    const char* what;
    bool isGroup;
    const char* key;
    Keys all;
    Keys group; // G
};

TEST(PropertyTable, RemovesBothEntriesOfWhatIsNamedAndNothingElse) {
    const Keys kAll{"G:a", "G:b", "g:a"};
    const Keys kGroup{"G:", "G:", "G:b", "G:a"};
    const RemovalRow rows[] = {
        {"one property", false, "G:b", {"G:a", "g:a"}, {"G:", "G:", "G:a"}},
        {"the one without a GUID", false, "G:", kAll, {"G:b", "G:a"}},
        {"the key of a group removes no property", false, "g:", kAll, kGroup},
        {"an unknown property", false, "G:x", kAll, kGroup},
        {"a key without a colon", false, "G", kAll, kGroup},
        {"a group", true, "G:", {"g:a"}, {}},
        {"a group named by one of its properties", true, "G:a", {"g:a"}, {}},
        {"a group that is a colon short", true, "G", {"g:a"}, {}},
        {"an unknown group", true, "x:", kAll, kGroup},
    };
    for (const RemovalRow& row : rows) {
        PropertyTable table;
        for (const auto& property : {made("G", ""), made("G", "b"), made("g", "a"), made("G", "a")})
            EXPECT_TRUE(table.addProperty(property));
        for (int times = 0; times < 2; ++times) { // the second has nothing to do
            row.isGroup ? table.removeGroup(row.key) : table.removeByKey(row.key);
            PropertyQueue all;
            PropertyQueue group;
            table.getAllProperties(all);
            table.getGroupProperties("G", group);
            EXPECT_EQ(keysOf(all), row.all) << row.what;
            EXPECT_EQ(keysOf(group), row.group) << row.what;
        }
    }
}

TEST(PropertyTable, SharesOwnershipAndDropsItOutsideItsLock) {
    PropertyTable table;
    for (const bool byGroup : {false, true}) {
        auto property = made("G", "a");
        const std::weak_ptr<Property> watched = property;
        std::shared_ptr<void> atTheEnd(nullptr, [&table](void*) {
            std::thread([&table] { // would wait for ever for a lock that the removal holds
                EXPECT_FALSE(table.findProperty("a", "G"));
            })
                .join();
        });
        property->addListener([held = std::move(atTheEnd)](const auto&) {});
        EXPECT_TRUE(table.addProperty(std::move(property)));
        EXPECT_FALSE(watched.expired());
        byGroup ? table.removeGroup("G:") : table.removeByKey("G:a");
        EXPECT_TRUE(watched.expired());
    }
}

TEST(PropertyTable, AReaderSeesBothEntriesOrNeither) {
    PropertyTable table;
    const auto property = made("G", "a");
    std::atomic<bool> ended = false;
    std::thread writer([&] {
        while (!ended) {
            table.addProperty(property);
            table.removeByKey("G:a");
        }
    });
    for (int i = 0; i < 2000; ++i) {
        PropertyQueue group;
        table.getGroupProperties("G", group);
        EXPECT_LE(group.size(), 1U);
        PropertyQueue all;
        table.getAllProperties(all);
        EXPECT_LE(all.size(), 1U);
    }
    ended = true;
    writer.join();
    PropertyQueue group;
    table.getGroupProperties("G", group);
    EXPECT_TRUE(group.empty());
}

} // namespace
