#pragma once

#include "platform/Stream.h"

#include <filesystem>
#include <memory>
#include <string>

/// One kind of Stream with what lies on its other side, for the contract that all kinds keep.
class StreamMedium {
public:
    virtual ~StreamMedium() = default;

    /// Returns an open stream that has @p bytes to read.
    virtual std::unique_ptr<Stream> reader(const std::string& bytes) = 0;

    /// Returns an open stream whose writes take() sees.
    virtual std::unique_ptr<Stream> writer() = 0;

    /// Waits for @p count bytes of the writer and returns them, or what came by the deadline.
    virtual std::string take(std::size_t count) = 0;
};
