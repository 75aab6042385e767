#include "picl/FrameReader.h"
#include "platform/OXPLStreamDriverInterface.h"
#include "platform/os/DescriptorLimit.h"
#include "platform/os/DeviceRoot.h"
#include "platform/os/TcpConnection.h"
#include "property/ExternalAppProperty.h"
#include "property/UInt32Property.h"
#include "tests/picl/Member.h"
#include "tests/picl/ScriptedPeer.h"
#include "tests/propertyserver/ResidentBytes.h"
#include "tests/propertyserver/ShortHand.h"
#include "tools/propertyserver/Connection.h"
#include "tools/propertyserver/Hub.h"
#include "tools/propertyserver/PropertyServer.h"

#include <arpa/inet.h>
#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

using Clock = std::chrono::steady_clock;

const std::string kFirmware(vocabulary::components::kFirmwareDriver.guid);
const std::string kDots = kFirmware + '/' + std::string(vocabulary::groups::kGeneral.guid) + ':' +
                          std::string(vocabulary::properties::kDotsPerInch.guid);

void connectToDevice(const os::Descriptor& socket) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, os::devicePath("PRN0:").c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(socket.value(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

void connectToTcp(const os::Descriptor& socket, std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket.value(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

std::string travelling(const ShortHand& text) {
    JSONPICL message;
    write(text, message);
    return message.toFrame();
}

/// A program that a test speaks for, at its end of a connection.
class Program {
public:
    static constexpr const char* kEnd = "(the end)";

    explicit Program(os::Descriptor socket) : m_socket(std::move(socket)) {
        ::fcntl(m_socket.value(), F_SETFL, 0); // it may wait
        const timeval limit{.tv_sec = std::chrono::duration_cast<std::chrono::seconds>(kDeadline).count(),
                            .tv_usec = 0};
        ::setsockopt(m_socket.value(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }

    /// Connects to the device.
    Program() : Program(os::Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))) {
        connectToDevice(m_socket);
    }

    /// Writes @p bytes, as long as @p goesOn. Returns whether all went out.
    bool write(std::string_view bytes, const std::atomic<bool>& goesOn) const {
        while (!bytes.empty() && goesOn) {
            const ssize_t count =
                ::send(m_socket.value(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count > 0)
                bytes.remove_prefix(static_cast<std::size_t>(count));
            else if (errno == EAGAIN)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            else
                return false;
        }
        return goesOn;
    }

    void says(const ShortHand& text) const {
        const std::string frame = travelling(text);
        EXPECT_EQ(::send(m_socket.value(), frame.data(), frame.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(frame.size()));
    }

    /// Returns the next message, kEnd at the end of the stream, nothing if none comes by the deadline.
    ShortHand hears() {
        JSONPICL message;
        std::string bytes(65536, '\0');
        while (m_reader.next(message) != FrameReader::Result::Message) {
            const ssize_t count = ::recv(m_socket.value(), bytes.data(), bytes.size(), 0);
            if (count == 0)
                return kEnd;
            if (count < 0)
                return errno == EAGAIN ? "" : kEnd;
            m_reader.take({bytes.data(), static_cast<std::size_t>(count)});
        }
        return message.has(keys::kDisconnect) ? "goodbye" : shortHand(message);
    }

    /// Returns what comes up to and with a message that has @p text, or the end.
    ShortHand hearsUpTo(const std::string& text) {
        ShortHand all;
        for (ShortHand heard = hears();; heard = hears()) {
            all += heard + '\n';
            if (heard.empty() || heard == kEnd || heard.find(text) != std::string::npos)
                return all;
        }
    }

    /// Returns what the firmware says; with it all that was said before is done.
    ShortHand asksFirmware() {
        says("get " + kDots);
        return hearsUpTo(kDots);
    }

private:
    os::Descriptor m_socket;
    FrameReader m_reader;
};

using Mirror = ExternalAppProperty<UInt32Property, unsigned int>;

class Server : public DeviceRootTest {
protected:
    Server() {
        std::filesystem::create_directory(root() / "store");
        std::filesystem::create_directory(root() / "dev");
        start();
    }

    ~Server() override { stop(); }

    void start() {
        std::string why;
        PropertyServerOptions options;
        options.devicePath = os::devicePath("PRN0:");
        options.tcpAddress = "127.0.0.1";
        options.log = [this](std::string_view sentence) {
            notTaken += sentence.starts_with("cannot take a connection") ? 1 : 0;
        };
        server = PropertyServer::create(options, why);
        ASSERT_TRUE(server) << why;
        m_thread = std::thread([this] { server->run(); });
    }

    void stop() {
        if (!server)
            return;
        server->stop();
        m_thread.join();
        server.reset();
    }

    std::unique_ptr<PropertyServer> server;
    std::atomic<int> notTaken = 0; // connections, each time that it was tried

private:
    std::thread m_thread;
};

std::unique_ptr<Member> makeMember(const std::string& name) {
    auto member = std::make_unique<Member>(
        name, std::make_shared<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream));
    member->join();
    return member;
}

std::unique_ptr<Mirror> mirrorOf(const Member& asking, const std::string& owner, const std::string& guid) {
    return std::make_unique<Mirror>(0U, asking.agent, asking.manager, owner, guid, "a name", "G", "a group",
                                    20000U);
}

/// Has @p asking see, watch and set a new property of @p owner.
void talk(Member& owner, const std::string& name, Member& asking) {
    static std::atomic<int> properties = 0;
    const std::string guid = "N" + std::to_string(++properties);
    const auto number = owner.add<UInt32Property>(guid, 1U);
    const auto mirror = mirrorOf(asking, name, guid);
    EXPECT_EQ(mirror->getValue(), 1U);
    number->setValue(2);
    EXPECT_TRUE(eventually([&] { return mirror->getValue() == 2; }));
    mirror->setValue(3);
    EXPECT_TRUE(eventually([&] { return number->getValue() == 3; }));
    EXPECT_TRUE(eventually([&] { return mirror->getValue() == 3; }));
}

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

struct RudeProgram {
    const char* name;
    /// Is rude once, on a connection of its own.
    std::function<void(Program&, const std::atomic<bool>& goesOn)> isRude;
};

class Rude : public Server, public testing::WithParamInterface<RudeProgram> {};

TEST_P(Rude, HarmsNobody) {
    const auto one = makeMember("ONE");
    const auto two = makeMember("TWO");
    one->add<UInt32Property>("FLOODED", 1U);
    talk(*one, "ONE", *two);
    const std::size_t before = residentBytes();
    std::atomic<bool> goesOn = true;
    std::thread rude([&] {
        while (goesOn) {
            Program program;
            GetParam().isRude(program, goesOn);
        }
    });
    for (int i = 0; i < 2; ++i) {
        talk(*one, "ONE", *two);
        talk(*two, "TWO", *one);
    }
    EXPECT_LT(residentBytes(), before + (256U << 20U));
    goesOn = false;
    rude.join();
    EXPECT_NE(Program().asksFirmware().find("=300"), std::string::npos);
}

/// Writes @p bytes of each on so many connections that nobody has room for all of it, and stays.
void stayOften(const std::function<std::string(std::size_t)>& bytes, const std::atomic<bool>& goesOn) {
    std::vector<Program> programs(100);
    for (std::size_t i = 0; i < programs.size(); ++i)
        programs[i].write(bytes(i), goesOn);
    eventually([&] { return !goesOn; });
}

void writeAgain(Program& program, const ShortHand& text, const std::atomic<bool>& goesOn) {
    const std::string frame = travelling(text);
    while (program.write(frame, goesOn)) {
    }
}

const RudeProgram kRudePrograms[] = {
    {"WhoSendsHalfAFrameAndSleeps",
     [](Program& program, const std::atomic<bool>& goesOn) {
         const std::string frame = frameOf(std::string(frame::kLargestText, ' '));
         if (program.write(frame.substr(0, frame.size() / 2), goesOn))
             eventually([&] { return !goesOn; });
     }},
    {"WhoBeginsManyLongFrames",
     [](Program&, const std::atomic<bool>& goesOn) {
         const std::string frame = frameOf(std::string(frame::kLargestText, ' '));
         stayOften([&](std::size_t) { return frame.substr(0, frame::kLargestText); }, goesOn);
     }},
    {"WhoTellsManyLongValues",
     [](Program&, const std::atomic<bool>& goesOn) {
         const std::string value = "/G:P=" + std::string(frame::kLargestText - 1000, 'v');
         stayOften([&](std::size_t i) { return travelling("tell RUDE" + std::to_string(i) + value); },
                   goesOn);
     }},
    {"WhoSendsGarbage",
     [](Program& program, const std::atomic<bool>& goesOn) {
         std::string garbage;
         for (unsigned i = 0; i < 100'000; ++i)
             garbage += static_cast<char>(i * 2654435761U >> 24U);
         while (program.write(garbage, goesOn)) {
         }
     }},
    {"WhoSendsTheLongestFrames",
     [](Program& program, const std::atomic<bool>& goesOn) {
         std::string text = R"({"x": [0)" + repeated(",{}", Connection::kMostValues - 2) + "]}";
         text.resize(frame::kLargestText, ' ');
         const std::string frame = frameOf(text);
         while (program.write(frame, goesOn)) {
         }
     }},
    {"WhoAsksAndReadsNoAnswer",
     [](Program& program, const std::atomic<bool>& goesOn) {
         writeAgain(program, "get" + numbered(" ONE/G:", "", 4096), goesOn);
     }},
    {"WhoAsksForAllAndReadsNoAnswer",
     [](Program& program, const std::atomic<bool>& goesOn) { writeAgain(program, "get-all", goesOn); }},
    {"WhoWatchesAllAndGoes", [](Program& program, const std::atomic<bool>&) { program.says("watch-all"); }},
    {"WhoReportsEverNewProperties",
     [](Program& program, const std::atomic<bool>& goesOn) {
         for (std::size_t i = 0; goesOn; i += 1000)
             program.says("tell" + numbered(" RUDE/G:", "=1", 1000, i));
     }},
    {"WhoSpeaksForOthers",
     [](Program& program, const std::atomic<bool>& goesOn) {
         writeAgain(program, "tell " + kDots + "=1 ONE/G:N1=7 miss TWO/G:N1 lose TWO/G:N2=1", goesOn);
     }},
    {"WhoSetsOnAndOn",
     [](Program& program, const std::atomic<bool>& goesOn) {
         // Always the same: a program whose values change on and on tells some of them later.
         writeAgain(program, "set" + numbered(" ONE/G:FLOODED=1 TWO/G:", "=1", 1000), goesOn);
     }},
};

INSTANTIATE_TEST_SUITE_P(, Rude, testing::ValuesIn(kRudePrograms),
                         [](const auto& row) { return row.param.name; });

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
