#include "tools/propertyserver/Directory.h"
#include "tests/propertyserver/CountingPeer.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

namespace {

// So many that whatever walks all of them for each guest takes minutes.
TEST(Directory, WhoComesAndGoesCostsWhatItWatches) {
    constexpr std::size_t many = 50'000;
    struct {
        const char* name;
        std::size_t programs;
        std::size_t properties; // of each
        std::size_t watchers;   // of one property
    } const kRows[] = {
        {"many programs", many, 1, 1},
        {"many properties", 10, Directory::kMostProperties, 1},
        {"many watchers", 1, 1, many},
    };
    for (const auto& [name, programs, properties, watchers] : kRows) {
        Directory directory;
        CountingPeer owner;
        for (std::size_t i = 0; i < programs; ++i) {
            const std::string component = "X" + std::to_string(i);
            Directory::Program* program = directory.claim(owner, component);
            bool isTaken = true;
            for (std::size_t j = 0; j < properties && isTaken; ++j)
                directory.remember(*program, reportOn(component, std::to_string(j), "1"), isTaken);
            ASSERT_TRUE(isTaken) << name;
        }
        const Directory::Program& first = *directory.find("X0");
        for (std::size_t i = 0; i < many; ++i) {
            CountingPeer guest;
            ASSERT_TRUE(directory.watch(guest, "X0", "G", "0")) << name;
            ASSERT_TRUE(directory.watch(guest, "NOBODY", "G", "")) << name;
            directory.forget(guest);
            ASSERT_FALSE(directory.isWatched(first)) << name;
            ASSERT_EQ(directory.find("NOBODY"), nullptr) << name;
        }
        std::deque<CountingPeer> stay(watchers);
        for (CountingPeer& watcher : stay)
            ASSERT_TRUE(directory.watch(watcher, "X0", "G", "0")) << name;
        EXPECT_FALSE(directory.watch(stay[0], "X0", "G", "0")) << name;
        directory.deliver(first, reportOn("X0", "0", "2"));
        for (CountingPeer& watcher : stay) {
            ASSERT_EQ(watcher.told, 1U) << name;
            ASSERT_TRUE(directory.isWatched(first)) << name;
            directory.forget(watcher);
        }
        EXPECT_FALSE(directory.isWatched(first)) << name;
    }
}

TEST(Directory, WhoWatchesAllKeepsNoProgramThatHasGone) {
    Directory directory;
    CountingPeer watcher;
    CountingPeer owner;
    directory.watchAll(watcher);
    bool isTaken = false;
    directory.remember(*directory.claim(owner, "X"), reportOn("X", "P", "1"), isTaken);
    directory.orphan("X");
    EXPECT_EQ(watcher.told, 1U);
    EXPECT_EQ(directory.find("X"), nullptr);
}

} // namespace
