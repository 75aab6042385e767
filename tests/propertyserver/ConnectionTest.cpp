#include "tools/propertyserver/Connection.h"
#include "tests/propertyserver/ShortHand.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/connect_pair.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/write.hpp>
#include <gtest/gtest.h>

namespace {

namespace asio = boost::asio;

TEST(Connection, WhoIsHeldAndFreeAgainAndAgainMakesNoWork) {
    asio::io_context context;
    Turns turns(context);
    std::string taken;
    const Connection::Handler handler{
        [&](Connection&, const JSONPICL& message) { taken += shortHand(message) + '\n'; }, [] {},
        [](Connection&, std::string_view) {}, [](std::size_t, std::size_t) {}, turns};
    asio::local::stream_protocol::socket program(context);
    asio::local::stream_protocol::socket end(context);
    asio::local::connect_pair(program, end);
    const auto connection = std::make_shared<Connection>(std::move(end), handler);
    connection->start();
    const auto holdAgain = [&] {
        for (int i = 0; i < 1000; ++i) {
            connection->hold(true);
            connection->hold(false);
        }
    };
    holdAgain();
    EXPECT_LT(context.poll(), 100U) << "nothing waits";

    connection->hold(true);
    JSONPICL set;
    write("set X/G:P=1", set);
    asio::write(program, asio::buffer(set.toFrame()));
    context.poll();
    EXPECT_EQ(taken, "");
    holdAgain();
    EXPECT_LT(context.poll(), 100U) << "one message waits";
    EXPECT_EQ(taken, "set X/G:P=1\n");
    connection->close();
}

} // namespace
