#include "platform/Log.h"

#include <cstdio>

namespace {

int lengthOf(std::string_view text) { return static_cast<int>(text.size()); }

} // namespace

void logLine(std::string_view message, std::string_view detail) noexcept {
    static_cast<void>(std::fprintf(stderr, "%.*s%.*s\n", lengthOf(message), message.data(), lengthOf(detail),
                                   detail.data()));
}
