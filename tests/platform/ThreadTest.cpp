#include "tests/support/DeviceRootTest.h"
#include "tests/support/NoThreads.h"

#include "platform/SimpleEvent.h"
#include "platform/ThreadFactory.h"
#include "platform/Worker.h"

#include <atomic>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto kStopLimit = 500ms;

/// What a routine does and what it finds.
struct Work {
    SimpleEvent order{false};
    SimpleEvent begun{false};
    std::atomic<int> runs = 0;
    std::atomic<int> ended = 0;
    int nice = 0;
    int policy = 0;

    static std::uint32_t run(void* argument) {
        auto& work = *static_cast<Work*>(argument);
        work.nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
        work.policy = ::sched_getscheduler(0);
        ++work.runs;
        work.begun.signal();
        work.order.wait();
        ++work.ended;
        return 0;
    }
};

class Threads : public ::testing::Test {
protected:
    ThreadFactory factory{kThreadPriority};
    Work work;

    std::unique_ptr<Thread> made(std::int32_t priority = kThreadPriority) {
        return factory.createThread(Work::run, priority, 0);
    }
};

TEST_F(Threads, TheRoutineRunsOnceHoweverOftenItIsStarted) {
    const auto thread = made();
    EXPECT_EQ(work.runs, 0);
    ASSERT_TRUE(thread->start(&work));
    ASSERT_TRUE(thread->start(&work));
    work.begun.wait();
    work.order.signal();
    thread->stop();
    EXPECT_EQ(work.runs, 1);
    EXPECT_EQ(work.ended, 1);
}

struct PriorityRow {
    std::int32_t priority;
    int policy;
    int nice;
};

TEST_F(Threads, TheRoutineFindsItsPriorityFromItsFirstInstructionOn) {
    constexpr PriorityRow kRows[] = {
        {251, SCHED_OTHER, 0},  {252, SCHED_OTHER, 5},  {253, SCHED_OTHER, 10},  {254, SCHED_OTHER, 15},
        {255, SCHED_OTHER, 19}, {250, SCHED_OTHER, -5}, {249, SCHED_OTHER, -10}, {248, SCHED_OTHER, -15},
        {247, SCHED_RR, 0},     {0, SCHED_RR, 0},
    };
    for (const PriorityRow& row : kRows) {
        Work own;
        const auto thread = made(row.priority);
        ASSERT_TRUE(thread->start(&own));
        own.begun.wait();
        if (thread->setPriority(row.priority)) { // refused only where the process may not do that
            EXPECT_EQ(own.policy, row.policy) << row.priority;
            EXPECT_EQ(own.nice, row.nice) << row.priority;
        }
        own.order.signal();
    }
}

TEST_F(Threads, APriorityIsRefusedOffTheScaleAndWithoutARunningThread) {
    const auto thread = made();
    EXPECT_FALSE(thread->setPriority(255));
    ASSERT_TRUE(thread->start(&work));
    EXPECT_FALSE(thread->setPriority(256));
    EXPECT_FALSE(thread->setPriority(-1));
    EXPECT_TRUE(thread->setPriority(255));
    work.order.signal();
    thread->stop();
    EXPECT_FALSE(thread->setPriority(255));
}

TEST_F(Threads, WhatWasNeverStartedOrHasEndedStopsWithoutWaiting) {
    const Clock::time_point begin = Clock::now();
    constexpr int kThreads = 40; // any one that waited would use up the limit
    for (int i = 0; i < kThreads; ++i) {
        made()->stop();
        Work own;
        own.order.signal();
        const auto thread = made();
        ASSERT_TRUE(thread->start(&own));
        EXPECT_TRUE(eventually([&] { return own.ended == 1; }));
    }
    EXPECT_LT(Clock::now() - begin, kThreads * kStopLimit);
}

TEST_F(Threads, ARoutineThatDoesNotEndIsLetGoAfterTheLimit) {
    const auto own = std::make_unique<Work>();
    const Clock::time_point begin = Clock::now();
    {
        const auto thread = made();
        ASSERT_TRUE(thread->start(own.get()));
    }
    EXPECT_GE(Clock::now() - begin, kStopLimit);
    EXPECT_EQ(own->ended, 0);
    own->order.signal();
    EXPECT_TRUE(eventually([&] { return own->ended == 1; }));
}

TEST_F(Threads, AThreadThatCannotBeCreatedIsNotStarted) {
    const auto thread = made();
    const auto captured = std::make_shared<int>();
    {
        const NoThreads none;
        EXPECT_FALSE(thread->start(&work));
        EXPECT_FALSE(Worker(factory, kThreadPriority).start([captured] {}));
        const ThreadFactory brief(kThreadPriority); // its destructor does not wait for the reaper
    }
    EXPECT_EQ(captured.use_count(), 1) << "the function is destroyed";
    EXPECT_EQ(work.runs, 0);
    work.order.signal();
    EXPECT_TRUE(thread->start(&work)) << "the next attempt";
}

TEST_F(Threads, AThreadMayDropItself) {
    struct Self {
        std::unique_ptr<Thread> thread;
        std::atomic<bool> dropped = false;
    } self;
    self.thread = factory.createThread(
        [](void* argument) -> std::uint32_t {
            auto& own = *static_cast<Self*>(argument);
            own.thread.reset();
            own.dropped = true;
            return 0;
        },
        kThreadPriority, 0);
    ASSERT_TRUE(self.thread->start(&self));
    EXPECT_TRUE(eventually([&] { return self.dropped.load(); }));
}

TEST_F(Threads, AFactoryThatIsDroppedAtOnceEndsAndDeletesWhatItWasGiven) {
    const std::uint32_t before = Thread::liveCount();
    for (int i = 0; i < 200; ++i) {
        ThreadFactory brief(kThreadPriority);
        if (i % 2 == 0)
            brief.bury(brief.createThread(Work::run, kThreadPriority, 0));
        brief.bury(nullptr);
    }
    EXPECT_EQ(Thread::liveCount(), before);
}

TEST_F(Threads, TheReaperDeletesWhatItIsGiven) {
    const std::uint32_t before = Thread::liveCount();
    auto thread = made();
    ASSERT_TRUE(thread->start(&work));
    work.order.signal();
    factory.bury(std::move(thread));
    EXPECT_TRUE(eventually([&] { return Thread::liveCount() == before; }));
    EXPECT_EQ(work.ended, 1);
}

} // namespace
