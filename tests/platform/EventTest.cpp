#include "tests/support/DeviceRootTest.h"
#include "tests/support/ProbedThread.h"

#include "platform/AnyEvent.h"
#include "platform/Event.h"
#include "platform/KeltoMutex.h"
#include "platform/SimpleEvent.h"

#include <boost/thread/condition_variable.hpp>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr std::uint32_t kLong = 20'000; // milliseconds
constexpr std::uint32_t kNoWord = 0;

bool hasTheHighBit(std::uint32_t bits) { return (bits & 0x80000000U) != 0; }

// Each kind of wait as one that gives a word: a wait that says only true or false gives 1 or 0.
using Wait = std::uint32_t (*)(Event& event, std::uint32_t timeoutMs);

struct WaitRow {
    const char* name;
    Wait wait;
    std::uint32_t word;     // set before the wait
    std::uint32_t result;   // 0 if the wait must not succeed
    std::uint32_t leftOver; // with auto-reset
};

const WaitRow kWaits[] = {
    {"any of two bits gives both and takes both",
     [](Event& e, std::uint32_t ms) { return e.waitAnyTimed(3, ms); }, 3, 3, 0},
    {"any gives the whole word and takes the masked bit only",
     [](Event& e, std::uint32_t ms) { return e.waitAnyTimed(1, ms); }, 3, 3, 2},
    {"any sleeps on the bits of others", [](Event& e, std::uint32_t ms) { return e.waitAnyTimed(1, ms); }, 6,
     0, 6},
    {"any without limit takes the masked bit only",
     [](Event& e, std::uint32_t) { return e.waitAny(0x80000000U); }, 0x80000002U, 0x80000002U, 2},
    {"all takes the masked bits only",
     [](Event& e, std::uint32_t ms) -> std::uint32_t { return e.waitAllTimed(3, ms); }, 7, 1, 4},
    {"all sleeps while one is missing",
     [](Event& e, std::uint32_t ms) -> std::uint32_t { return e.waitAllTimed(3, ms); }, 5, 0, 5},
    {"all without limit takes the masked bits only",
     [](Event& e, std::uint32_t) -> std::uint32_t { return e.waitAll(3); }, 7, 1, 4},
    {"a match takes the whole word",
     [](Event& e, std::uint32_t ms) -> std::uint32_t { return e.waitMatchTimed(hasTheHighBit, ms); },
     0x80000005U, 1, 0},
    {"a match sleeps while its predicate says no",
     [](Event& e, std::uint32_t ms) -> std::uint32_t { return e.waitMatchTimed(hasTheHighBit, ms); }, 5, 0,
     5},
    {"a match without limit gives the whole word and takes it",
     [](Event& e, std::uint32_t) { return e.waitMatch(hasTheHighBit); }, 0x80000005U, 0x80000005U, 0},
};

// Reads the word without changing it; 0 cannot be told from the time-out, and need not be.
std::uint32_t taken(Event& event) { return event.waitAnyTimed(~0U, 0); }

TEST(EventWait, LooksAtTheBitsBeforeItSleepsAndTakesItsOwn) {
    for (const WaitRow& row : kWaits) {
        for (const bool autoReset : {true, false}) {
            const auto event = createEvent(autoReset);
            event->set(row.word & 0xFFFFU);
            event->set(row.word & 0xFFFF0000U);
            EXPECT_EQ(row.wait(*event, 0), row.result) << row.name;
            EXPECT_EQ(taken(*event), autoReset ? row.leftOver : row.word) << row.name;
            event->clear(~0U);
            EXPECT_EQ(taken(*event), kNoWord) << row.name;
        }
    }
}

TEST(EventWait, EndsWhenAnotherThreadSetsWhatIsMissing) {
    for (const WaitRow& row : kWaits) {
        if (row.result == 0)
            continue;
        const auto event = createEvent(true);
        std::atomic<std::uint32_t> result = 0;
        {
            const ProbedThread waiter([&] { result = row.wait(*event, kLong); });
            EXPECT_TRUE(waiter.fallsAsleep());
            event->set(row.word);
        }
        EXPECT_EQ(result, row.result) << row.name;
        EXPECT_EQ(taken(*event), row.leftOver) << row.name;
    }
}

TEST(EventWait, OneSignalOfAnAutoResetEventEndsTheWaitOfOneOfMany) {
    const auto event = createEvent(true);
    std::atomic<int> ended = 0;
    std::vector<std::thread> waiters;
    waiters.reserve(4);
    for (int i = 0; i < 4; ++i) {
        waiters.emplace_back([&] {
            event->waitAny(1);
            ++ended;
        });
    }
    for (int signals = 1; signals <= 4; ++signals) {
        event->set(1);
        EXPECT_TRUE(eventually([&] { return ended >= signals; }));
        EXPECT_EQ(taken(*event), kNoWord);
    }
    for (std::thread& waiter : waiters)
        waiter.join();
    EXPECT_EQ(ended, 4);
}

