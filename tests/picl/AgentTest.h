#pragma once

#include "picl/PICLServerAgent.h"
#include "platform/ThreadFactory.h"
#include "property/BoolProperty.h"
#include "property/PropertyVocabulary.h"
#include "property/PublishingPropertyManager.h"
#include "property/StringProperty.h"
#include "property/UInt32Property.h"
#include "tests/picl/ScriptedPeer.h"

#include <memory>
#include <string>
#include <thread>

/// An agent over a manager of its own, and a peer that a test speaks for.
class AgentTest : public DeviceRootTest {
protected:
    AgentTest() {
        std::filesystem::create_directory(root() / "store");
        manager = std::make_shared<PublishingPropertyManager>(threads, kThreadPriority, kThreadPriority,
                                                              L"/store/AppPreferences.ini", L"/boot/none");
        agent = std::make_shared<PICLServerAgent>(manager, threads, kThreadPriority, component);
        manager->setPublisher(agent);
        period = std::dynamic_pointer_cast<UInt32Property>(manager->findProperty(
            vocabulary::properties::kPropertyPublishingPeriodInMs.guid, vocabulary::groups::kGeneral.guid));
    }

    ~AgentTest() override {
        peer->close();
        if (reader.joinable())
            reader.join();
    }

    template <typename Type, typename Value>
    std::shared_ptr<Type> add(const char* guid, Value value) {
        auto property = std::make_shared<Type>(value, guid, "a name", "G", "a group");
        manager->addProperty(property);
        return property;
    }

    /// Publishes to the peer, which hears the first frame.
    void connect() {
        agent->setPublishStream(peer);
        EXPECT_EQ(peer->hears(), frameOf(everything()));
    }

    /// Reads what the peer says, until it says what cannot be read.
    void startReader() {
        reader = std::thread([held = agent, stream = peer] {
            while (held->processNextMessage(stream)) {
            }
        });
    }

    static std::string report(const Property& property, std::string_view status = "Successful") {
        return R"({"Component": "MY-GUID","ComponentString": "My Program","GUID": ")" +
               property.getGroupGuid() + ":" + property.getGuid() + R"(","GroupString": ")" +
               property.getGroupName() + R"(","NameString": ")" + property.getName() + R"(","Status": ")" +
               std::string(status) + R"(","Value": ")" + property.getStringValue() + R"("})";
    }

    static std::string reports(const std::string& list) {
        return R"({"PropertyGetResponses": [)" + list + "]}";
    }

    [[nodiscard]] std::string everything(const std::string& begin = "{") const {
        PropertyQueue properties;
        manager->getAllProperties(properties);
        std::string list;
        for (const auto& property : properties)
            list += (list.empty() ? "" : ",") + report(*property);
        return begin + reports(list).substr(1);
    }

    /// What the owner of a property says of it.
    static std::string ownersReport(std::string_view value, std::string_view status = "Successful") {
        return reports(R"({"Component": "OWNER","GUID": "XG:XP","GroupString": "g","NameString": "n",)"
                       R"("Status": ")" +
                       std::string(status) + R"(","Value": ")" + std::string(value) + R"("})");
    }

    static constexpr const char* kSubscribe =
        R"({"PropertySubscribeRequests": [{"Component": "OWNER","GUID": "XG:XP"}]})";
    static constexpr const char* kGoodbye = R"({"Disconnect": "True"})";

    std::shared_ptr<ThreadFactory> threads = std::make_shared<ThreadFactory>(kThreadPriority);
    std::shared_ptr<Property> component =
        std::make_shared<StringProperty>("x", "MY-GUID", "My Program", "c", "Components");
    std::shared_ptr<PublishingPropertyManager> manager;
    std::shared_ptr<PICLServerAgent> agent;
    std::shared_ptr<UInt32Property> period;
    std::shared_ptr<ScriptedPeer> peer = std::make_shared<ScriptedPeer>();
    std::thread reader;
};
