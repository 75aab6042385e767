#include "prefs/ApplicationIdentity.h"
#include "property/ExternalAppProperty.h"
#include "tests/picl/AgentTest.h"

#include <future>

namespace {

using External = ExternalAppProperty<UInt32Property, unsigned int>;

class ExternalProperty : public AgentTest {
protected:
    ExternalProperty() {
        connect();
        startReader();
    }

    std::future<std::shared_ptr<UInt32Property>> ask(std::uint32_t timeoutMs = 20000) {
        return std::async(std::launch::async, [this, timeoutMs] {
            return agent->getExternalProperty<UInt32Property>("OWNER", "XG", "XP", timeoutMs).lock();
        });
    }

    [[nodiscard]] std::unique_ptr<External> make(const char* owner = "OWNER", bool hasAgent = true,
                                                 std::uint32_t timeoutMs = 50) const {
        return std::make_unique<External>(300U, hasAgent ? agent : nullptr, manager, owner, "XP", "n", "XG",
                                          "g", timeoutMs);
    }

    [[nodiscard]] std::shared_ptr<UInt32Property> held() const {
        return agent->findExternalProperty<UInt32Property>("OWNER", "XG", "XP").lock();
    }

    // Returns when the reader has dealt with what the peer said before.
    void sync() {
        peer->says(R"({"PropertyGetRequests": [{"GUID": "H:"}]})");
        EXPECT_EQ(peer->hears(), frameOf(reports("")));
    }
};

TEST_F(ExternalProperty, AMirrorFollowsItsOwnerUntilItGoes) {
    auto answer = ask();
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    peer->says(ownersReport("200"));
    peer->says(ownersReport("201")); // on the heels of the first
    const auto mirror = answer.get();
    ASSERT_TRUE(mirror);
    EXPECT_EQ(mirror->getName() + mirror->getGroupName(), "ng");
    EXPECT_TRUE(eventually([&] { return mirror->getValue() == 201; }));
    EXPECT_EQ(ask().get(), mirror); // sends nothing
    peer->says(ownersReport("bad"));
    sync();
    EXPECT_EQ(mirror->getValue(), 201U);
    peer->says(R"({"GetAllPropertiesResponse": true,)" + ownersReport("202").substr(1)); // asked by nobody
    sync();
    EXPECT_EQ(mirror->getValue(), 201U);
    peer->says(ownersReport("203", "Property No Longer Available"));
    sync();
    EXPECT_EQ(mirror->getValue(), 203U);
    EXPECT_FALSE(held());
}

TEST_F(ExternalProperty, TwoThatAskAtOnceGetTheOneMirror) {
    auto one = ask();
    auto other = ask();
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    peer->says(ownersReport("1"));
    peer->says(ownersReport("2"));
    ASSERT_EQ(one.wait_for(kDeadline / 2), std::future_status::ready);
    const auto mirror = one.get();
    ASSERT_TRUE(mirror);
    ASSERT_EQ(other.wait_for(kDeadline / 2), std::future_status::ready); // not by its time-out
    EXPECT_EQ(other.get(), mirror);
    EXPECT_EQ(mirror, held());
}

TEST_F(ExternalProperty, ARemovalReportDoesNotAnswerAPendingRequest) {
    auto one = ask();
    auto other = ask();
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    peer->says(ownersReport("1"));
    peer->says(ownersReport("1", "Property No Longer Available"));
    peer->says(ownersReport("2"));
    one.wait();
    const auto mirror = other.get();
    ASSERT_TRUE(mirror);
    EXPECT_EQ(mirror->getValue(), 2U);
}

TEST_F(ExternalProperty, NoAnswerThatServesMakesNoMirror) {
    for (const std::string& said :
         {ownersReport("1", "Property Not Found"), ownersReport("1", "other"), ownersReport("no number")}) {
        SCOPED_TRACE(said);
        auto answer = ask();
        EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
        peer->says(said);
        EXPECT_FALSE(answer.get());
    }
    EXPECT_FALSE(ask(1).get());
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    peer->says(ownersReport("1")); // too late
    sync();
    EXPECT_FALSE(held());
}

TEST_F(ExternalProperty, WithoutAnAnswerObjectsShareOneSubstitute) {
    const auto first = make();
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    const auto second = make("OWNER", false);
    const auto fallback = manager->findProperty("OWNER-XP", "XG");
    ASSERT_TRUE(fallback);
    EXPECT_EQ(first->getValue(), 300U);
    int calls = 0;
    second->addListener([&](const std::shared_ptr<Property>&) { ++calls; });
    first->setValue(5);
    EXPECT_EQ(second->getValue(), 5U);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(peer->heardAll());
}

TEST_F(ExternalProperty, AMirrorInUseSendsEverySetAndAfterExpiryReadsTheDefault) {
    auto answer = ask();
    EXPECT_EQ(peer->hears(), frameOf(kSubscribe));
    peer->says(ownersReport("200"));
    answer.get();
    const auto external = make();
    EXPECT_EQ(external->getValue(), 200U);
    external->setValue(200);
    EXPECT_EQ(peer->hears(),
              frameOf(R"({"PropertySetRequests": [{"Component": "OWNER","GUID": "XG:XP","Value": "200"}]})"));
    peer->says(ownersReport("200", "Property No Longer Available"));
    sync();
    EXPECT_TRUE(eventually([&] { return external->getValue() == 300; }));
    external->setValue(7);
    external->addListener([](const std::shared_ptr<Property>&) {});
    EXPECT_EQ(external->getValue(), 300U);
    EXPECT_TRUE(peer->heardAll());
}

TEST_F(ExternalProperty, OnesOwnPropertyIsUsedItselfAndNothingIsSent) {
    ApplicationIdentity::instance().setComponentGuid("ME");
    const auto mine = std::make_shared<UInt32Property>(1U, "XP", "n", "XG", "g");
    manager->addProperty(mine);
    const auto external = make("ME");
    external->setValue(2);
    EXPECT_EQ(mine->getValue(), 2U);
    EXPECT_TRUE(peer->heardAll());
}

} // namespace
