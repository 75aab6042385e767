#pragma once

#include "tests/support/MemoryStream.h"

/// A MemoryStream that breaks: a call that would go beyond the n-th byte, read or written, moves only the
/// bytes before it and fails, as does every later one.
class FaultyStream final : public MemoryStream {
public:
    explicit FaultyStream(std::size_t bytesBeforeTheFault, std::string in = {},
                          std::int32_t theFailure = StreamFailed)
        : MemoryStream(std::move(in)), bytesLeft(bytesBeforeTheFault), failure(theFailure) {}

    std::int32_t read(void* buffer, std::int32_t size) override {
        return judged(MemoryStream::read(buffer, allowed(size)));
    }

    std::int32_t write(const void* buffer, std::int32_t size) override {
        return judged(MemoryStream::write(buffer, allowed(size)));
    }

    std::size_t bytesLeft;
    std::int32_t failure;

private:
    std::int32_t allowed(std::int32_t size) {
        m_broken = m_broken || static_cast<std::size_t>(size) > bytesLeft;
        return static_cast<std::int32_t>(std::min(static_cast<std::size_t>(size), bytesLeft));
    }
    std::int32_t judged(std::int32_t count) {
        bytesLeft -= static_cast<std::size_t>(std::max(count, 0));
        return m_broken ? failure : count;
    }

    bool m_broken = false;
};
