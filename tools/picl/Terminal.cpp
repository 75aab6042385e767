#include "tools/picl/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

bool outputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

std::optional<std::size_t> terminalWidth() {
    winsize size{};
    if (!outputIsTerminal() || ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return {};
    return size.ws_col;
}
