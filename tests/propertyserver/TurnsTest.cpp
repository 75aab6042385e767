#include "tools/propertyserver/Turns.h"

#include <boost/asio/post.hpp>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {

TEST(Turns, WhatIsLongGoesInItsOrderAndOthersHaveTheirTurnInBetween) {
    boost::asio::io_context context;
    Turns turns(context);
    std::string done;
    const auto work = [&](char name) {
        return [&done, name] {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            done += name;
        };
    };
    const std::function<void()> shortWork = [&] { // whenever the loop is free
        if (done.empty() || done.back() != '.')
            done += '.';
        if (done != ".A.C.B.")
            boost::asio::post(context, shortWork);
    };
    boost::asio::post(context, shortWork);
    boost::asio::post(context, [&] {
        turns.request([&] {
            turns.request(work('C')); // inside of a turn
            work('A')();
        });
        turns.request(work('B'));
    });
    context.run_for(std::chrono::seconds(20));
    EXPECT_EQ(done, ".A.C.B.");
    turns.request(work('D'));
    EXPECT_EQ(done, ".A.C.B.D") << "at once, after a rest";
}

} // namespace
