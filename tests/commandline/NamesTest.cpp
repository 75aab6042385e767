#include "tools/picl/PropertyNames.h"
#include "tools/picl/ServerPlace.h"

#include <gtest/gtest.h>

#include <set>

namespace {

PropertyGetResponse property(const std::string& program, const std::string& group, const std::string& name,
                             const std::string& guid) {
    return {.group = "G-" + group,
            .groupString = group,
            .guid = guid,
            .nameString = name,
            .value = "",
            .status = std::string(status::kSuccessful),
            .component = "C-" + program,
            .componentString = program};
}

const Properties kProperties{
    property("Upgrade UI", "General", "Language", "1"),
    property("Upgrade UI", "General", "Dots Per Inch", "2"),
    property("Driver", "General", "Dots Per Inch", "3"),
    property("Driver", "General", "dots per inch", "4"),
    property("Driver", "Paths", "a/b c", "5"),
    property("Driver", "Paths/a", "b c", "6"),
    property("Driver", "Paths", "C-Driver:G-Paths:7", "8"),
    property("Driver", "Paths", "", "7"),
    property("Driver", "Paths", "Twin", "9"),
    property("Driver", "Paths", "Twin", "10"),
    property("Driver", "Paths", "größe", "11"),
};

std::set<std::string> guidsOf(const std::vector<const PropertyGetResponse*>& properties) {
    std::set<std::string> guids;
    for (const PropertyGetResponse* found : properties)
        guids.insert(found->guid);
    return guids;
}

TEST(Names, EachKindOfNameFindsItsProperties) {
    struct Row {
        const char* is;
        std::string name;
        std::set<std::string> found;
    };
    const Row kRows[] = {
        {"a name that is unique", "Language", {"1"}},
        {"another case", "LANGUAGE", {"1"}},
        {"group and name", "general/language", {"1"}},
        {"all three", "Upgrade UI/General/Dots Per Inch", {"2"}},
        {"all three in another case", "upgrade ui/general/DOTS PER INCH", {"2"}},
        {"a name of three", "DOTS per inch", {"2", "3", "4"}},
        {"what is exact goes before what is like it", "dots per inch", {"4"}},
        {"an exact name of two", "Dots Per Inch", {"2", "3"}},
        {"a slash in the name", "a/b c", {"5"}},
        {"a slash in the name or in the group", "Paths/a/b c", {"5", "6"}},
        {"a GUID", "9", {"9"}},
        {"group and GUID", "G-Paths:9", {"9"}},
        {"all three GUIDs", "C-Upgrade UI:G-General:2", {"2"}},
        {"GUIDs, and the name of another", "C-Driver:G-Paths:7", {"7", "8"}},
        {"no name at all", "", {"7"}},
        {"a name of two in one group", "Twin", {"9", "10"}},
        {"a part of a name", "Lang", {}},
        {"a blank too many", "Language ", {}},
        {"a program alone", "Upgrade UI", {}},
    };
    const PropertyNames names(kProperties);
    for (const Row& row : kRows)
        EXPECT_EQ(guidsOf(names.find(row.name)), row.found) << row.is;
}

TEST(Names, EachSpellingThatIsOfferedMeansItsPropertyAlone) {
    const PropertyNames names(kProperties);
    for (const PropertyGetResponse& each : kProperties) {
        ASSERT_FALSE(names.uniqueSpellings(each).empty()) << each.guid;
        for (const std::string& spelling : names.uniqueSpellings(each))
            EXPECT_EQ(guidsOf(names.find(spelling)), std::set{each.guid}) << spelling;
    }
    EXPECT_EQ(names.uniqueSpellings(kProperties[0]).front(), "Language");
    EXPECT_EQ(names.uniqueSpellings(kProperties[1]).front(), "Upgrade UI/General/Dots Per Inch");
    EXPECT_EQ(names.uniqueSpellings(kProperties[8]).front(), "9") << "no name tells it from its twin";
}

TEST(Names, EvenWhatCannotBeToldApartHasASpelling) {
    const Properties twins{property("X", "A", "n", "g:1"), property("X", "A", "n", "g:1")};
    const PropertyNames names(twins);
    EXPECT_EQ(names.uniqueSpellings(twins[0]), std::vector<std::string>{"C-X:G-A:g:1"});
    EXPECT_EQ(names.find("n").size(), 2U);
}

TEST(Names, WhatIsMistypedLeadsToWhatIsLikeIt) {
    const PropertyNames names(kProperties);
    using Spellings = std::vector<std::string>;
    EXPECT_EQ(names.closest("Langauge"), Spellings{"Language"});
    EXPECT_EQ(names.closest("general/lagnuage"), Spellings{"Language"});
    EXPECT_EQ(names.closest("lang"), Spellings{"Language"}) << "a part";
    EXPECT_EQ(names.closest("Dots per inc").size(), 3U) << "as many as are like it";
    EXPECT_EQ(names.closest("something else entirely"), Spellings{});
}

TEST(ServerPlaces, AreReadFromHostAndPort) {
    struct Row {
        const char* text;
        const char* place; // empty: refused
    };
    for (const auto& [text, place] : {Row{"printer", "printer:9102"},
                                      {"10.1.2.3:80", "10.1.2.3:80"},
                                      {"::1", "[::1]:9102"},
                                      {"[::1]", "[::1]:9102"},
                                      {"[::1]:65535", "[::1]:65535"},
                                      {"", ""},
                                      {":80", ""},
                                      {"printer:", ""},
                                      {"printer:0", ""},
                                      {"printer:65536", ""},
                                      {"printer:8x", ""},
                                      {"[::1", ""},
                                      {"[::1]80", ""}}) {
        const std::optional<ServerPlace> read = parseServerPlace(text);
        EXPECT_EQ(read ? read->description() : "", place) << text;
    }
}

} // namespace
