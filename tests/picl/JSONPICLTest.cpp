#include "picl/JSONPICL.h"

#include "tests/support/MemoryStream.h"

#include <gtest/gtest.h>

namespace {

std::string textOf(JSONPICL& message) {
    MemoryStream stream;
    EXPECT_TRUE(message.exportTo(stream));
    return stream.output.substr(frame::kHeaderSize);
}

std::string framed(const std::string& text) {
    std::string bytes(frame::kMagic.begin(), frame::kMagic.end());
    for (std::size_t i = 0, size = text.size(); i < 4; ++i, size >>= 8)
        bytes += static_cast<char>(size & 0xFF);
    return bytes + text;
}

std::unique_ptr<JSONPICL> read(const std::string& text) {
    auto message = std::make_unique<JSONPICL>();
    MemoryStream stream(framed(text));
    EXPECT_TRUE(message->importFrom(stream)) << text;
    return message;
}

TEST(JSONPICL, WritesEveryKindOfContentToTheByte) {
    JSONPICL disconnect;
    disconnect.addDisconnect();
    EXPECT_EQ(textOf(disconnect), R"({"Disconnect": "True"})");

    JSONPICL subscribe;
    subscribe.addSubscribeRequest({.component = "C", .group = "G", .guid = "P"});
    EXPECT_EQ(textOf(subscribe), R"({"PropertySubscribeRequests": [{"Component": "C","GUID": "G:P"}]})");
    subscribe.addSubscribeRequest({.component = "D", .group = "H", .guid = ""});
    EXPECT_EQ(
        textOf(subscribe),
        R"({"PropertySubscribeRequests": [{"Component": "C","GUID": "G:P"},{"Component": "D","GUID": "H:"}]})");
    subscribe.addSubscribeRequests(
        std::make_unique<PropertyGetRequests>(1, PropertyGetRequest{"E", "I", "Q"}));
    EXPECT_EQ(textOf(subscribe), R"({"PropertySubscribeRequests": [{"Component": "E","GUID": "I:Q"}]})");

    JSONPICL set;
    set.addSetRequest({.guid = "P", .group = "G", .component = "C", .value = "False"});
    EXPECT_EQ(textOf(set), R"({"PropertySetRequests": [{"Component": "C","GUID": "G:P","Value": "False"}]})");

    JSONPICL answer;
    const PropertyGetResponse report{.group = "G",
                                     .groupString = "General",
                                     .guid = "P",
                                     .nameString = "Property Publishing Period in ms",
                                     .value = "500",
                                     .status = "Successful",
                                     .component = "C",
                                     .componentString = "Upgrade UI"};
    answer.addGetResponses(std::make_unique<PropertyGetResponses>(1, report));
    answer.addGetAllPropertiesResponse();
    EXPECT_EQ(textOf(answer),
              R"({"GetAllPropertiesResponse": true,"PropertyGetResponses": [{"Component": "C",)"
              R"("ComponentString": "Upgrade UI","GUID": "G:P","GroupString": "General",)"
              R"("NameString": "Property Publishing Period in ms","Status": "Successful","Value": "500"}]})");
}

std::string shown(const JSONPICL& message) {
    PropertyGetRequests gets;
    PropertySetRequests sets;
    PropertyGetResponses reports;
    message.readGetRequests(gets);
    message.readSetRequests(sets);
    message.readGetResponses(reports);
    std::string text;
    for (const auto& [component, group, guid] : gets)
        text.append("get ").append(component).append("|").append(group).append("|").append(guid).append(";");
    for (const auto& [guid, group, component, value] : sets)
        text.append("set ").append(component).append("|").append(group).append("|").append(guid).append(
            "=" + value + ";");
    for (const PropertyGetResponse& r : reports)
        text.append("report ").append(r.component + "|" + r.componentString + "|" + r.group + "|" +
                                      r.groupString + "|" + r.guid + "|" + r.nameString + "|" + r.status +
                                      "=" + r.value + ";");
    return text;
}

TEST(JSONPICL, ReadsWhatItCanAndRejectsNothing) {
    struct {
        const char* name;
        const char* text;
        const char* records;
    } const kRows[] = {
        {"gets before subscriptions",
         R"({"PropertySubscribeRequests": [{"Component":"D","GUID":"H:Q"}],
             "PropertyGetRequests": [{"Component":"C","GUID":"G:P"},{"GUID":"G:"}]})",
         "get C|G|P;get |G|;get D|H|Q;"},
        {"the first colon splits",
         R"({"PropertyGetRequests": [{"GUID":"A:B:C"},{"GUID":"AB"},{"GUID":":"},{}]})",
         "get |A|B:C;get |AB|AB;get ||;get ||;"},
        {"fields that are no texts",
         R"({"PropertySetRequests": [{"GUID":["A:B"],"Value":5,"Component":null}]})", "set ||=;"},
        {"items that are no objects", R"({"PropertySetRequests": [1,"a",[{"GUID":"A:B"}],null]})",
         "set ||=;set ||=;set ||=;set ||=;"},
        {"lists that are none", R"({"PropertySetRequests": {"GUID":"A:B"},"PropertyGetResponses":"x"})", ""},
        {"nothing of a repeated key",
         R"({"PropertyGetRequests":3,"PropertyGetRequests":[{"GUID":"A:B"}],"PropertySetRequests":5})", ""},
        {"nothing of a repeated field",
         R"({"PropertySetRequests":[{"GUID":"A:B","GUID":"stale text","Value":7}]})", "set |A|B=;"},
        {"unknown keys", R"({"x": 1, "PropertySetRequests": [{"GUID":"A:B","x":"y","Value":"1"}]})",
         "set |A|B=1;"},
        {"a report",
         R"({"PropertyGetResponses": [{"Component":"1","ComponentString":"2","GUID":"3:5","GroupString":"4",
             "NameString":"6","Status":"7","Value":"8"}]})",
         "report 1|2|3|4|5|6|7=8;"},
    };
    for (const auto& [name, text, records] : kRows)
        EXPECT_EQ(shown(*read(text)), records) << name;
    EXPECT_TRUE(read(R"({"SubscribeAllCurrentAndNewProperties": 0})")->hasSubscribeAll());
    EXPECT_FALSE(read("{}")->hasSubscribeAll());
    EXPECT_TRUE(read(R"({"GetAllProperties": null})")->has(keys::kGetAll));

    const auto replaced =
        read(R"({"PropertySetRequests": 7})"); // a key of another kind takes items all the same
    replaced->addSetRequest({.guid = "P", .group = "G", .component = "C", .value = "v"});
    EXPECT_EQ(shown(*replaced), "set C|G|P=v;");
}

TEST(JSONPICL, EveryByteOfAValueArrives) {
    std::string all;
    for (int byte = 1; byte <= 0xFF; ++byte) {
        const char c = static_cast<char>(byte);
        all += c;
        JSONPICL message;
        message.addSetRequest({.guid = "P", .group = "G", .component = "C", .value = escapeText({&c, 1})});
        EXPECT_EQ(shown(*read(textOf(message))), std::string("set C|G|P=") + c + ";") << byte;
    }
    JSONPICL message;
    message.addSetRequest({.guid = "P", .group = "G", .component = "C", .value = escapeText(all)});
    EXPECT_EQ(shown(*read(textOf(message))), "set C|G|P=" + all + ";");
    EXPECT_EQ(escapeText(std::string("\0\x01\x1F\x7F\xC3\xA9/\"\\\b\f\n\r\t", 14)),
              "\\u0000\\u0001\\u001f\x7F\xC3\xA9/\\\"\\\\\\b\\f\\n\\r\\t");
}

} // namespace
