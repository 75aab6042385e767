#include "tools/propertyserver/Turns.h"

#include <chrono>
#include <utility>

void Turns::request(Work work) {
    m_waiting.push_back(std::move(work));
    if (!std::exchange(m_isBusy, true))
        takeOne();
}

void Turns::takeOne() {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const Work work = std::move(m_waiting.front());
    m_waiting.pop_front();
    work();
    m_rest.expires_after(Clock::now() - begin);
    m_rest.async_wait([this](const boost::system::error_code& cancelled) {
        m_isBusy = false;
        if (!cancelled && !m_waiting.empty()) {
            m_isBusy = true;
            takeOne();
        }
    });
}
