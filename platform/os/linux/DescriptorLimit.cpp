#include "platform/os/DescriptorLimit.h"

#include <sys/resource.h>

namespace os {

std::size_t raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 0;
    const rlimit raised{limit.rlim_max, limit.rlim_max};
    return ::setrlimit(RLIMIT_NOFILE, &raised) == 0 ? raised.rlim_cur : limit.rlim_cur;
}

} // namespace os
