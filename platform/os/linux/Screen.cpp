#include "platform/os/Screen.h"

bool os::screenIsToBeMeasured() { return false; }
