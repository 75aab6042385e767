#pragma once

namespace os {

/// Returns whether the display is the printer's own, whose size is to be measured. On a host it is not: there
/// any window could be the display. Thread: any.
[[nodiscard]] bool screenIsToBeMeasured();

} // namespace os
