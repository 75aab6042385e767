#include "platform/Log.h"

#include <cstdio>
#include <utility>

void logLine(std::string message) {
    message += '\n';
    static_cast<void>(std::fwrite(message.data(), 1, message.size(), stderr)); // unbuffered: one write
}
