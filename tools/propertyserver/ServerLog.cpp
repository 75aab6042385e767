#include "tools/propertyserver/ServerLog.h"

#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <climits>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace {

constexpr std::string_view kName = "picl serve: ";
constexpr std::size_t kMaxSentence = 1024; // bytes
static_assert(kMaxSentence + 256 < PIPE_BUF, "a pipe that has room takes it at once and as a whole");

// Also where the reader of a pipe has gone: to write there would end the process.
bool hasRoom(int descriptor) {
    pollfd place{.fd = descriptor, .events = POLLOUT, .revents = 0};
    return ::poll(&place, 1, 0) == 1 && place.revents == POLLOUT;
}

std::string shortVisibleText(std::string_view sentence) {
    std::string text = visibleText(sentence.substr(0, kMaxSentence));
    std::size_t size = std::min(text.size(), kMaxSentence);
    while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
        --size; // to the beginning of a character
    text.resize(size);
    return text;
}

} // namespace

void ServerLog::write(std::string_view sentence) {
    std::string text;
    if (m_lost > 0)
        text.append(kName) += "nobody read this; lines that are lost: " + std::to_string(m_lost) + '\n';
    text.append(kName).append(shortVisibleText(sentence)) += '\n';
    const bool isWritten = hasRoom(m_descriptor) && ::write(m_descriptor, text.data(), text.size()) > 0;
    m_lost = isWritten ? 0 : m_lost + 1;
}
