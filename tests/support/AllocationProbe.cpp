#include "tests/support/AllocationProbe.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

constexpr std::size_t kNone = allocations::Failing::kNone;

std::atomic<std::size_t> live = 0;
std::atomic<std::size_t> peak = 0;
std::atomic<std::size_t> allocationsLeft = kNone; // until the one that fails
std::atomic<std::size_t> largest = kNone;
std::atomic<bool> failed = false;

void add(std::size_t bytes) {
    const std::size_t now = live += bytes;
    for (std::size_t before = peak; before < now && !peak.compare_exchange_weak(before, now);) {
    }
}

} // namespace

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    void* const block = --allocationsLeft == 0 || size > largest ? nullptr : std::malloc(size);
    if (block == nullptr)
        failed = true;
    else
        add(::malloc_usable_size(block));
    return block;
}

void* operator new(std::size_t size) {
    void* const block = operator new(size, std::nothrow);
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    live -= ::malloc_usable_size(block);
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept { operator delete(block); }

std::size_t allocations::liveBytes() { return live; }
void allocations::resetPeak() { peak = live.load(); }
std::size_t allocations::peakBytes() { return peak; }

allocations::Failing::Failing(std::size_t number, std::size_t largestSize) {
    failed = false;
    largest = largestSize;
    allocationsLeft = number;
}

allocations::Failing::~Failing() { allocationsLeft = largest = kNone; }

bool allocations::Failing::hasFailed() const { return failed; }
