#include "tests/picl/AgentTest.h"

namespace {

struct Exchange {
    const char* name;
    const char* said;
    std::vector<std::string> heard;
};

const char* const kMiss = R"({"Component": "C","ComponentString": "Unknown Group","GUID": "G:none",)"
                          R"("GroupString": "Unknown Group","NameString": "Unknown Property",)"
                          R"("Status": "Property Not Found","Value": "Invalid Value"})";

TEST_F(AgentTest, EachMessageIsAnsweredInWholeFrames) {
    const auto number = add<UInt32Property>("N", 7U);
    const auto text = add<StringProperty>("T", "t");
    const std::string n = report(*number);
    const std::string t = report(*text);
    const std::string all = everything(R"({"GetAllPropertiesResponse": true,)");
    const Exchange exchanges[] = {
        {"a get", R"({"PropertyGetRequests": [{"Component": "any","GUID": "G:N"}]})", {reports(n)}},
        {"a group", R"({"PropertyGetRequests": [{"GUID": "G:"}]})", {reports(n + "," + t)}},
        {"a group that is empty", R"({"PropertyGetRequests": [{"GUID": "H:"}]})", {reports("")}},
        {"a miss beside a hit",
         R"({"PropertyGetRequests": [{"Component": "C","GUID": "G:none"},{"GUID": "G:T"}]})",
         {reports(kMiss + ("," + t))}},
        {"all beside one", R"({"GetAllProperties": 0,"PropertyGetRequests": [{"GUID": "G:N"}]})", {all}},
        {"a subscription and a get, the gets first",
         R"({"PropertySubscribeRequests": [{"GUID": "G:N"}],"PropertyGetRequests": [{"GUID": "G:T"}]})",
         {everything(), reports(t + "," + n)}},
        {"a subscription to all", R"({"SubscribeAllCurrentAndNewProperties": 0})", {everything(), all}},
        {"a goodbye, which is not acted on", R"({"Disconnect": "True"})", {}},
        {"nothing", "{}", {}},
        {"reports nobody asked for",
         R"({"GetAllPropertiesResponse": true,"PropertyGetResponses": [{}]})",
         {}},
        {"a report nobody asked for", R"({"PropertyGetResponses": [{"GUID": "G:N","Value": "9"}]})", {}},
        {"a key that would break the answer",
         R"({"PropertyGetRequests": [{"Component": "C","GUID": "G:\""}]})",
         {reports(std::string(kMiss).replace(std::string(kMiss).find("none"), 4, R"(\")"))}},
    };
    for (const Exchange& exchange : exchanges) {
        SCOPED_TRACE(exchange.name);
        peer->says(exchange.said);
        EXPECT_TRUE(agent->processNextMessage(peer));
        for (const std::string& heard : exchange.heard)
            EXPECT_EQ(peer->hears(), frameOf(heard));
        EXPECT_TRUE(peer->heardAll());
    }
    peer->says("[]");
    EXPECT_FALSE(agent->processNextMessage(peer));
}

TEST_F(AgentTest, ABadSetEndsNeitherTheMessageNorTheReader) {
    const auto number = add<UInt32Property>("N", 7U);
    const auto angry = add<StringProperty>("A", "");
    const auto text = add<StringProperty>("T", "");
    angry->addListener([](const std::shared_ptr<Property>&) { throw 5; });
    peer->says(
        R"({"PropertySetRequests": [{"GUID": "G:N","Value": "x"},{"GUID": "G:N","Value": "4294967296"},)"
        R"({"GUID": "G:none","Value": "1"},{"GUID": "G:A","Value": "1"},{"GUID": "G:T","Value": "\n"}],)"
        R"("PropertyGetRequests": [{"GUID": "G:N"}]})");
    EXPECT_TRUE(agent->processNextMessage(peer));
    EXPECT_EQ(peer->hears(), frameOf(reports(report(*number)))); // the sets came before it
    EXPECT_EQ(number->getValue(), 7U);
    EXPECT_EQ(text->getValue(), "\n");
}

TEST_F(AgentTest, AnAnswerThatCannotBeWrittenEndsTheReader) {
    peer->fail(true);
    peer->says(R"({"GetAllProperties": true})");
    EXPECT_FALSE(agent->processNextMessage(peer));
}

/// A text whose first reading runs a function.
class ObservedText final : public StringProperty {
public:
    using StringProperty::StringProperty;
    [[nodiscard]] std::string getStringValue() const override {
        std::string value = StringProperty::getStringValue();
        if (const auto run = std::exchange(onRead, {}))
            run();
        return value;
    }
    mutable std::function<void()> onRead;
};

TEST_F(AgentTest, AnAnswerIsNotOlderThanAPublicationBeforeIt) {
    const auto text = add<ObservedText>("T", "old");
    connect();
    period->setValue(250);
    agent->startPublishing();
    EXPECT_FALSE(peer->hears().empty());
    text->onRead = [&] { // the publisher reports the new value while the answer is made
        text->setValue("new");
        EXPECT_TRUE(eventually([&] { return agent->countOfChangedProperties() == 0; }));
        static_cast<void>(peer->sees(3, std::chrono::milliseconds(100)));
    };
    peer->says(R"({"PropertyGetRequests": [{"GUID": "G:T"}]})");
    EXPECT_TRUE(agent->processNextMessage(peer));
    EXPECT_NE(peer->hears().find("old"), std::string::npos);
    EXPECT_NE(peer->hears().find("new"), std::string::npos);
}

TEST_F(AgentTest, ManyQuestionsForLongValuesAreAnsweredInFramesThatThePeerTakes) {
    add<StringProperty>("L", std::string(1000000, 'l'));
    std::string request = R"({"PropertyGetRequests": [{"GUID": "G:L"})";
    for (int i = 1; i < 10; ++i)
        request += R"(,{"GUID": "G:L"})";
    peer->says(request + "]}");
    EXPECT_TRUE(agent->processNextMessage(peer));
    EXPECT_TRUE(peer->sees(3));
    for (const std::size_t count : {4U, 4U, 2U})
        EXPECT_EQ(peer->hears().size() / 1000000, count);
}

} // namespace
