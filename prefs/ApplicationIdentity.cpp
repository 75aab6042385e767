#include "prefs/ApplicationIdentity.h"

ApplicationIdentity& ApplicationIdentity::instance() {
    static ApplicationIdentity identity;
    return identity;
}
