#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <deque>
#include <functional>

/// Has long pieces of work done one after the other, each as long as the one before has rested: what is short
/// gets as much of the time of the event loop as all that is long together, and waits for no more than one
/// long piece. Belongs to the thread of the event loop.
class Turns {
public:
    using Work = std::function<void()>;

    explicit Turns(boost::asio::io_context& context) : m_rest(context) {}

    /// Calls @p work when its turn has come; at once, if nothing long was done lately.
    void request(Work work);

private:
    void takeOne();

    boost::asio::steady_timer m_rest;
    std::deque<Work> m_waiting;
    bool m_isBusy = false; // or rests
};
