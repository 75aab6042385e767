#include "json/JSONValue.h"
#include "json/JSONPrinter.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <stdexcept>

namespace {

std::string printed(const JSONValue& value) {
    std::ostringstream out;
    EXPECT_EQ(&printValue(out, value), &out);
    return out.str();
}

TEST(JSONValue, PrintsToTheByte) {
    JSONObject object;
    object["b"] = std::numeric_limits<std::int64_t>::min();
    object["ab"] = 1.0;
    object["a"] = 0.000000001;
    object["\xFF"] = true;
    object["\""] = "a\"b\\c\n";
    static_cast<void>(object["z"]);
    JSONArray array;
    array.append(-1e20);
    array.append(std::string("text"));
    array.append(JSONObject());
    array.append(JSONArray());
    object["list"] = std::move(array);
    const std::string expected = "{\"\"\": \"a\"b\\c\n\",\"a\": 0.00000000,\"ab\": 1.00000000,"
                                 "\"b\": -9223372036854775808,"
                                 "\"list\": [-100000000000000000000.00000000,\"text\",{},[]],"
                                 "\"z\": null,\"\xFF\": true}";
    EXPECT_EQ(printed(object), expected);
    std::ostringstream out;
    printArray(printObject(out, object), object["list"].arrayValue);
    EXPECT_EQ(out.str(), expected + "[-100000000000000000000.00000000,\"text\",{},[]]");
    EXPECT_EQ(printed(std::numeric_limits<double>::lowest()).size(), 1 + 309 + 1 + 8);
}

TEST(JSONValue, AnAssignmentTakesTheKindAndLeavesTheOtherPlaces) {
    JSONValue value = "text";
    JSONArray items;
    items.append("inner");
    value = JSONValue(std::move(items));
    EXPECT_EQ(value.textValue, "text");
    const JSONValue& inner = value.arrayValue[0];
    value = inner; // a part of itself
    EXPECT_EQ(value.type, JSONValueType::StringValue);
    EXPECT_EQ(value.textValue, "inner");
    EXPECT_EQ(value.arrayValue.size(), 1U);
}

TEST(JSONValue, CopiesAreDeep) {
    JSONObject inner;
    inner["a"] = 1;
    JSONArray array;
    array.append(inner);
    array.append(array[0]); // one of its own
    JSONValue value(std::move(array));
    const JSONValue copy = value;
    value.arrayValue[0].objectValue["a"] = 2;
    EXPECT_EQ(printed(copy), "[{\"a\": 1},{\"a\": 1}]");
    EXPECT_EQ(printed(value), "[{\"a\": 2},{\"a\": 1}]");

    value.arrayValue[0].arrayValue.append("deep");
    value.arrayValue = std::move(value.arrayValue[0].arrayValue); // a container out of the one that goes
    EXPECT_EQ(printed(value), "[\"deep\"]");
    value = copy;
    value = value.arrayValue[0];
    value.objectValue["a"] = 2;
    value = JSONValue(value.objectValue["a"]);
    EXPECT_EQ(printed(value), "2");

    JSONValue moved = std::move(value.arrayValue);
    EXPECT_TRUE(value.arrayValue.empty());
}

TEST(JSONValue, ContainersKeepTheirPromises) {
    JSONObject object;
    EXPECT_TRUE(object.insert("b", 1));
    EXPECT_FALSE(object.insert("b", 2)) << "the first stays";
    EXPECT_EQ(object["a"].type, JSONValueType::NullValue);
    EXPECT_EQ(object.size(), 2U);
    EXPECT_EQ(object.find("b")->value.intValue, 1);
    EXPECT_EQ(object.find("c"), object.end());
    try {
        JSONArray().operator[](0);
        ADD_FAILURE();
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
    }
}

} // namespace
