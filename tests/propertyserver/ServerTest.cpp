#include "platform/os/DescriptorLimit.h"
#include "platform/os/TcpConnection.h"
#include "tests/propertyserver/ServerFixture.h"
#include "tools/propertyserver/Connection.h"
#include "tools/propertyserver/Hub.h"

#include <sys/resource.h>

namespace {

using Clock = std::chrono::steady_clock;

TEST_F(Server, AgentsSeeWatchAndSetEachOther) {
    const auto one = makeMember("ONE");
    const auto two = makeMember("TWO");
    const auto three = makeMember("THREE");
    talk(*one, "ONE", *two);
    talk(*two, "TWO", *three);
    talk(*three, "THREE", *one);
    const auto number = one->add<UInt32Property>("N", 1U);
    const auto seenByTwo = mirrorOf(*two, "ONE", "N");
    const auto seenByThree = mirrorOf(*three, "ONE", "N");
    seenByTwo->setValue(2);
    EXPECT_TRUE(eventually([&] { return seenByThree->getValue() == 2; }));
}

TEST_F(Server, WhoDoesNotReadIsToldTheLastValuesOnceItDoes) {
    Program slow;
    slow.says("watch-all");
    EXPECT_NE(slow.hears(), "");
    Program teller;
    constexpr std::size_t kProperties = 10;
    constexpr int kChanges = 1000;
    const std::string value = "=" + std::string(300, 'v');
    for (int change = 0; change < kChanges; ++change)
        teller.says("tell" + numbered(" X/G:", value + std::to_string(change), kProperties));
    teller.asksFirmware();
    const ShortHand told = slow.hearsUpTo("G:9" + value + std::to_string(kChanges - 1));
    const std::string last = numbered(" X/G:", value + std::to_string(kChanges - 1), kProperties);
    EXPECT_NE(told.find(last), std::string::npos);
    EXPECT_LT(told.size(), last.size() * kChanges / 4) << "most of it was superseded";
}

TEST_F(Server, WhatSomebodyElseTellsIsNoReasonToLoseWhoAsks) {
    Program teller;
    const std::string value(1U << 20U, 'v');
    for (int i = 0; i < 24; ++i)
        teller.says("tell X" + std::to_string(i % 2) + "/G:" + std::to_string(i) + '=' + value);
    teller.asksFirmware();
    Program asking;
    asking.says("watch-all");
    const std::string heard = asking.hearsUpTo("G:23=");
    EXPECT_EQ(heard.find(Program::kEnd), std::string::npos);
}

TEST_F(Server, WhatOthersTellIsNoReasonToLoseWhoAsksWhereMemoryRunsOut) {
    const std::string value(1U << 20U, 'v');
    std::vector<Program> tellers(2);
    for (std::size_t i = 0; i < tellers.size(); ++i) {
        for (int j = 0; j < 36; ++j) // with the answer more than the server holds
            tellers[i].says("tell X" + std::to_string(i) + std::to_string(j % 3) + "/G:" + std::to_string(j) +
                            '=' + value);
        EXPECT_NE(tellers[i].asksFirmware(), "");
    }
    Program asking;
    asking.says("get-all");
    EXPECT_NE(asking.hearsUpTo("X12/G:35=").find("X12/G:35="), std::string::npos);
    EXPECT_NE(asking.asksFirmware().find("=300"), std::string::npos);
}

TEST_F(Server, WhatManySetIsNoReasonToLoseTheOwner) {
    const std::string begin = "set X/G:P=";
    const std::string value(Connection::kMostWaiting / 9, 'v');
    Program owner;
    owner.says("tell X/G:P=1");
    EXPECT_NE(owner.asksFirmware(), "");
    std::vector<Program> setting(15);
    for (const Program& program : setting)
        program.says(begin + value);
    EXPECT_EQ(owner.hears(), begin + value);
    EXPECT_EQ(owner.asksFirmware().find(Program::kEnd), std::string::npos);
}

TEST_F(Server, WhatAProgramSendsLastIsDoneThoughItGoesAtOnce) {
    const auto one = makeMember("ONE");
    const auto number = one->add<UInt32Property>("N", 1U);
    for (unsigned i = 2; i < 50; ++i) {
        {
            Program program;
            program.says("get NOBODY/G:P");
            program.says("set ONE/G:N=" + std::to_string(i));
        }
        ASSERT_TRUE(eventually([&] { return number->getValue() == i; })) << i;
    }
}

TEST_F(Server, WhatIsHeldIsDoneThoughItsProgramHasGone) {
    constexpr std::size_t many = 3 * Hub::kMostOpen;
    Program owner;
    owner.says("tell X/G:P=1");
    EXPECT_NE(owner.asksFirmware(), "");
    for (const char* const last : {"", "goodbye"}) {
        {
            Program program;
            for (std::size_t i = 0; i < many; ++i)
                program.says("set X/G:P=" + std::to_string(i));
            if (*last != '\0')
                program.says(last);
        }
        for (std::size_t i = 0; i < many;) {
            const ShortHand heard = owner.hears();
            if (heard.starts_with("get"))
                owner.says("miss" + heard.substr(3));
            else
                ASSERT_EQ(heard, "set X/G:P=" + std::to_string(i++)) << last;
        }
        EXPECT_TRUE(owner.hears().starts_with("get")) << "behind the last of them";
    }
}

TEST_F(Server, WhoIsHeldAsksNoMoreAndIsHeardAllTheSame) {
    constexpr std::size_t many = Hub::kMostOpen;
    Program owner;
    owner.says("tell X/G:P=1 watch Y/G:P");
    EXPECT_EQ(owner.hears(), "miss Y/G:P");
    Program asking;
    for (int i = 0; i < 3; ++i)
        asking.says("get" + numbered(" X/G:", "", many));
    asking.says("tell Y/G:P=1"); // what somebody else may wait for
    const std::string once = "get" + numbered(" X/G:", "", many) + '\n';
    EXPECT_EQ(owner.hearsUpTo("tell"), once + "tell Y/G:P=1\n");
    for (int i = 0; i < 3; ++i) {
        owner.says("tell" + numbered(" X/G:", "=1", many));
        EXPECT_EQ(asking.hearsUpTo("tell"),
                  (i == 0 ? "watch-all\n" : "") + ("tell" + numbered(" X/G:", "=1", many)) + '\n');
        EXPECT_EQ(i == 2 ? once : owner.hearsUpTo("get"), once);
    }
}

TEST_F(Server, ServesOnTcpAsOnTheDevice) {
    Program program(os::openTcpConnection(::inet_addr("127.0.0.1"), server->tcpPort()));
    program.says("tell X/G:P=1");
    EXPECT_NE(program.asksFirmware().find("=300"), std::string::npos);
    Program other;
    other.says("set X/G:P=2");
    EXPECT_EQ(program.hears(), "set X/G:P=2");
}

TEST_F(Server, TakesConnectionsOnDeviceAndTcpOnceThereAreDescriptorsAgain) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit few{.rlim_cur = 100, .rlim_max = before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    const auto makeSocket = [](int family) {
        return os::Descriptor(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    };
    os::Descriptor device = makeSocket(AF_UNIX);
    os::Descriptor tcp = makeSocket(AF_INET);
    {
        std::vector<os::Descriptor> all;
        do
            all.push_back(makeSocket(AF_UNIX));
        while (all.back().isOpen());
        connectToDevice(device);
        connectToTcp(tcp, server->tcpPort());
        EXPECT_TRUE(eventually([&] { return notTaken >= 4; }));
    }
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_NE(Program(std::move(device)).asksFirmware().find("=300"), std::string::npos);
    EXPECT_NE(Program(std::move(tcp)).asksFirmware().find("=300"), std::string::npos);
}

TEST_F(Server, TellsWhatIsSetOfTheFirmwareAndTakesNoImpossibleResolution) {
    Program program;
    program.says("watch " + kDots);
    EXPECT_EQ(program.hears(), "tell " + kDots + "=300");
    server->setDotsPerInch(203);
    EXPECT_EQ(program.hears(), "tell " + kDots + "=203");
    const std::string set = "set " + kDots + '=';
    Program other;
    other.says(set + "0 " + kDots + "=10001 " + kDots + "=many");
    other.says(set + "600");
    EXPECT_EQ(program.hears(), "tell " + kDots + "=600");
}

TEST_F(Server, AnAnswerOfTheFirmwareMayBeLongerThanAFrame) {
    const ShortHand item = ' ' + kFirmware + "/G:" + std::string(900, 'p');
    Program program;
    program.says("get" + numbered(item, "", Hub::kMostItems));
    EXPECT_NE(program.hearsUpTo("p" + std::to_string(Hub::kMostItems - 1)).find("miss"), std::string::npos);
    EXPECT_NE(Program().asksFirmware().find("=300"), std::string::npos);
}

TEST_F(Server, SaysGoodbyeAtItsEndAndRemovesItsSocket) {
    Program program;
    Program silent; // in the middle of a frame
    silent.write("frame", true);
    program.says("watch " + kDots);
    EXPECT_EQ(program.hears(), "tell " + kDots + "=300");
    stop();
    EXPECT_EQ(program.hears(), "goodbye");
    EXPECT_EQ(program.hears(), Program::kEnd);
    EXPECT_FALSE(std::filesystem::exists(os::devicePath("PRN0:")));
}

TEST_F(Server, ListensOnlyWhereNobodyDoes) {
    std::string why;
    PropertyServerOptions options;
    options.devicePath = os::devicePath("PRN0:");
    EXPECT_FALSE(PropertyServer::create(options, why));
    EXPECT_NE(why.find("taken"), std::string::npos) << why;
    EXPECT_NE(Program().asksFirmware(), "") << "the first one serves on";

    options.devicePath = (root() / "dev/other").string();
    options.tcpAddress = "127.0.0.1";
    options.tcpPort = server->tcpPort();
    EXPECT_FALSE(PropertyServer::create(options, why));
    EXPECT_NE(why.find("port"), std::string::npos) << why;
    options.tcpAddress = "no address";
    EXPECT_FALSE(PropertyServer::create(options, why));
    EXPECT_FALSE(std::filesystem::exists(options.devicePath)) << "what was listened on is not any more";
    options.tcpAddress = "";
    options.devicePath = (root() / "none/other").string();
    EXPECT_FALSE(PropertyServer::create(options, why));
}

TEST_F(Server, AThousandIdleConnectionsCostNobodyTime) {
    if (os::raiseDescriptorLimit() < 3000)
        GTEST_SKIP() << "this host does not permit as many files";
    Program program;
    const auto quickest = [&] {
        auto best = Clock::duration::max();
        for (int i = 0; i < 500; ++i) {
            const auto begin = Clock::now();
            EXPECT_NE(program.asksFirmware(), "");
            best = std::min(best, Clock::now() - begin);
        }
        return best;
    };
    const auto alone = quickest();
    std::vector<Program> idle(1000);
    EXPECT_NE(idle.back().asksFirmware(), "");
    EXPECT_LT(quickest(), 5 * alone);
}

} // namespace
