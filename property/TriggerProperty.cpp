#include "property/TriggerProperty.h"

void TriggerProperty::setValue(bool value) {
    if (!value)
        return;
    {
        const KeltoGuard guard(m_resultLock);
        m_failed = false;
    }
    notifyListeners();
}

void TriggerProperty::recordResult(bool ok) {
    const KeltoGuard guard(m_resultLock);
    if (m_failed)
        return;
    loadValue(ok);
    m_failed = !ok;
}