TEST(EventWait, DestroysItsPredicateAfterTheReleaseOfTheLock) {
    const auto event = createEvent(true);
    event->set(1);
    bool free = false;
    // Asks from another thread, since the lock is recursive.
    struct Last {
        Event& event;
        bool& free;
        ~Last() {
            std::thread([this] { event.set(2); }).join();
            free = true;
        }
    };
    event->waitMatch(
        [last = std::shared_ptr<Last>(new Last{*event, free})](std::uint32_t bits) { return bits == 1; });
    EXPECT_TRUE(free);
    EXPECT_EQ(taken(*event), 2U) << "the predicate went before the word was cleared";
}

struct ObservedEvent : AnyEvent<KeltoMutex, boost::condition_variable_any> {
    using AnyEvent::AnyEvent;
    using Event::m_waiting;
};

TEST(EventWait, IsOverWhenItsPredicateThrows) {
    ObservedEvent event(true);
    const auto throws = [&event](std::uint32_t) {
        EXPECT_TRUE(event.m_waiting);
        throw std::runtime_error("from the predicate");
        return true;
    };
    EXPECT_THROW(event.waitMatch(throws), std::runtime_error);
    EXPECT_FALSE(event.m_waiting);
    EXPECT_THROW(static_cast<void>(event.waitMatchTimed(throws, kLong)), std::runtime_error);
    EXPECT_FALSE(event.m_waiting);
}

/// A condition variable that lets the bit come in the very moment of the time-out.
struct LateCondition {
    static inline Event* event = nullptr;

    static void notify_all() {}
    template <typename Mutex>
    static void wait(Mutex&) {}
    template <typename Mutex, typename TimePoint>
    static boost::cv_status wait_until(Mutex& mutex, const TimePoint&) KELTO_NO_ANALYSIS {
        mutex.unlock();
        event->set(1);
        mutex.lock();
        return boost::cv_status::timeout;
    }
};

TEST(EventWait, CountsABitThatComesWithTheTimeOut) {
    AnyEvent<KeltoMutex, LateCondition> event(true);
    LateCondition::event = &event;
    EXPECT_EQ(event.waitAnyTimed(1, 1), 1U);
}

/// A lock and a condition variable that know whether the lock is held.
struct KnownMutex {
    static inline int held = 0;
    static void lock() { ++held; }
    static void unlock() { --held; }
};
struct KnowingCondition : LateCondition {
    static inline int heldAtNotify = -1;
    static void notify_all() { heldAtNotify = KnownMutex::held; }
};

TEST(EventWait, IsWokenAfterTheReleaseOfTheLock) {
    AnyEvent<KnownMutex, KnowingCondition> event(true);
    event.set(1);
    EXPECT_EQ(KnowingCondition::heldAtNotify, 0);
}

TEST(SimpleEvent, KeepsOneSignalForOneWait) {
    SimpleEvent event(true);
    EXPECT_FALSE(event.wait(0));
    event.signal();
    event.signal();
    EXPECT_TRUE(event.wait());
    EXPECT_FALSE(event.wait(1));
    event.signal();
    EXPECT_TRUE(event.wait(kLong));
}

TEST(SimpleEvent, WithoutAutoResetStaysSignalled) {
    SimpleEvent event(false);
    event.signal();
    EXPECT_TRUE(event.wait());
    EXPECT_TRUE(event.wait(0));
}

TEST(Events, AreCountedWhileTheyLive) {
    const std::uint32_t before = Event::liveCount();
    {
        const SimpleEvent one(true);
        const auto other = createEvent(false);
        EXPECT_EQ(Event::liveCount(), before + 2);
    }
    EXPECT_EQ(Event::liveCount(), before);
}

bool takenByAnotherThread(KeltoMutex mutex) {
    bool result = false;
    std::thread([&mutex, &result]() KELTO_NO_ANALYSIS {
        result = mutex.tryLock();
        if (result)
            mutex.unlock();
    }).join();
    return result;
}

TEST(KeltoMutex, IsFreeForOthersWhenUnlockedAsOftenAsLockedThroughAnyHandle) {
    KeltoMutex mutex;
    KeltoMutex handle = std::move(mutex); // a copy, like every handle
    // NOLINTNEXTLINE(bugprone-use-after-move): a moved-from handle stays usable
    const auto steps = [&]() KELTO_NO_ANALYSIS {
        mutex.lock();
        EXPECT_TRUE(handle.tryLock());
        handle.unlock();
        EXPECT_FALSE(takenByAnotherThread(handle));
        handle.unlock();
        EXPECT_TRUE(takenByAnotherThread(mutex));
    };
    steps();
}

} // namespace
