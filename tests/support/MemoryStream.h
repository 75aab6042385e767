#pragma once

#include "platform/Stream.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>

/// A stream whose reads take what a test put in, and whose writes a test looks at. At the end of its input it
/// reads nothing, as a file does.
class MemoryStream : public Stream {
public:
    explicit MemoryStream(std::string in = {}, std::uint32_t kind = kFileOrDeviceStream)
        : Stream(kind), input(std::move(in)) {}

    std::int32_t read(void* buffer, std::int32_t size) override {
        if (closed)
            return StreamFailed;
        const std::size_t count = std::min({input.size(), static_cast<std::size_t>(size), largestRead});
        std::memcpy(buffer, input.data(), count);
        input.erase(0, count);
        return static_cast<std::int32_t>(count);
    }

    std::int32_t write(const void* buffer, std::int32_t size) override {
        if (closed)
            return StreamFailed;
        ++writes;
        if (size > 0)
            output.append(static_cast<const char*>(buffer), static_cast<std::size_t>(size));
        return size;
    }

    void close() override { closed = true; }

    std::string input;  ///< What is still to be read.
    std::string output; ///< What was written.
    std::size_t largestRead = std::string::npos;
    int writes = 0;
    bool closed = false;
};
