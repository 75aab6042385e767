#include "tools/picl/PropertyDocument.h"

#include <gtest/gtest.h>

namespace {

PropertyGetResponse property(const std::string& group, const std::string& name, const std::string& value) {
    return {.group = "G-" + group,
            .groupString = group,
            .guid = "P-" + name,
            .nameString = name,
            .value = value,
            .status = {},
            .component = "C",
            .componentString = "A \"program\""};
}

const Properties kProperties{property("Z", "b", "2"), property("A", "x", "a \"\\\n\u0001 größe"),
                             property("Z", "a", "bytes: \xff\xc3"), property("Z", "c", "")};

std::string goodDocument() { return printDocument(kProperties); }

TEST(Documents, ComeBackAsTheyWereInTheOrderOfTheirNames) {
    std::string why;
    const std::optional<Properties> read = readDocument(goodDocument(), why);
    ASSERT_TRUE(read) << why;
    ASSERT_EQ(read->size(), 4U);
    const std::size_t kOrder[] = {1, 2, 0, 3};
    for (std::size_t index = 0; index < 4; ++index) {
        const PropertyGetResponse& wanted = kProperties[kOrder[index]];
        EXPECT_TRUE(isOn((*read)[index], requestFor(wanted))) << index;
        EXPECT_EQ((*read)[index].value, wanted.value);
        EXPECT_EQ((*read)[index].nameString, wanted.nameString);
        EXPECT_EQ((*read)[index].componentString, wanted.componentString);
    }
    Properties other = kProperties;
    std::swap(other[0], other[3]);
    EXPECT_EQ(printDocument(other), goodDocument()) << "two dumps can be compared";
    EXPECT_EQ(printDocument(*read), goodDocument());
}

TEST(Documents, NoBeginningOfOneIsTakenForTheWhole) {
    const std::string good = goodDocument();
    std::string why;
    for (std::size_t size = 0; size < good.size() - 1; ++size)
        EXPECT_FALSE(readDocument(good.substr(0, size), why)) << size;
}

TEST(Documents, WhatIsNoneIsRefusedWithThePlaceOfTheFault) {
    struct Row {
        const char* is;
        std::string good; // a part of a document, which
        std::string bad;  // becomes this
        std::string why;
    };
    const Row kRows[] = {
        {"another format", "picl properties", "something", "format must be"},
        {"a later version", "\"version\": 1", "\"version\": 2", "version must be 1"},
        {"no version", "\"version\": 1,", "", "version is missing"},
        {"a key that nobody knows", "\"version\"", "\"comment\": 1, \"version\"", "comment is not known"},
        {"a key of a property that nobody knows", "\"P-b\"", R"("P-b", "typo": "x")",
         "groups[1].properties[1].typo is not known"},
        {"no GUID", R"("guid": "P-b",)", "", "groups[1].properties[1].guid is missing"},
        {"no GUID of the program", R"("guid": "C")", R"("guid": 1)", "program.guid must be a text"},
        {"a number for a value", "\"2\"", "2", "groups[1].properties[1].value must be a text"},
        {"no value", "\"2\"", "null", "groups[1].properties[1].value must be a text"},
        {"two values", "\"2\"", R"("2", "valueInHex": "41")", "value must be null beside valueInHex"},
        {"half a byte", "ffc3", "ffc", "valueInHex must be bytes"},
        {"no digits", "ffc3", "fxc3", "valueInHex must be bytes"},
        {"a sign", "ffc3", "+fc3", "valueInHex must be bytes"},
        {"a zero byte", "ffc3", "ff00", "valueInHex must be bytes"},
        {"a zero character", "\"2\"", R"("2\u0000")", "must not hold a zero character"},
        {"a property twice", "\"P-c\"", "\"P-b\"", "groups[1].properties[2] tells of the property"},
        {"a key twice", "\"2\"", R"("2", "value": "3")", "the key \"value\" stands twice"},
        {"bytes that are no UTF-8", "\"2\"", "\"\xff\"", "line 33, column 21"},
        {"a comma too many", "\"2\"", "\"2\",", "line 34, column 9"},
    };
    for (const Row& row : kRows) {
        std::string text = goodDocument();
        const std::size_t at = text.find(row.good);
        ASSERT_NE(at, std::string::npos) << row.is;
        text.replace(at, row.good.size(), row.bad);
        std::string why;
        EXPECT_FALSE(readDocument(text, why)) << row.is;
        EXPECT_NE(why.find(row.why), std::string::npos) << row.is << ": " << why;
    }
    std::string why;
    EXPECT_FALSE(readDocument(R"({"format": "picl properties", "version": 1,
                                  "program": {"name": "", "guid": ""}, "groups": []})",
                              why));
    EXPECT_EQ(why, "groups must hold a property");
    EXPECT_FALSE(
        readDocument(R"({"format": "picl properties", "version": 1, "program": [], "groups": []})", why));
    EXPECT_EQ(why, "program must be an object");
}

} // namespace
